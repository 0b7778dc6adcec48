#include <QCheckBox>
#include <QSignalSpy>
#include <QTest>

#include "core/settings.h"
#include "hangingsane.h"
#include "sanetestbackend.h"
#include "scan/sanesource.h"
#include "scan/scanoptionsdialog.h"
#include "scan/scansettingsdialog.h"
#include "tests/support/shots.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// The scan settings and the device's options, drawn to PNG files.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void scanSettings()
    {
        test::SaneTestBackend backend;
        test::TestHome home;
        {
            // While the system has not answered yet.
            auto slow = std::make_shared<test::HangingSane>(test::HangingSane::Call::Devices);
            SaneSource source(slow);
            ScanSettingsDialog dialog(home.settings(), source);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            test::saveShot(&dialog, "scan-settings-looking");
            slow->release();
        }
        SaneSource source;
        ScanSettingsDialog dialog(home.settings(), source);
        QSignalSpy listed(&dialog, &ScanSettingsDialog::devicesListed);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(test::waitFor(listed));
        test::saveShot(&dialog, "scan-settings");
    }

    void deviceOptions()
    {
        test::SaneTestBackend backend;
        SaneSource source;
        QSignalSpy opened(&source, &ScanSource::opened);
        QSignalSpy finished(&source, &ScanSource::finished);
        ScanRequest request;
        request.device = QStringLiteral("test:0");
        source.open(request);
        QVERIFY(test::waitFor(opened));
        {
            ScanOptionsDialog dialog(QStringLiteral("Noname frontend-tester (test:0)"), source);
            dialog.setOptions(opened.first().at(0).value<QVector<ScanOption>>());
            dialog.resize(520, 600);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            test::saveShot(&dialog, "scan-options");
            dialog.findChild<QCheckBox*>(QStringLiteral("chkAdvanced"))->setChecked(true);
            test::saveShot(&dialog, "scan-options-advanced");
        }
        source.close();
        QVERIFY(test::waitFor(finished));
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
