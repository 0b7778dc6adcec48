// Times a drop of scans from a file manager onto a document of the tree, as a person makes
// it: the drop event into tvwMain, the progress window, the copies and the thumbnails.
//  - `cp` of the same files into a directory of the same disk, with and without `sync`;
//  - the processor time of one thumbnail, times the files, divided by the threads; and the same
//    thumbnails made on the threads at once, with nothing else running;
//  - the drop, from the event until the last page is in place, and the longest time the
//    window's event loop went without answering meanwhile; the processor time it took, by
//    thread.
// The goal: the drop takes at most 1.3 times the `cp` plus the thumbnails' share of the
// cores, and the window never stops answering for more than 50 ms.
//
//   build/bench/bench_drop [files [threads [width height]]]
//
// Defaults: 200 JPEG scans of 2550 x 3300, as many threads as cores. The files are made in
// a directory below the working directory, so that they lie on the disk of the work.

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QMimeData>
#include <QProcess>
#include <QSignalSpy>
#include <QThreadPool>
#include <QTemporaryDir>
#include <QUrl>
#include <cstdio>

#include "app/progresswindow.h"
#include "benchsupport.h"
#include "core/viewsettings.h"
#include "navigator/navdragdrop.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagefileadder.h"
#include "store/database.h"
#include "store/pagestore.h"
#include "store/schema.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "viewer/thumbnailmaker.h"

using namespace qmr;
using namespace qmr::bench;

namespace {

double timed(const QString& program, const QStringList& arguments)
{
    QElapsedTimer clock;
    clock.start();
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
    return clock.nsecsElapsed() / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int count = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 200;
    const int threads =
        argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : QThread::idealThreadCount();
    const QSize size(argc > 4 ? QString::fromLocal8Bit(argv[3]).toInt() : 2550,
                     argc > 4 ? QString::fromLocal8Bit(argv[4]).toInt() : 3300);

    QTemporaryDir work(QDir::current().filePath(QStringLiteral("dropbench-XXXXXX")));
    QDir dir(work.path());
    dir.mkpath(QStringLiteral("desk"));
    dir.mkpath(QStringLiteral("home"));

    // The files on the desk: a few distinct scans, each copied under several names.
    QElapsedTimer made;
    made.start();
    const int distinct = 8;
    QStringList scans;
    for (int i = 0; i < distinct; ++i) {
        const QString file = dir.filePath(QStringLiteral("scan%1.jpg").arg(i));
        QImageWriter writer(file, "jpeg");
        writer.setQuality(qtJpegQuality(50));
        writer.write(scan(size, i + 1));
        scans << file;
    }
    QStringList files;
    qint64 bytes = 0;
    for (int i = 0; i < count; ++i) {
        const QString file =
            dir.filePath(QStringLiteral("desk/Bob's scan %1.jpg").arg(i + 1, 3, 10, QChar('0')));
        QFile::copy(scans.at(i % distinct), file);
        files << file;
        bytes += QFileInfo(file).size();
    }
    timed(QStringLiteral("sync"), {});
    std::printf("desk: %d JPEG scans of %dx%d (%.0f KB each, %.0f MB in all), made in %.1f s\n",
                count, size.width(), size.height(), bytes / 1024.0 / count, bytes / 1048576.0,
                made.elapsed() / 1000.0);

    // cp of the same files, from the page cache as the drop reads them; three times, into
    // directories of their own, as one run on a shared disk varies by a third.
    QVector<double> cps;
    QVector<double> syncs;
    for (int i = 0; i < 3; ++i) {
        const QString into = dir.filePath(QStringLiteral("cp%1").arg(i));
        dir.mkpath(into);
        cps << timed(QStringLiteral("cp"), QStringList(files) << into);
        syncs << timed(QStringLiteral("sync"), {});
    }
    const double cpMs = median(cps);
    const double syncMs = median(syncs);
    std::printf("cp: %.0f ms (median of %.0f, %.0f, %.0f); its sync afterwards %.0f ms\n", cpMs,
                cps.at(0), cps.at(1), cps.at(2), syncMs);

    // One thumbnail's cost: the processor time of the whole program while it is made, as the
    // image code hands part of the work to threads of its own, which the clock on this
    // thread would not see while the other core is idle.
    QVector<double> one;
    QVector<double> oneWall;
    for (int i = 0; i < qMin(32, count); ++i) {
        QElapsedTimer clock;
        clock.start();
        const double before = cpuTimeMs(RUSAGE_SELF);
        ThumbnailMaker::makeThumbnail(files.at(i), dir.filePath(QStringLiteral("t%1.jpg").arg(i)),
                                      work.path());
        one << cpuTimeMs(RUSAGE_SELF) - before;
        oneWall << clock.nsecsElapsed() / 1e6;
    }
    const double thumbMs = median(one);
    const double thumbShare = thumbMs * count / threads;
    // The same thumbnails made on the threads at once, nothing else running: the floor of
    // any drop.
    QThreadPool pool;
    pool.setMaxThreadCount(threads);
    QElapsedTimer parallel;
    parallel.start();
    for (int i = 0; i < count; ++i)
        pool.start([&, i] {
            ThumbnailMaker::makeThumbnail(
                files.at(i), dir.filePath(QStringLiteral("p%1.jpg").arg(i)), work.path());
        });
    pool.waitForDone();
    const double parallelMs = parallel.nsecsElapsed() / 1e6;
    std::printf("one thumbnail: %.1f ms of processor time (%.1f ms on the clock); %d of them "
                "over %d threads: %.0f ms (made so: %.0f ms)\n",
                thumbMs, median(oneWall), count, threads, thumbShare, parallelMs);

    // The window on a store with one document, the document's node in view.
    test::TestHome home;
    Session session(home.home(), home.settings());
    StoreSchema::openDatabase(session.db(), home.home());
    Database& db = session.db();
    db.execute("INSERT INTO Cabinet (Name, Password) VALUES ('Bench', '')");
    const QString cabinet = QStringLiteral("CAB%1").arg(db.lastInsertId());
    db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (?, 'Drawer')", {db.lastInsertId()});
    const QString drawer = QStringLiteral("DRW%1").arg(db.lastInsertId());
    db.execute("INSERT INTO Folder (DrawerId, Name) VALUES (?, 'Folder')", {db.lastInsertId()});
    const QString folder = QStringLiteral("FLD%1").arg(db.lastInsertId());
    db.execute("INSERT INTO Document (FolderId, Name) VALUES (?, 'Scans')", {db.lastInsertId()});
    const qint32 documentId = db.lastInsertId();
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    ViewSettings view(home.settings());
    view.read();
    DrawerTemplates templates(home.home());
    ProgressWindow progress;
    NavWindow window(CommandContext{session, prompter, choosers, progress, view}, templates);
    window.resize(1400, 1000);
    window.load();
    window.show();
    NavTree* tree = window.tree();
    // Clicked and opened as a person does: a node's children come with its expansion.
    for (const QString& node : {cabinet, drawer, folder}) {
        window.navigator().nodeClick(node);
        if (QTreeWidgetItem* item = tree->node(node))
            item->setExpanded(true);
        QCoreApplication::processEvents();
    }
    const QString key = QStringLiteral("DOC%1").arg(documentId);
    if (!tree->node(key)) {
        std::fprintf(stderr, "The document's node is not in the tree (%s%s%s %s).\n",
                     tree->node(cabinet) ? "C" : "-", tree->node(drawer) ? "D" : "-",
                     tree->node(folder) ? "F" : "-",
                     qPrintable(prompter.seen().join(QStringLiteral(" | "))));
        return 1;
    }
    tree->scrollToItem(tree->node(key));
    const QPoint at = tree->visualItemRect(tree->node(key)).center();
    progress.setParent(&window, progress.windowFlags());
    QCoreApplication::processEvents();

    QMimeData data;
    QList<QUrl> urls;
    for (const QString& f : files)
        urls << QUrl::fromLocalFile(f);
    data.setUrls(urls);
    QSignalSpy done(&window.dragDrop(), &NavDragDrop::dropDone);
    window.dragDrop().files().setThreadCount(threads);
    // When the first page went under way and when the last thumbnail came back.
    QElapsedTimer sinceDrop;
    double firstComingMs = -1;
    double lastDoneMs = -1;
    QObject::connect(&window.dragDrop().files(), &PageFileAdder::thumbnailComing, [&] {
        if (firstComingMs < 0)
            firstComingMs = sinceDrop.nsecsElapsed() / 1e6;
    });
    QObject::connect(&window.dragDrop().files(), &PageFileAdder::thumbnailDone,
                     [&] { lastDoneMs = sinceDrop.nsecsElapsed() / 1e6; });
    const QMap<QString, ThreadTime> before = threadTimes();
    const Watch drop = watch(
        [&] {
            sinceDrop.start();
            QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(tree->viewport(), &enter);
            QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(tree->viewport(), &move);
            QDropEvent dropped(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(tree->viewport(), &dropped);
        },
        [&] { return done.size() > 0; });

    // Where the processor went: each thread's time running and waiting for a core.
    const QMap<QString, ThreadTime> after = threadTimes();
    for (auto it = after.begin(); it != after.end(); ++it) {
        const ThreadTime was = before.value(it.key());
        if (it->runMs - was.runMs >= 1)
            std::printf("  thread %s (%s): ran %.0f ms, waited for a core %.0f ms\n",
                        qPrintable(it.key()), qPrintable(it->name), it->runMs - was.runMs,
                        it->waitMs - was.waitMs);
    }
    // Every page in place, whole, with its thumbnail.
    const QVector<PageRow> rows = session.pages().pages(documentId);
    int whole = 0;
    int thumbs = 0;
    for (int i = 0; i < rows.size(); ++i) {
        const QString page = session.paths().computedPagePath(rows.at(i).id);
        whole += QFileInfo(page).size() == QFileInfo(files.value(i)).size() ? 1 : 0;
        thumbs += QFile::exists(session.paths().computedThumbPath(rows.at(i).id)) ? 1 : 0;
    }
    std::printf("drop of %d files on a document: %d pages, %d files whole, %d thumbnails; "
                "%.0f ms, window unanswered at most %.1f ms (goal <= 50)%s\n",
                count, int(rows.size()), whole, thumbs, drop.elapsedMs, drop.longestStallMs,
                prompter.seen().isEmpty() ? "" : " -- the drop said something");
    std::printf("first page under way after %.0f ms, last thumbnail back at %.0f ms\n",
                firstComingMs, lastDoneMs);
    std::printf("processor time meanwhile: %.0f ms in all, %.0f ms of it on the window's thread\n",
                drop.cpuMs, drop.windowCpuMs);
    const double goal = 1.3 * cpMs + thumbShare;
    std::printf("goal: 1.3 x cp + thumbnails / threads = %.0f ms (with cp's sync: %.0f ms); "
                "the drop took %.2f of it; %s\n",
                goal, goal + 1.3 * syncMs, drop.elapsedMs / goal,
                drop.elapsedMs <= goal && drop.longestStallMs <= 50 ? "met" : "NOT met");
    // The threads together make thumbnails a little slower than one alone does: against
    // what they really took, the rest of the drop shows.
    std::printf("against 1.3 x cp + the thumbnails as made on the threads (%.0f ms): %.2f\n",
                1.3 * cpMs + parallelMs, drop.elapsedMs / (1.3 * cpMs + parallelMs));
    // The progress window lives on this stack, not with the window that showed it.
    progress.setParent(nullptr);
    return 0;
}
