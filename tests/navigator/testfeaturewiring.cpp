#include <QAction>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include "core/pageopener.h"
#include "mail/emailsettingsdialog.h"
#include "navharness.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"
#include "viewer/viewsettingsdialog.h"

using namespace qmr;

// The viewer and mail entries reach the main window: the page pane's opener, File > View
// Settings and File > Email Settings.
class TestFeatureWiring : public QObject
{
    Q_OBJECT
private slots:
    void settingsEntries_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("dialog");
        QTest::newRow("view settings") << "mnuViewSettings"
                                       << "frmViewSettings";
        QTest::newRow("email settings") << "mnuEmailSettings"
                                        << "frmEmailSettings";
    }
    void settingsEntries()
    {
        QFETCH(QString, entry);
        QFETCH(QString, dialog);
        test::NavHarness h;
        h.loadSample(false);
        QAction* action = h.window->menus().action(entry);
        QVERIFY(action);
        QVERIFY(action->isEnabled());
        QString shown;
        // The email settings ask the keyring before they are shown, letting events run.
        test::whenModal(this, [&](QWidget* modal) {
            shown = modal->objectName();
            modal->close();
        });
        action->trigger();
        QCOMPARE(shown, dialog);
    }

    void pagesOpenInTheViewer()
    {
        test::NavHarness h;
        h.loadSample(false);
        PageOpener* opener = h.navigator().context().pageOpener;
        QVERIFY(opener);
        opener->openPage(1);
        PageViewWindow* viewer = nullptr;
        QTRY_VERIFY((viewer = h.window->findChild<PageViewWindow*>()) != nullptr);
        QTRY_COMPARE(viewer->windowTitle(), QString("Page # 1 (ID = 1)"));
        QVERIFY(viewer->isWindow());
        QVERIFY(viewer->canvas()->hasImage());
        viewer->close();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }
};

QMR_TEST(TestFeatureWiring)
#include "testfeaturewiring.moc"
