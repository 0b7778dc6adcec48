#include <QTest>

#include "scan/optionmatch.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::fetch;
using qmr::test::row;
using Values = QStringList;

Q_DECLARE_METATYPE(qmr::ScanColour)

namespace {

ScanOption range(double min, double max, double quant)
{
    ScanOption o;
    o.constraint = ScanOption::Constraint::Range;
    o.minimum = min;
    o.maximum = max;
    o.quant = quant;
    return o;
}

ScanOption list(QList<double> words)
{
    ScanOption o;
    o.constraint = ScanOption::Constraint::WordList;
    o.words = words;
    return o;
}

QString colourName(std::optional<ScanColour> c)
{
    if (!c)
        return QStringLiteral("none");
    return *c == ScanColour::LineArt ? QStringLiteral("line art")
           : *c == ScanColour::Grey  ? QStringLiteral("grey")
                                     : QStringLiteral("colour");
}

} // namespace

class TestOptionMatch : public QObject
{
    Q_OBJECT
private slots:
    void nearestValue_data()
    {
        columns<ScanOption, double, double>({"option", "wanted", "chosen"});
        row("range, inside", range(1, 1200, 1), 150.0, 150.0);
        row("range, between steps", range(50, 600, 25), 160.0, 150.0);
        row("range, rounds up", range(50, 600, 25), 165.0, 175.0);
        row("range, below", range(75, 600, 1), 10.0, 75.0);
        row("range, above", range(75, 600, 1), 9600.0, 600.0);
        row("range, top off the steps", range(50, 610, 25), 610.0, 600.0);
        row("range, no step", range(10.5, 99.5, 0), 33.3, 33.3);
        row("list, exact", list({75, 150, 300, 600}), 300.0, 300.0);
        row("list, nearest", list({75, 150, 300, 600}), 200.0, 150.0);
        row("list, tie goes up", list({100, 200, 300}), 150.0, 200.0);
        row("list, unsorted", list({1200, 300, 600, 75}), 500.0, 600.0);
        row("list, below all", list({150, 300}), 1.0, 150.0);
        row("no constraint", ScanOption(), 123.0, 123.0);
    }
    void nearestValue()
    {
        const auto [option, wanted] = fetch<ScanOption, double>("option", "wanted");
        QTEST(OptionMatch::nearestValue(option, wanted), "chosen");
    }

    void meaningOfMode_data()
    {
        columns<QString, QString>({"value", "meaning"});
        for (const char* v : {"Lineart", "LineArt", "Line Art", "line-art", "Binary",
                              "Black & White", "Black and White", "BW", "B&W"})
            QTest::newRow(v) << QString::fromUtf8(v) << "line art";
        for (const char* v :
             {"Gray", "Grey", "Grayscale", "Greyscale", "True Gray", "Gray16", "8bit Gray"})
            QTest::newRow(v) << QString::fromUtf8(v) << "grey";
        for (const char* v : {"Color", "Colour", "24bit Color", "24bit Color[Fast]", "Color48",
                              "RGB", "True Color"})
            QTest::newRow(v) << QString::fromUtf8(v) << "colour";
        for (const char* v :
             {"Halftone", "Gray[Error Diffusion]", "Dithered", "Infrared", "Negative film", ""})
            QTest::newRow(v) << QString::fromUtf8(v) << "none";
    }
    void meaningOfMode()
    {
        QFETCH(QString, value);
        QTEST(colourName(OptionMatch::meaningOfMode(value)), "meaning");
    }

    void chooseMode_data()
    {
        columns<QStringList, ScanColour, QString, QString>({"values", "wanted", "value", "gives"});
        const QStringList three{"Lineart", "Gray", "Color"};
        row("line art", three, ScanColour::LineArt, "Lineart", "line art");
        row("grey", three, ScanColour::Grey, "Gray", "grey");
        row("colour", three, ScanColour::Colour, "Color", "colour");
        const QStringList brother{"Black & White", "Gray[Error Diffusion]", "True Gray",
                                  "24bit Color[Fast]", "24bit Color"};
        row("their line art", brother, ScanColour::LineArt, "Black & White", "line art");
        row("true grey, not dithered", brother, ScanColour::Grey, "True Gray", "grey");
        row("plain colour first", brother, ScanColour::Colour, "24bit Color", "colour");
        row("no line art: grey", Values{"Gray", "Color"}, ScanColour::LineArt, "Gray", "grey");
        row("colour only: colour for grey", Values{"Color"}, ScanColour::Grey, "Color", "colour");
        row("grey only: grey for colour", Values{"Halftone", "Gray"}, ScanColour::Colour, "Gray",
            "grey");
        row("deep colour after plain", Values{"Color48", "Color", "Gray"}, ScanColour::Colour,
            "Color", "colour");
        row("nothing known", Values{"Halftone", "Infrared"}, ScanColour::Colour, "", "none");
    }
    void chooseMode()
    {
        const auto [values, wanted] = fetch<QStringList, ScanColour>("values", "wanted");
        const OptionMatch::ModeChoice choice = OptionMatch::chooseMode(values, wanted);
        QTEST(choice.value, "value");
        QTEST(colourName(choice.colour), "gives");
    }

    void chooseSource_data()
    {
        columns<QStringList, bool, bool, QString, bool, bool>(
            {"values", "feeder", "duplex", "value", "fed", "bothSides"});
        const QStringList test{"Flatbed", "Automatic Document Feeder"};
        row("feeder", test, true, true, "Automatic Document Feeder", true, false);
        row("flatbed", test, false, false, "Flatbed", false, false);
        const QStringList fujitsu{"ADF Front", "ADF Back", "ADF Duplex"};
        row("duplex", fujitsu, true, true, "ADF Duplex", true, true);
        row("one side", fujitsu, true, false, "ADF Front", true, false);
        row("no flatbed, no feeder: as it is", fujitsu, false, false, "", false, false);
        const QStringList epson{"Flatbed", "Transparency Unit", "ADF - Front", "ADF - Duplex"};
        row("their duplex", epson, true, true, "ADF - Duplex", true, true);
        row("their feeder", epson, true, false, "ADF - Front", true, false);
        row("no feeder: one page", Values{"Flatbed", "Transparency Adapter"}, true, true, "Flatbed",
            false, false);
        row("only a duplex feeder", Values{"Flatbed", "Duplex"}, true, false, "Duplex", true, true);
        row("platen", Values{"Platen", "ADF"}, false, false, "Platen", false, false);
        row("no values", Values{}, true, true, "", false, false);
    }
    void chooseSource()
    {
        const auto [values, feeder, duplex] =
            fetch<QStringList, bool, bool>("values", "feeder", "duplex");
        const OptionMatch::SourceChoice choice = OptionMatch::chooseSource(values, feeder, duplex);
        QTEST(choice.value, "value");
        QTEST(choice.feeder, "fed");
        QTEST(choice.duplex, "bothSides");
    }
};

QMR_TEST(TestOptionMatch)
#include "testoptionmatch.moc"
