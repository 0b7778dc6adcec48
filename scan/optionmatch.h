#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "scan/scansource.h"

namespace qmr {

// Chooses values of a device's options by what they mean rather than by one maker's
// spelling: the nearest resolution it accepts, the mode that gives line art, grey or colour,
// the source that is a feeder or a duplex feeder.
class OptionMatch
{
public:
    enum class SourceKind { Flatbed, Feeder, FeederBack, Duplex, Other };

    struct SourceChoice
    {
        QString value; // "" leaves the device's source as it is
        bool feeder = false;
        bool duplex = false;
    };

    struct ModeChoice
    {
        QString value;                    // "" when no offered value means anything known
        std::optional<ScanColour> colour; // what the chosen value gives
    };

    // The value nearest `wanted` that a range (with its step) or a list accepts; `wanted`
    // itself when the option states no constraint. Between two equally near list values the
    // higher one wins.
    static double nearestValue(const ScanOption& option, double wanted);

    // What a mode value gives: line art, grey, colour, or nothing known (halftone, dithered
    // and infrared modes).
    static std::optional<ScanColour> meaningOfMode(const QString& value);
    // The offered mode that best gives `wanted`; when none does, the nearest substitute:
    // grey for line art, colour for grey, grey for colour.
    static ModeChoice chooseMode(const QStringList& values, ScanColour wanted);

    static SourceKind kindOfSource(const QString& value);
    // With the feeder: a duplex source when `duplex` and the device has one, else a feeder
    // source (a duplex one when that is all it has); without a feeder the device reads one
    // page from the flatbed. Without the feeder: the flatbed where there is one.
    static SourceChoice chooseSource(const QStringList& values, bool feeder, bool duplex);
};

} // namespace qmr
