#include <QApplication>
#include <QScopeGuard>
#include <QTest>

#include "core/textfile.h"
#include "help/aboutdialog.h"
#include "help/helplocator.h"
#include "help/helpwindow.h"
#include "tests/support/shots.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Pictures of the help window on the help text the program ships, and of the About box.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void helpAndAbout()
    {
        test::TestHome home;
        QVERIFY(HelpLocator::ensureInHome(home.home()));
        QWidget main;
        main.setGeometry(0, 0, 900, 680);
        HelpWindow help(home.file("qmrhelp.txt"), &main);
        help.show();
        QVERIFY(QTest::qWaitForWindowExposed(&help));
        test::saveShot(&help, "help-contents");
        help.openTopic(6);
        test::saveShot(&help, "help-page");
        help.cmdNext();
        test::saveShot(&help, "help-page-2");

        // The same in a dark theme, with a line marked by the arrow keys.
        const QPalette light = QApplication::palette();
        const auto restore = qScopeGuard([&] { QApplication::setPalette(light); });
        QApplication::setPalette(test::darkPalette());
        HelpWindow dark(home.file("qmrhelp.txt"), &main);
        dark.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dark));
        dark.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&dark));
        // Tab away and back: the list shows the frame of keyboard focus.
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Down, Qt::Key_Down})
            QTest::keyClick(dark.windowHandle(), key);
        test::saveShot(&dark, "help-contents-dark");
        dark.openTopic(1);
        test::saveShot(&dark, "help-page-dark");
        QApplication::setPalette(light);

        AboutDialog about(1234567);
        about.show();
        QVERIFY(QTest::qWaitForWindowExposed(&about));
        test::saveShot(&about, "dialog-about");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
