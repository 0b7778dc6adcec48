#include <QDialog>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <csignal>

#include "app/barwidget.h"
#include "app/exitonsignal.h"
#include "app/progresswindow.h"
#include "app/splashwindow.h"
#include "dialogs/boxprompter.h"
#include "navigator/navigator.h"
#include "store/database.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/app/apprun.h"

using namespace qmr;

class TestStartup : public QObject
{
    Q_OBJECT
private slots:
    void firstAndSecondRun()
    {
        test::AppRun run;
        QVERIFY(run.start());
        NavWindow* w = run.window();
        QVERIFY(w->isFirstShow());
        QVERIFY(w->isMaximized());
        // The help text is written out for the help window to read.
        QVERIFY(QFile::exists(run.home.file("qmrhelp.txt")));
        // The tree is at least as wide as it stands by default. Its one column is as wide as the
        // widest name in view; the tree shows it whole, unless that would take more than a third
        // of the window.
        QVERIFY(w->treeWidthTwips() >= 3000 - 15);
        NavTree* tree = run.tree();
        const int names = tree->header()->sectionSize(0);
        const int third = w->width() / 3;
        const auto sizes = [&] {
            return QString::asprintf("names %d wide, the tree %d, its view %d, a third %d", names,
                                     tree->width(), tree->viewport()->width(), third)
                .toLocal8Bit();
        };
        QVERIFY2(tree->viewport()->width() >= names || tree->width() >= third - 1,
                 sizes().constData());
        QVERIFY2(tree->width() <= third + 1, sizes().constData());
        // Six steps of eight: the bar never quite fills.
        QCOMPARE(run.startup->splash()->bar()->position(), 6);
        QCOMPARE(run.startup->splash()->bar()->maximum(), 8);
        QVERIFY(!run.startup->splash()->isVisible());
        QCOMPARE(run.state().findRecord().cabinetName, QStringLiteral("(All)"));
        // Made narrow, the window cuts the names; made wide again, it shows them whole.
        w->showNormal();
        w->resize(360, w->height());
        QTRY_VERIFY(tree->width() <= w->width() / 3 + 1);
        QVERIFY(tree->viewport()->width() < names);
        w->resize(1000, w->height());
        QTRY_VERIFY2(tree->viewport()->width() >= names, sizes().constData());
        // Once the person has set the divider, the tree keeps the width they gave it.
        run.home.settings().set(keys::TreeWidth, QString::number(w->treeWidthTwips()));
        const int set = tree->width();
        w->resize(700, w->height());
        QTRY_COMPARE(w->width(), 700);
        QCOMPARE(tree->width(), set);

        // Leave the window in its normal state at a known place, with a drawer selected.
        w->setGeometry(40, 50, 700, 500);
        const QRect normal = w->geometry();
        const QString drawer = NavTree::keyOf(w->tree()->node("ROOT")->child(0)->child(1));
        w->tree()->selectNode(drawer);
        w->navigator().nodeClick(drawer);
        w->close();
        run.startup.reset();

        Settings& settings = run.home.reopenSettings();
        QCOMPARE(settings.getSetting("frmNavTree.WindowState"), QStringLiteral("0"));
        const QString last = settings.getSetting("LastNavTreeNodeKey");
        QVERIFY(last.startsWith("DRW"));
        QVERIFY(run.start());
        w = run.window();
        QVERIFY(!w->isFirstShow());
        QVERIFY(!w->isMaximized());
        QCOMPARE(w->geometry().size(), normal.size());
        QCOMPARE(w->tree()->selectedKey(), last);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    // A store of an older version is brought up to date by the start, its rows kept.
    void olderStoreIsUpgradedOnStart()
    {
        test::AppRun run;
        {
            Database db;
            db.open(StoreSchema::storePath(run.home.home()));
            StoreSchema::createTables(db);
            StoreSchema::updateDatabase(db, 2);
            db.execute("INSERT INTO Cabinet (Name, Password) VALUES ('Old one', '')");
        }
        QVERIFY(run.start(false));
        QCOMPARE(StoreSchema::readVersion(run.session().db()), 4);
        QCOMPARE(run.tree()->node("CAB1")->text(0), QStringLiteral("Old one"));
    }

    void failuresEndTheStartWithAMessage()
    {
        test::AppRun run;
        QVERIFY(run.home.writeFile("qmr.mdb", QByteArray(2048, '\x7f')));
        QVERIFY(!run.start(false));
        QCOMPARE(run.prompter.seen().size(), 1);
        QVERIFY2(run.prompter.seen().first().contains("qmr.mdb"),
                 qPrintable(run.prompter.seen().first()));
        QVERIFY(!run.window());
        QCOMPARE(QFileInfo(run.home.file("qmr.mdb")).size(), 2048); // untouched
    }

    void prerequisite()
    {
        test::ScriptedPrompter prompter;
        QVERIFY(Startup::checkDataAccess(prompter, StoreSchema::kMinimumSqlite));
        QVERIFY(Startup::checkDataAccess(prompter, Database::runtimeVersion()));
        prompter.expect("MDAC 2.7 is not installed.  Please visit our website and select "
                        "Download.  Then select MDAC.");
        QVERIFY(!Startup::checkDataAccess(prompter, 3007000));
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
    }

    void progressBar_data()
    {
        test::columns<int, int, double>({"maximum", "steps", "fraction"});
        // The bar has a step more than the work, so it never quite fills.
        test::row("beyond the end", 3, 9, 0.75);
        test::row("none", 10, 0, 0.0);
        test::row("half", 9, 5, 0.5);
    }
    void progressBar()
    {
        const auto [maximum, steps, fraction] =
            test::fetch<int, int, double>("maximum", "steps", "fraction");
        ProgressWindow w;
        w.start("Working", 0, maximum);
        for (int i = 0; i < steps; ++i)
            w.step(QString("step %1").arg(i));
        QCOMPARE(w.bar()->fraction(), fraction);
        if (steps > 0) {
            QCOMPARE(w.status(), QString("step %1").arg(steps - 1));
            // Quick steps share a repaint; the line still comes to the last of them.
            QTRY_COMPARE(w.findChild<QLabel*>("lblStatus")->text(),
                         QString("step %1").arg(steps - 1));
        }
        w.end();
        QVERIFY(w.stopped());
        QVERIFY(!w.isVisible());
    }

    void progressRefusesToCloseAndCancels()
    {
        ProgressWindow w;
        w.start("Working", 1, 100);
        QVERIFY(!w.stopped());
        QVERIFY(!w.close());
        QVERIFY(w.isVisible());
        auto* cancel = w.findChild<QPushButton*>("cmdCancel");
        QVERIFY(cancel && cancel->isHidden());
        w.showCancel();
        QVERIFY(!cancel->isHidden());
        cancel->click();
        QVERIFY(w.stopped());
        // The loop that sees the flag ends the progress itself.
        w.end();
        QVERIFY(!w.isVisible());
        // A second start may come while the window is up: the bar goes back to 0.
        w.start("Counting", 1, 10);
        w.step("one");
        w.start("Deleting", 1, 4);
        QCOMPARE(w.bar()->position(), 0);
        QVERIFY(!w.stopped());
        w.end();

        // The splash's bar stops at its end.
        SplashWindow s;
        s.showSplash("Starting", 1, 3);
        for (const char* text : {"a", "b", "c", "d", "e"})
            s.splashStep(text);
        QCOMPARE(s.status(), QStringLiteral("e"));
        QCOMPARE(s.bar()->position(), 3);
        QCOMPARE(s.windowTitle(), QStringLiteral("Starting"));
    }

    void signalWhileBusy_data()
    {
        // What the program is doing when it is asked to quit.
        test::columns<QString>({"busy"});
        test::row("a question waits", QString("question"));
        test::row("a dialog is open", QString("dialog"));
        test::row("a walk that offers Cancel", QString("walk"));
    }
    void signalWhileBusy()
    {
        QFETCH(QString, busy);
        test::AppRun run;
        ExitOnSignal exitOnSignal;
        QVERIFY(run.start());
        exitOnSignal.attach(run.window());
        // Stands for the program's main loop.
        QEventLoop mainLoop;
        connect(run.window(), &NavWindow::exitRequested, &mainLoop, [&] { mainLoop.exit(0); });
        QTimer::singleShot(30000, &mainLoop, [&] { mainLoop.exit(1); });
        QString outcome;
        bool ended = false; // the busy work had ended when the run ended
        connect(run.window(), &NavWindow::exitRequested, this, [&] { ended = !outcome.isEmpty(); });
        QTimer::singleShot(0, this, [&] {
            if (busy == "walk") {
                ProgressWindow& progress = *run.startup->progress();
                progress.start("Walking", 1, 1000);
                progress.showCancel();
                std::raise(SIGTERM);
                int steps = 0;
                for (; steps < 1000 && !progress.stopped(); ++steps) {
                    progress.step("a step");
                    QCoreApplication::processEvents();
                }
                progress.end();
                outcome = steps < 1000 ? "cancelled" : "went to the end";
                return;
            }
            QTimer::singleShot(0, [] { std::raise(SIGTERM); });
            if (busy == "question") {
                BoxPrompter box;
                outcome = box.ask("Delete it?", Prompter::Buttons::YesNoCancel) ==
                                  Prompter::Answer::Cancel
                              ? "cancelled"
                              : "answered otherwise";
            } else {
                QDialog dialog(run.window());
                outcome = dialog.exec() == QDialog::Rejected ? "cancelled" : "accepted";
            }
        });
        QCOMPARE(mainLoop.exec(), 0);
        QCOMPARE(outcome, QStringLiteral("cancelled"));
        QVERIFY(ended);
        // Saved as File > Exit saves.
        QVERIFY(run.home.reopenSettings().contains("LastNavTreeNodeKey"));
        QVERIFY(!run.session().db().isOpen());
    }
};

QMR_TEST(TestStartup)
#include "teststartup.moc"
