#include <QApplication>
#include <QTest>
#include <QTimer>

#include "app/startup.h"
#include "navigator/navwindow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/shots.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Pictures of the windows of the whole program as it starts, with its own icon.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void aboutAndHelp()
    {
        test::TestHome home;
        test::FixtureStore(home.home()).fillSample();
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        Startup run(home.home(), home.settings(), prompter, choosers);
        QVERIFY(run.start(false));
        run.window()->setGeometry(0, 0, 900, 660);
        run.window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(run.window()));
        for (const auto& [entry, name] :
             {std::pair{"mnuHelpAbout", "app-about"}, std::pair{"mnuHelpHelpTopics", "app-help"}}) {
            bool shot = false;
            const QString picture = QLatin1String(name);
            QTimer::singleShot(200, run.window(), [&] {
                if (QWidget* w = QApplication::activeModalWidget()) {
                    test::saveShot(w, picture);
                    shot = true;
                    w->close();
                }
            });
            run.window()->menus().action(QLatin1String(entry))->trigger();
            QVERIFY2(shot, name);
        }
        run.window()->close();
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
