#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "find/finddialog.h"
#include "tests/navigator/navharness.h"
#include "tests/support/shots.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// The find dialog, each tab, and a found branch in the main window.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void findDialog()
    {
        test::NavHarness h;
        h.loadSample();
        FindRecord& r = h.state.findRecord();
        r.keywords = "statement tax";
        r.cabinetName = "Home Papers";
        r.drawerName = "Bank";
        r.folderName = "Checking";
        r.scanFrom = QDate(2026, 1, 1);
        r.scanThru = QDate(2026, 3, 31);
        r.amountFrom = 1000;
        r.amountThru = 2500;
        FindDialog dialog(h.navigator().context(), nullptr, h.window.get());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        int tab = 0;
        for (const char* name : {"keywords", "location", "advanced"}) {
            dialog.findChild<QTabWidget*>("tabFind")->setCurrentIndex(tab++);
            test::saveShot(&dialog, QString("dialog-find-%1").arg(name));
        }
        dialog.reject();
    }

    void foundBranch()
    {
        test::NavHarness h;
        h.loadSample();
        h.window->resize(1000, 640);
        h.clickPath({"CAB1", "DRW1", "FLD1"});
        QTimer::singleShot(20, h.window.get(), [] {
            if (auto* dialog = qobject_cast<FindDialog*>(QApplication::activeModalWidget())) {
                dialog->findChild<QLineEdit*>("txtKeywords")->setText("checking return");
                dialog->findChild<QPushButton*>("cmdFind")->click();
            }
        });
        h.window->menus().action("mnuFileFind")->trigger();
        QVERIFY(h.tree()->node("ROOTFOUND"));
        h.click("FDC1");
        test::saveShot(h.window.get(), "navigator-found");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
