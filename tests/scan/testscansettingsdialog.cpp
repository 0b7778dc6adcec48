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

template <typename T> T* control(QDialog& dialog, const char* name)
{
    T* widget = dialog.findChild<T*>(QLatin1String(name));
    if (!widget)
        qFatal("no control %s", name);
    return widget;
}

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
        SaneTestBackend backend;
        TestHome home;
        SaneSource source;
        ScanSettingsDialog dialog(home.settings(), source);
        QSignalSpy listed(&dialog, &ScanSettingsDialog::devicesListed);
        auto* scanner = control<QComboBox>(dialog, "cboScanner");
        auto* camera = control<QComboBox>(dialog, "cboCamera");
        auto* looking = control<QLabel>(dialog, "lblLooking");
        auto* refresh = control<QPushButton>(dialog, "cmdRefresh");
        QVERIFY(dialog.isLooking());
        QCOMPARE(looking->text(), QStringLiteral("Looking for scanners…"));
        QVERIFY(!refresh->isEnabled());
        QCOMPARE(itemTexts(scanner), QStringList{"(none)"});

        QVERIFY(waitFor(listed));
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
        QVERIFY(dialog.isLooking());
        QCOMPARE(looking->text(), QStringLiteral("Looking for scanners…"));
        QVERIFY(waitFor(listed, 2));
        // A choice made before the refresh survives it.
        QCOMPARE(camera->currentData().toString(), QStringLiteral("test:1"));
        QCOMPARE(itemTexts(scanner), devices);
        QVERIFY(!dialog.isLooking());
    }

    // OK writes every setting the dialog shows, not only the first five; Cancel writes none.
    void okWritesEverySetting_data()
    {
        columns<bool, bool, QStringList>({"change", "confirm", "expected"}); // "" for absent
        row("as it opens", false, true,
            QStringList{"test:0", "IMAGEEDIT", "afterscan", "N", "", "Y", "N", "color", "color",
                        "150", "300", "50", "30", "True"});
        row("every control changed", true, true,
            QStringList{"test:1", "RETURN", "beforescan", "Y", "test:0", "N", "Y", "grayscale",
                        "black & white", "200", "600", "20", "40", "True"});
        row("cancelled", true, false, QStringList(std::size(kKeys), QString()));
    }
    void okWritesEverySetting()
    {
        QFETCH(bool, change);
        QFETCH(bool, confirm);
        QFETCH(QStringList, expected);
        SaneTestBackend backend;
        TestHome home;
        SaneSource source;
        ScanSettingsDialog dialog(home.settings(), source);
        QSignalSpy listed(&dialog, &ScanSettingsDialog::devicesListed);
        QVERIFY(waitFor(listed));
        if (change) {
            control<QComboBox>(dialog, "cboScanner")->setCurrentIndex(2);
            control<QComboBox>(dialog, "cboCamera")->setCurrentIndex(1);
            control<QComboBox>(dialog, "cboAfterScan")->setCurrentIndex(1);
            control<QComboBox>(dialog, "cboGetDocInfo")->setCurrentIndex(1);
            control<QCheckBox>(dialog, "chkADF")->setChecked(true);
            auto* duplex = control<QCheckBox>(dialog, "chkDuplex");
            QVERIFY(duplex->isEnabled()); // it goes with the feeder
            duplex->setChecked(false);
            control<QCheckBox>(dialog, "chkShowUI")->setChecked(true);
            control<QComboBox>(dialog, "cboDocScanType")->setCurrentIndex(1);
            control<QComboBox>(dialog, "cboPicScanType")->setCurrentIndex(0);
            control<QSpinBox>(dialog, "spnDocDPI")->setValue(200);
            control<QSpinBox>(dialog, "spnPicDPI")->setValue(600);
            control<QSpinBox>(dialog, "spnDocQuality")->setValue(20);
            control<QSpinBox>(dialog, "spnPicQuality")->setValue(40);
        } else {
            QVERIFY(!control<QCheckBox>(dialog, "chkDuplex")->isEnabled());
        }
        control<QPushButton>(dialog, confirm ? "cmdOK" : "cmdCancel")->click();
        QCOMPARE(dialog.result(), confirm ? int(QDialog::Accepted) : int(QDialog::Rejected));
        Settings& s = home.reopenSettings();
        QStringList stored;
        for (const char* key : kKeys)
            stored << s.getSetting(QLatin1String(key));
        QCOMPARE(stored, expected);
    }

    // A device chosen before that is off or unplugged now stays chosen, marked as not found.
    void missingDeviceStaysChosen()
    {
        SaneTestBackend backend;
        TestHome home;
        home.settings().set(keys::ScanSource, QStringLiteral("usb:elsewhere"));
        SaneSource source;
        ScanSettingsDialog dialog(home.settings(), source);
        auto* scanner = control<QComboBox>(dialog, "cboScanner");
        QCOMPARE(scanner->currentText(), QStringLiteral("usb:elsewhere"));
        QSignalSpy listed(&dialog, &ScanSettingsDialog::devicesListed);
        QVERIFY(waitFor(listed));
        QCOMPARE(scanner->currentText(), QStringLiteral("usb:elsewhere (not found)"));
        control<QPushButton>(dialog, "cmdOK")->click();
        QCOMPARE(home.settings().get(keys::ScanSource), QStringLiteral("usb:elsewhere"));
    }
};

QMR_TEST(TestScanSettingsDialog)
#include "testscansettingsdialog.moc"
