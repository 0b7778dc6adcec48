#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include "core/settings.h"
#include "sanetestbackend.h"
#include "scan/sanesource.h"
#include "scan/scansettingsdialog.h"
#include "tests/support/datarow.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// The dialog on the test backend in a home of its own, `scanner` chosen before.
struct Opened
{
    SaneTestBackend backend;
    TestHome home;
    SaneSource source;
    std::unique_ptr<ScanSettingsDialog> dialog;
    std::unique_ptr<QSignalSpy> listed;

    explicit Opened(const QString& scanner = QString())
    {
        if (!scanner.isEmpty())
            home.settings().set(keys::ScanSource, scanner);
        dialog = std::make_unique<ScanSettingsDialog>(home.settings(), source);
        listed = std::make_unique<QSignalSpy>(dialog.get(), &ScanSettingsDialog::devicesListed);
    }
    template <typename T> T* control(const char* name)
    {
        T* widget = dialog->findChild<T*>(QLatin1String(name));
        if (!widget)
            qFatal("no control %s", name);
        return widget;
    }
};

QStringList itemTexts(const QComboBox* box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts << box->itemText(i);
    return texts;
}

// Every key the dialog keeps, in the order of its OK.
const char* const kKeys[] = {
    keys::ScanSource.name, keys::AfterScan.name,        keys::GetDocInfo.name,
    keys::ScanFeeder.name, keys::CameraSource.name,     keys::ScanDuplex.name,
    keys::ScanShowUi.name, keys::DocScanType.name,      keys::PicScanType.name,
    keys::DocDpi.name,     keys::PicDpi.name,           keys::DocQuality.name,
    keys::PicQuality.name, keys::SetupScanSettings.name};

} // namespace

class TestScanSettingsDialog : public QObject
{
    Q_OBJECT
private slots:
    // The dialog is there at once and says that it is looking; the lists come with SANE's
    // answer, with vendor and model beside each device name; Refresh looks again.
    void devicesComeLater()
    {
        Opened o;
        auto* scanner = o.control<QComboBox>("cboScanner");
        auto* camera = o.control<QComboBox>("cboCamera");
        auto* looking = o.control<QLabel>("lblLooking");
        auto* refresh = o.control<QPushButton>("cmdRefresh");
        QVERIFY(o.dialog->isLooking());
        QCOMPARE(looking->text(), QStringLiteral("Looking for scanners…"));
        QVERIFY(!refresh->isEnabled());
        QCOMPARE(itemTexts(scanner), QStringList{"(none)"});

        QVERIFY(waitFor(*o.listed));
        const QStringList devices{"(none)", "Noname frontend-tester (test:0)",
                                  "Noname frontend-tester (test:1)"};
        QCOMPARE(itemTexts(scanner), devices);
        QCOMPARE(itemTexts(camera), devices);
        // Someone who never chose is offered the first device; the camera stays unset.
        QCOMPARE(scanner->currentData().toString(), QStringLiteral("test:0"));
        QCOMPARE(camera->currentData().toString(), QString());
        QCOMPARE(looking->text(), QStringLiteral("2 devices found."));
        QVERIFY(refresh->isEnabled());

        camera->setCurrentIndex(2);
        refresh->click();
        QVERIFY(o.dialog->isLooking());
        QCOMPARE(looking->text(), QStringLiteral("Looking for scanners…"));
        QVERIFY(waitFor(*o.listed, 2));
        // A choice made before the refresh survives it.
        QCOMPARE(camera->currentData().toString(), QStringLiteral("test:1"));
        QCOMPARE(itemTexts(scanner), devices);
        QVERIFY(!o.dialog->isLooking());
    }

    // OK writes every setting the dialog shows, not only the first five; Cancel writes none.
    // A device chosen before that is off or unplugged now stays chosen, marked as not found.
    void okWritesEverySetting_data()
    {
        columns<QString, bool, bool, QStringList>({"chosen", "change", "confirm", "expected"});
        const QStringList asOpens{"test:0", "IMAGEEDIT", "afterscan", "N",   "",   "Y",  "N",
                                  "color",  "color",     "150",       "300", "50", "30", "True"};
        row("as it opens", "", false, true, asOpens);
        row("every control changed", "", true, true,
            QStringList{"test:1", "RETURN", "beforescan", "Y", "test:0", "N", "Y", "grayscale",
                        "black & white", "200", "600", "20", "40", "True"});
        row("cancelled", "", true, false, QStringList(std::size(kKeys), QString()));
        row("a device not found", "usb:elsewhere", false, true,
            QStringList{"usb:elsewhere"} + asOpens.mid(1));
    }
    void okWritesEverySetting()
    {
        const auto [chosen, change, confirm] =
            fetch<QString, bool, bool>("chosen", "change", "confirm");
        Opened o(chosen);
        auto* scanner = o.control<QComboBox>("cboScanner");
        if (!chosen.isEmpty())
            QCOMPARE(scanner->currentText(), chosen);
        QVERIFY(waitFor(*o.listed));
        if (!chosen.isEmpty())
            QCOMPARE(scanner->currentText(), chosen + " (not found)");
        if (change) {
            scanner->setCurrentIndex(2);
            o.control<QComboBox>("cboCamera")->setCurrentIndex(1);
            o.control<QComboBox>("cboAfterScan")->setCurrentIndex(1);
            o.control<QComboBox>("cboGetDocInfo")->setCurrentIndex(1);
            o.control<QCheckBox>("chkADF")->setChecked(true);
            auto* duplex = o.control<QCheckBox>("chkDuplex");
            QVERIFY(duplex->isEnabled()); // it goes with the feeder
            duplex->setChecked(false);
            o.control<QCheckBox>("chkShowUI")->setChecked(true);
            o.control<QComboBox>("cboDocScanType")->setCurrentIndex(1);
            o.control<QComboBox>("cboPicScanType")->setCurrentIndex(0);
            o.control<QSpinBox>("spnDocDPI")->setValue(200);
            o.control<QSpinBox>("spnPicDPI")->setValue(600);
            o.control<QSpinBox>("spnDocQuality")->setValue(20);
            o.control<QSpinBox>("spnPicQuality")->setValue(40);
        } else {
            QVERIFY(!o.control<QCheckBox>("chkDuplex")->isEnabled());
        }
        o.control<QPushButton>(confirm ? "cmdOK" : "cmdCancel")->click();
        QCOMPARE(o.dialog->result(), confirm ? int(QDialog::Accepted) : int(QDialog::Rejected));
        Settings& s = o.home.reopenSettings();
        QStringList stored;
        for (const char* key : kKeys)
            stored << s.getSetting(QLatin1String(key));
        QTEST(stored, "expected"); // "" for absent
    }
};

QMR_TEST(TestScanSettingsDialog)
#include "testscansettingsdialog.moc"
