// Times the page pane's thumbnails on a document of scanned pages:
//  - one missing thumbnail made on one core, beside `djpeg -scale 1/8` of the same files;
//  - a block of 64 missing thumbnails made on the pool, and the longest time the window's
//    event loop went without answering meanwhile;
//  - a block of 64 whose thumbnails are on disk (not in memory), until it is painted;
//  - paging through the whole document, with the process's resident memory.
//
//   build/bench/bench_thumbnails [pages [threads [width height]]]
//
// Defaults: 500 pages of 2550 x 3300 JPEG scans, 2 threads.

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QThreadPool>
#include <QTimer>
#include <algorithm>
#include <cstdio>

#include "benchsupport.h"
#include "core/progress.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "filing/thumbnailcache.h"
#include "filing/thumbnailmaker.h"
#include "navigator/navigator.h"
#include "navigator/navwindow.h"
#include "navigator/pagepane.h"
#include "store/schema.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

using namespace qmr;
using namespace qmr::bench;

namespace {

double rssMegabytes(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int pages = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 500;
    const int threads = argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : 2;
    const QSize size(argc > 4 ? QString::fromLocal8Bit(argv[3]).toInt() : 2550,
                     argc > 4 ? QString::fromLocal8Bit(argv[4]).toInt() : 3300);

    test::TestHome home;
    home.settings().set(keys::DisplayCount, QStringLiteral("64"));
    home.settings().set(keys::ThumbView, QStringLiteral("thumbnail"));
    Session session(home.home(), home.settings());
    RunState state;
    StoreSchema::openDatabase(session.db(), home.home());
    Database& db = session.db();

    // The document: a few distinct scans at the page quality of the scan settings, copied
    // to every page's computed path.
    QElapsedTimer timer;
    timer.start();
    const int distinct = 8;
    QStringList scans;
    qint64 bytes = 0;
    for (int i = 0; i < distinct; ++i) {
        const QString file = home.file(QStringLiteral("scan%1.jpg").arg(i));
        QImageWriter writer(file, "jpeg");
        writer.setQuality(qtJpegQuality(50));
        writer.write(scan(size, i + 1));
        scans << file;
        bytes += QFileInfo(file).size();
    }
    qint32 documentId = -1;
    {
        Database::Transaction tx(db);
        db.execute("INSERT INTO Cabinet (Name, Password) VALUES ('Bench', '')");
        const qint32 cab = db.lastInsertId();
        db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (?, 'Drawer')", {cab});
        const qint32 drw = db.lastInsertId();
        db.execute("INSERT INTO Folder (DrawerId, Name) VALUES (?, 'Folder')", {drw});
        const qint32 fld = db.lastInsertId();
        db.execute("INSERT INTO Document (FolderId, Name) VALUES (?, 'Scans')", {fld});
        documentId = db.lastInsertId();
        for (int n = 1; n <= pages; ++n) {
            db.execute("INSERT INTO Page (DocumentId, Name, PageNumber, ScanDate, Filetype) "
                       "VALUES (?, '', ?, '2026-03-14 09:30:00', 'JPG')",
                       {documentId, n});
            const qint32 id = db.lastInsertId();
            const QString path = session.paths().computedPagePath(id);
            PagePaths::ensurePathExists(path, home.path());
            QFile::copy(scans.at(n % distinct), path);
        }
        tx.commit();
    }
    std::printf("document: %d pages of %dx%d JPEG scans (%.0f KB each), made in %.1f s\n", pages,
                size.width(), size.height(), bytes / 1024.0 / distinct, timer.elapsed() / 1000.0);

    // One missing thumbnail on one core, and the same files through djpeg.
    const QVector<PageRow> rows = session.pages().pages(documentId);
    QVector<double> maker;
    const int samples = qMin(24, int(rows.size()));
    for (int i = 0; i < samples; ++i) {
        const QString page = session.paths().pagePath(rows[i].id, rows[i].filename);
        const QString thumb = home.file(QStringLiteral("single/%1.jpg").arg(i));
        QElapsedTimer one;
        one.start();
        if (!ThumbnailMaker::makeThumbnail(page, thumb, home.path()))
            std::printf("  could not make the thumbnail of %s\n", qPrintable(page));
        maker << one.nsecsElapsed() / 1e6;
    }
    const double makerMs = median(maker);
    std::printf("one missing thumbnail, one core: median %.1f ms, best %.1f ms (goal <= 30)\n",
                makerMs, *std::min_element(maker.begin(), maker.end()));
    const QString djpeg = QStandardPaths::findExecutable(QStringLiteral("djpeg"));
    if (djpeg.isEmpty()) {
        std::printf("djpeg -scale 1/8: not installed (libjpeg-turbo-progs)\n");
    } else {
        QVector<double> reference;
        for (int i = 0; i < samples; ++i) {
            const QString page = session.paths().pagePath(rows[i].id, rows[i].filename);
            QElapsedTimer one;
            one.start();
            QProcess::execute(djpeg,
                              {QStringLiteral("-scale"), QStringLiteral("1/8"),
                               QStringLiteral("-outfile"), QStringLiteral("/dev/null"), page});
            reference << one.nsecsElapsed() / 1e6;
        }
        // What starting a process costs, so that the decoder's own time is compared too.
        QVector<double> start;
        for (int i = 0; i < 8; ++i) {
            QElapsedTimer one;
            one.start();
            QProcess quiet;
            quiet.start(djpeg, {QStringLiteral("-version")});
            quiet.waitForFinished();
            start << one.nsecsElapsed() / 1e6;
        }
        const double djpegMs = median(reference);
        const double decodeMs = qMax(0.1, djpegMs - median(start));
        std::printf("djpeg -scale 1/8, same files: median %.1f ms per file (%.1f ms without "
                    "starting the process)\n",
                    djpegMs, decodeMs);
        std::printf("ratio thumbnail / djpeg: %.2f (%.2f against the decode alone)\n",
                    makerMs / djpegMs, makerMs / decodeMs);
    }

    // The same work on the pool with no window: what the cores give.
    {
        QThreadPool pool;
        pool.setMaxThreadCount(threads);
        const int n = qMin(64, int(rows.size()));
        QElapsedTimer all;
        all.start();
        for (int i = 0; i < n; ++i) {
            const QString page = session.paths().pagePath(rows[i].id, rows[i].filename);
            const QString thumb = home.file(QStringLiteral("pool/%1.jpg").arg(i));
            pool.start(
                [page, thumb, &home] { ThumbnailMaker::makeThumbnail(page, thumb, home.path()); });
        }
        pool.waitForDone();
        std::printf("%d thumbnails on a pool of %d threads, no window: %.0f ms\n", n, threads,
                    all.nsecsElapsed() / 1e6);
    }

    // The window, with the document in its page pane.
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    ViewSettings view(home.settings());
    view.read();
    DrawerTemplates templates(home.home());
    NavWindow window(CommandContext{session, state, prompter, choosers, progress, view}, templates);
    window.resize(1400, 1000);
    window.load();
    window.show();
    PagePane& pane = *window.pageList();
    ThumbnailCache& cache = pane.thumbnails();
    cache.setThreadCount(threads);
    auto delivered = [&] { return cache.outstanding() == 0; };

    const Watch missing =
        watch([&] { window.navigator().showPagesInListView(documentId); }, delivered);
    std::printf("block of 64 missing thumbnails, %d threads: complete in %.0f ms (goal < 1200), "
                "window unanswered at most %.1f ms (goal <= 50)\n",
                threads, missing.elapsedMs, missing.longestStallMs);

    QVector<double> blocks;
    double longestStall = missing.longestStallMs;
    double peakRss = rssMegabytes("VmRSS:");
    while (pane.paging().canGoForward()) {
        const Watch w = watch([&] { pane.next(); }, delivered);
        blocks << w.elapsedMs;
        longestStall = qMax(longestStall, w.longestStallMs);
        peakRss = qMax(peakRss, rssMegabytes("VmRSS:"));
    }
    std::printf("paged through all %d pages (%d more blocks, median %.0f ms each): window "
                "unanswered at most %.1f ms; resident %.0f MB at most while paging, high-water "
                "mark %.0f MB (goal < 200)\n",
                pages, int(blocks.size()), median(blocks), longestStall, peakRss,
                rssMegabytes("VmHWM:"));

    // Thumbnails on disk, not in memory: the block until it is painted.
    QVector<double> onDisk;
    for (int round = 0; round < 5; ++round) {
        cache.clearMemory();
        const Watch w = watch(
            [&] {
                if (round % 2 == 0)
                    pane.first();
                else
                    pane.last();
            },
            delivered);
        QElapsedTimer paint;
        paint.start();
        window.repaint();
        onDisk << w.elapsedMs + paint.nsecsElapsed() / 1e6;
    }
    std::printf("block of 64 with thumbnails on disk: shown in %.1f ms median, %.1f ms at most "
                "(goal <= 150)\n",
                median(onDisk), *std::max_element(onDisk.begin(), onDisk.end()));
    QVector<double> inMemory;
    for (int round = 0; round < 5; ++round) {
        const Watch w = watch([&] { round % 2 == 0 ? pane.first() : pane.last(); }, delivered);
        inMemory << w.elapsedMs;
    }
    std::printf("block of 64 from memory: %.1f ms median\n", median(inMemory));
    return 0;
}
