// Times the main window on a large store: the first load of the tree, a click on a full
// cabinet, the expansion of its drawers, and the statistics of the cabinet.
//
//   build/bench/bench_navigator [cabinets drawers folders documents pages]
//
// Defaults: 40 cabinets x 12 drawers x 15 folders x 8 documents x 2 page rows (115,200 pages).

#include <QApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "core/progress.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "store/itemstatistics.h"
#include "store/schema.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

using namespace qmr;

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int n[5] = {40, 12, 15, 8, 2};
    for (int i = 1; i < argc && i <= 5; ++i)
        n[i - 1] = QString::fromLocal8Bit(argv[i]).toInt();

    test::TestHome home;
    Session session(home.home(), home.settings());
    RunState state;
    StoreSchema::openDatabase(session.db(), home.home());
    Database& db = session.db();
    QElapsedTimer timer;
    timer.start();
    {
        Database::Transaction tx(db);
        for (int c = 0; c < n[0]; ++c) {
            db.execute("INSERT INTO Cabinet (Name, Password) VALUES (?, '')",
                       {QString("Cabinet %1").arg(c)});
            const qint32 cab = db.lastInsertId();
            for (int d = 0; d < n[1]; ++d) {
                db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (?, ?)",
                           {cab, QString("Drawer %1").arg(d)});
                const qint32 drw = db.lastInsertId();
                for (int f = 0; f < n[2]; ++f) {
                    db.execute("INSERT INTO Folder (DrawerId, Name) VALUES (?, ?)",
                               {drw, QString("Folder %1").arg(f)});
                    const qint32 fld = db.lastInsertId();
                    for (int o = 0; o < n[3]; ++o) {
                        db.execute("INSERT INTO Document (FolderId, Name, DateOnDocument, "
                                   "Amount) VALUES (?, ?, '2026-01-02 00:00:00', 9.5)",
                                   {fld, QString("Document %1").arg(o)});
                        const qint32 doc = db.lastInsertId();
                        for (int p = 0; p < n[4]; ++p)
                            db.execute("INSERT INTO Page (DocumentId, PageNumber, FileSize) "
                                       "VALUES (?, ?, 250000)",
                                       {doc, p + 1});
                    }
                }
            }
        }
        tx.commit();
    }
    std::printf("store filled:        %6lld ms\n", static_cast<long long>(timer.restart()));

    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    DrawerTemplates templates(home.home());
    ViewSettings view(home.settings());
    view.read();
    NavWindow window(CommandContext{session, state, prompter, choosers, progress, view}, templates);
    window.resize(1000, 700);
    window.load();
    std::printf("tree loaded:         %6lld ms  (%d nodes)\n",
                static_cast<long long>(timer.restart()), window.tree()->nodeCount());

    window.tree()->selectNode("CAB1");
    window.navigator().nodeClick("CAB1");
    std::printf("cabinet clicked:     %6lld ms  (%d nodes)\n",
                static_cast<long long>(timer.restart()), window.tree()->nodeCount());

    for (int d = 1; d <= n[1]; ++d)
        window.tree()->expandNode(QString("DRW%1").arg(d));
    std::printf("drawers expanded:    %6lld ms  (%d nodes)\n",
                static_cast<long long>(timer.restart()), window.tree()->nodeCount());

    const Statistics stats = ItemStatistics(db).of(Level::Cabinet, 1);
    std::printf("cabinet statistics:  %6lld ms  (%lld pages, %s)\n",
                static_cast<long long>(timer.restart()),
                static_cast<long long>(stats.count(Level::Page)), qPrintable(stats.bytesText()));
    return prompter.verify() ? 0 : 1;
}
