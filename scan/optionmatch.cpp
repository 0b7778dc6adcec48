#include "scan/optionmatch.h"

#include <QtMath>
#include <array>

namespace qmr {

namespace {

// Lower case with spaces, dashes and underscores gone: "Line Art" and "line-art" are one.
QString squeezed(const QString& value)
{
    QString s = value.toLower();
    s.remove(QLatin1Char(' '));
    s.remove(QLatin1Char('-'));
    s.remove(QLatin1Char('_'));
    return s;
}

bool containsAny(const QString& text, std::initializer_list<const char*> parts)
{
    for (const char* part : parts)
        if (text.contains(QLatin1String(part)))
            return true;
    return false;
}

// How plainly a value says what it gives: the bare word is preferred to a variant with
// decorations ("24bit Color[Fast]") or deep samples ("Color48").
int plainness(const QString& value)
{
    const QString s = squeezed(value);
    static const char* plain[] = {"lineart", "binary",     "blackwhite", "black&white", "gray",
                                  "grey",    "grayscale",  "greyscale",  "truegray",    "color",
                                  "colour",  "24bitcolor", "truecolor",  "rgb"};
    for (const char* p : plain)
        if (s == QLatin1String(p))
            return 3;
    if (s.contains(QLatin1Char('[')) || s.contains(QLatin1Char('(')) ||
        s.contains(QLatin1String("48")) || s.contains(QLatin1String("16")))
        return 1;
    return 2;
}

} // namespace

double OptionMatch::nearestValue(const ScanOption& option, double wanted)
{
    switch (option.constraint) {
    case ScanOption::Constraint::Range: {
        double v = qBound(option.minimum, wanted, option.maximum);
        if (option.quant > 0) {
            v = option.minimum + qRound64((v - option.minimum) / option.quant) * option.quant;
            // A step that overshoots the top falls back one step.
            while (v > option.maximum)
                v -= option.quant;
            v = qMax(v, option.minimum);
        }
        return v;
    }
    case ScanOption::Constraint::WordList: {
        if (option.words.isEmpty())
            return wanted;
        double best = option.words.first();
        for (double w : option.words) {
            const double d = qAbs(w - wanted);
            const double bestD = qAbs(best - wanted);
            if (d < bestD || (d == bestD && w > best))
                best = w;
        }
        return best;
    }
    default:
        return wanted;
    }
}

std::optional<ScanColour> OptionMatch::meaningOfMode(const QString& value)
{
    const QString s = squeezed(value);
    // Dithered and screened modes give black and white dots, not the page's own line art.
    if (containsAny(s, {"halftone", "dither", "errordiffusion", "infrared"}) &&
        !containsAny(s, {"lineart"}))
        return std::nullopt;
    if (containsAny(s, {"lineart", "binary", "blackwhite", "black&white", "blackandwhite", "b&w",
                        "bw", "1bit", "thresholded"}))
        return ScanColour::LineArt;
    if (containsAny(s, {"gray", "grey"}))
        return ScanColour::Grey;
    if (containsAny(s, {"color", "colour", "rgb"}))
        return ScanColour::Colour;
    return std::nullopt;
}

OptionMatch::ModeChoice OptionMatch::chooseMode(const QStringList& values, ScanColour wanted)
{
    auto best = [&](ScanColour colour) -> QString {
        QString chosen;
        int score = 0;
        for (const QString& v : values) {
            if (meaningOfMode(v) != colour)
                continue;
            const int s = plainness(v);
            if (s > score) {
                score = s;
                chosen = v;
            }
        }
        return chosen;
    };
    std::array<ScanColour, 3> order{ScanColour::Colour, ScanColour::Grey, ScanColour::LineArt};
    if (wanted == ScanColour::LineArt)
        order = {ScanColour::LineArt, ScanColour::Grey, ScanColour::Colour};
    else if (wanted == ScanColour::Grey)
        order = {ScanColour::Grey, ScanColour::Colour, ScanColour::LineArt};
    for (ScanColour colour : order) {
        const QString v = best(colour);
        if (!v.isEmpty())
            return ModeChoice{v, colour};
    }
    return ModeChoice{};
}

OptionMatch::SourceKind OptionMatch::kindOfSource(const QString& value)
{
    const QString s = squeezed(value);
    if (s.contains(QLatin1String("duplex")))
        return SourceKind::Duplex;
    const bool feeder =
        containsAny(s, {"adf", "feeder", "automaticdocument", "sheetfed", "sheetfeed"});
    if (feeder && containsAny(s, {"back", "rear"}))
        return SourceKind::FeederBack;
    if (feeder)
        return SourceKind::Feeder;
    if (containsAny(s, {"flatbed", "platen", "glass"}) || s == QLatin1String("normal"))
        return SourceKind::Flatbed;
    return SourceKind::Other;
}

OptionMatch::SourceChoice OptionMatch::chooseSource(const QStringList& values, bool feeder,
                                                    bool duplex)
{
    auto first = [&](SourceKind kind) -> QString {
        for (const QString& v : values)
            if (kindOfSource(v) == kind)
                return v;
        return QString();
    };
    if (feeder) {
        if (duplex) {
            const QString v = first(SourceKind::Duplex);
            if (!v.isEmpty())
                return SourceChoice{v, true, true};
        }
        const QString v = first(SourceKind::Feeder);
        if (!v.isEmpty())
            return SourceChoice{v, true, false};
        // A feeder that only turns sheets over still empties the stack.
        const QString both = first(SourceKind::Duplex);
        if (!both.isEmpty())
            return SourceChoice{both, true, true};
    }
    return SourceChoice{first(SourceKind::Flatbed), false, false};
}

} // namespace qmr
