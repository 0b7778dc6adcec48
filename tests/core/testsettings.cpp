#include <QTest>

#include "core/settings.h"
#include "core/viewsettings.h"
#include "tests/support/datarow.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using qmr::test::row;

class TestSettings : public QObject
{
    Q_OBJECT
private slots:
    void keysAndDefaults()
    {
        test::TestHome home;
        Settings& s = home.settings();
        QCOMPARE(s.getSetting("FirstShow", "Y"), QStringLiteral("Y"));
        QCOMPARE(s.getSetting("NoSuchKey"), QString());
        QVERIFY(!s.contains("EmailSystem"));
        s.saveSetting("EmailSystem", "");
        QVERIFY(s.contains("EmailSystem"));
        // An empty value is a value: the default does not come back.
        QCOMPARE(s.getSetting("EmailSystem", "MAPI"), QString());
        // Kept in the file's own group.
        s.saveSetting("FirstShow", "N");
        s.sync();
        QSettings raw(home.settingsPath(), QSettings::IniFormat);
        QCOMPARE(raw.value("Settings/FirstShow").toString(), QStringLiteral("N"));
        // Named keys with their defaults.
        QCOMPARE(s.get(keys::SmtpPort), QStringLiteral("25"));
        QCOMPARE(s.number(keys::TreeWidth), 3000.0);
        s.set(keys::TreeWidth, "wide");
        QCOMPARE(s.number(keys::TreeWidth), 3000.0); // not a number: the default
        s.set(keys::TreeWidth, "2250.5");
        QCOMPARE(s.number(keys::TreeWidth), 2250.5);
        QCOMPARE(s.getSetting("tvwMainWidth"), QStringLiteral("2250.5"));
        // A window's placement.
        const Placement current{1, 2, 3, 4, 0};
        const auto restored = [&](bool resizable = true) {
            const Placement p = s.restorePlacement("frmNavTree", current, resizable);
            return QList<int>{p.top, p.left, p.height, p.width, p.windowState};
        };
        // Nothing stored: the current values stay.
        QCOMPARE(restored(), QList<int>({1, 2, 3, 4, 0}));
        s.savePlacement("frmNavTree", Placement{50, 60, 700, 800, 0});
        s.savePlacement("frmNavTree", Placement{0, 0, 0, 0, 1}); // closed minimised
        QCOMPARE(restored(), QList<int>({50, 60, 700, 800, 0})); // never comes back minimised
        // A bad value leaves that one field alone.
        s.saveSetting("frmNavTree.Left", "wide");
        s.saveSetting("frmNavTree.WindowState", "2");
        QCOMPARE(restored(), QList<int>({50, 2, 700, 800, 2}));
        // A fixed window keeps its size.
        QCOMPARE(restored(false), QList<int>({50, 2, 3, 4, 2}));
        s.saveSetting("Printer", "Desk Jet");
        QCOMPARE(home.reopenSettings().getSetting("Printer"), QStringLiteral("Desk Jet"));
    }

    void displayCountClamp_data()
    {
        columns<QString, int>({"stored", "expected"});
        row("absent", QString(), 20);
        row("zero", "0", 1);
        row("negative", "-5", 1);
        row("one", "1", 1);
        row("sixty-four", "64", 64);
        row("five hundred", "500", 64);
        row("twelve", "12", 12);
    }
    void displayCountClamp()
    {
        auto [stored, expected] = test::fetch<QString, int>("stored", "expected");
        test::TestHome home;
        if (!stored.isNull())
            home.settings().saveSetting("DisplayCount", stored);
        QCOMPARE(home.settings().displayCount(), expected);
        // The clamp never rewrites the stored value.
        QCOMPARE(home.settings().getSetting("DisplayCount"), stored);
    }

    void savePlacement_data()
    {
        columns<int, bool>({"state", "rectangleWritten"});
        row("normal", 0, true);
        row("minimised", 1, false);
        row("maximised", 2, false);
    }
    void savePlacement()
    {
        auto [state, rectangleWritten] = test::fetch<int, bool>("state", "rectangleWritten");
        test::TestHome home;
        Settings& s = home.settings();
        s.savePlacement("frmNavTree", Placement{10, 20, 300, 400, state});
        QCOMPARE(s.getSetting("frmNavTree.WindowState"), QString::number(state));
        for (const char* key :
             {"frmNavTree.Top", "frmNavTree.Left", "frmNavTree.Height", "frmNavTree.Width"})
            QCOMPARE(s.contains(QLatin1String(key)), rectangleWritten);
        if (rectangleWritten) {
            QCOMPARE(s.getSetting("frmNavTree.Top"), QStringLiteral("10"));
            QCOMPARE(s.getSetting("frmNavTree.Width"), QStringLiteral("400"));
        }
    }

    void viewSettingsClampAndWriteAtOnce_data()
    {
        columns<int, int>({"asked", "kept"});
        row("more at 64 stays", 65, 64);
        row("less at 1 stays", 0, 1);
        row("in range", 21, 21);
    }
    void viewSettingsClampAndWriteAtOnce()
    {
        auto [asked, kept] = test::fetch<int, int>("asked", "kept");
        test::TestHome home;
        home.settings().saveSetting("ThumbSide", "200");
        ViewSettings view(home.settings());
        view.read();
        QCOMPARE(view.thumbSide(), 100); // the stored side never takes effect
        QCOMPARE(view.displayCount(), 20);
        view.setDisplayCount(asked);
        QCOMPARE(view.displayCount(), kept);
        view.setZoomDefault("FITWIDTH");
        QCOMPARE(view.zoomDefault(), QStringLiteral("FITWIDTH"));
        // Written at once, as a new run reads them.
        Settings fresh(home.settingsPath());
        QCOMPARE(fresh.getSetting("DisplayCount"), QString::number(kept));
        ViewSettings next(home.reopenSettings());
        next.read();
        QCOMPARE(next.displayCount(), kept);
        QCOMPARE(next.zoomDefault(), QStringLiteral("FITWIDTH"));
    }

    // Yes-or-no and mode keys read as values and write the file's own words.
    void typedKeysReadAndWriteTheFilesWords_data()
    {
        // stored "-": absent; the defaults are duplex, no feeder
        columns<QString, bool, bool, int>({"stored", "duplex", "feeder", "afterScan"});
        row("absent: the defaults", "-", true, false, int(AfterScanMode::OpenViewer));
        row("Y", "Y", true, true, int(AfterScanMode::OpenViewer));
        row("N", "N", false, false, int(AfterScanMode::OpenViewer));
        row("another word is no", "yes", false, false, int(AfterScanMode::OpenViewer));
        row("empty is no", "", false, false, int(AfterScanMode::OpenViewer));
        row("RETURN", "RETURN", false, false, int(AfterScanMode::Return));
        row("the word as written only", "return", false, false, int(AfterScanMode::OpenViewer));
    }
    void typedKeysReadAndWriteTheFilesWords()
    {
        auto [stored, duplex, feeder, afterScan] =
            test::fetch<QString, bool, bool, int>("stored", "duplex", "feeder", "afterScan");
        test::TestHome home;
        Settings& s = home.settings();
        if (stored != "-")
            for (const char* key :
                 {keys::ScanDuplex.name, keys::ScanFeeder.name, keys::AfterScan.name})
                s.saveSetting(QLatin1String(key), stored);
        QCOMPARE(s.flag(keys::ScanDuplex), duplex);
        QCOMPARE(s.flag(keys::ScanFeeder), feeder);
        QCOMPARE(int(s.mode(keys::AfterScan)), afterScan);

        s.setFlag(keys::ScanDuplex, !duplex);
        s.setMode(keys::GetDocInfo, DocInfoTime::BeforeScan);
        s.setMode(keys::AfterScan, AfterScanMode::OpenViewer);
        Settings& again = home.reopenSettings();
        QCOMPARE(again.getSetting("ScanDuplex"), QString(duplex ? "N" : "Y"));
        QCOMPARE(again.getSetting("TwainGetDocInfo"), QStringLiteral("beforescan"));
        QCOMPARE(again.getSetting("AfterScan"), QStringLiteral("IMAGEEDIT"));
        QCOMPARE(again.flag(keys::ScanDuplex), !duplex);
    }
};

QMR_TEST(TestSettings)
#include "testsettings.moc"
