// Times the page viewer on a 2550 x 3300 JPEG page (letter size at 300 dpi): from the open
// command to the image drawn on the screen, a repaint at 400 %, and a save (JPEG, thumbnail
// and store); and counts the copies of the image that the viewer holds along the way.
// First it opens a 7016 x 9921 colour page (A3 at 600 dpi) in the viewer and reads the
// process's resident memory (VmRSS) and its peak (VmHWM) from /proc/self/status: over the
// open, and over a turn and a trim with their undos.
//
//   build/bench/bench_viewer [runs]
//
// Goals: on screen <= 150 ms, repaint <= 16 ms, save <= 250 ms, at most two copies; the A3
// page in the viewer <= 400 MB resident, and no more than that at the peak of the open. An
// edit makes its result beside the page, so its peak is shown but has no goal.

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cstdio>

#include "core/progress.h"
#include "core/prompter.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "store/pagepaths.h"
#include "store/schema.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/testhome.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"
#include "viewer/viewerpageopener.h"

using namespace qmr;

namespace {

// Answers every question with Yes (the save's "auto-assign" question) and keeps nothing.
class YesPrompter : public Prompter
{
public:
    Answer ask(const QString&, Buttons buttons) override
    {
        return buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    }
};

// A scanned statement: a tinted sheet with lines of text and a little noise, which JPEG
// finds as hard as a real page.
QImage scannedPage()
{
    QImage image(2550, 3300, QImage::Format_RGB32);
    image.fill(QColor(246, 245, 238));
    QPainter p(&image);
    QFont font("DejaVu Serif");
    font.setPixelSize(42);
    p.setFont(font);
    p.setPen(QColor(35, 35, 50));
    for (int y = 300; y < 3000; y += 60)
        p.drawText(250, y,
                   QString("%1/03/2026  Statement line with words and figures  %2")
                       .arg(y % 28 + 1)
                       .arg(y * 3.75, 0, 'f', 2));
    p.end();
    QRgb* pixels = reinterpret_cast<QRgb*>(image.bits());
    for (qint64 i = 0; i < 40000; ++i)
        pixels[(i * 104729) % 3300 * 2550 + (i * 7919) % 2550] = qRgb(200, 200, 190);
    return image;
}

// A value in kB of /proc/self/status ("VmRSS", "VmHWM"); -1 where there is none.
qint64 statusKb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(field) + ':';
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

// Starts the peak afresh at the present resident size (Linux 4.0 and later).
bool resetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    return refs.open(QIODevice::WriteOnly) && refs.write("5") == 1;
}

// An A3 page scanned at 600 dpi in colour: a tinted sheet with ruled blocks of "text".
QImage a3Scan()
{
    QImage image(7016, 9921, QImage::Format_RGB32);
    image.fill(QColor(246, 245, 238));
    image.setDotsPerMeterX(qRound(600 / 0.0254));
    image.setDotsPerMeterY(qRound(600 / 0.0254));
    QPainter p(&image);
    for (int y = 700; y < 9200; y += 110)
        for (int x = 600; x < 6400; x += 700)
            p.fillRect(x, y, 560 - (x * 7 + y) % 300, 50, QColor(35, 35, 50));
    return image;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// The copies of a full image the viewer holds: its image with what undo keeps, and the
// reduced copy for drawing.
double copies(const PageViewWindow& w, qint64 fullBytes)
{
    qint64 bytes = w.pageImage().memoryBytes() + w.canvas()->cacheBytes();
    if (w.canvas()->image().cacheKey() != w.pageImage().image().cacheKey())
        bytes += w.canvas()->image().sizeInBytes();
    return double(bytes) / double(fullBytes);
}

struct PaintWatch : QObject
{
    PageCanvas* canvas = nullptr;
    bool painted = false;
    bool eventFilter(QObject*, QEvent* e) override
    {
        if (e->type() == QEvent::Paint && canvas->hasImage())
            painted = true;
        return false;
    }
};

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
    QApplication app(argc, argv);
    const int runs = argc > 1 ? qMax(1, QString::fromLocal8Bit(argv[1]).toInt()) : 7;

    test::TestHome home;
    qint32 pageId = -1;
    {
        test::FixtureStore store(home.home());
        const qint32 doc =
            store.document(store.folder(store.drawer(store.cabinet("Bench"), "D"), "F"), "Doc");
        pageId = store.page(doc, 1, QSize(100, 100));
    }
    Session session(home.home(), home.settings());
    RunState state;
    StoreSchema::openDatabase(session.db(), home.home());
    const QString path = session.paths().computedPagePath(pageId);
    const QImage page = scannedPage();
    page.save(path, "JPG", 75);
    const qint64 fullBytes = page.sizeInBytes();
    std::printf("page: %dx%d, %lld bytes on disk, %lld bytes decoded\n", page.width(),
                page.height(), qlonglong(QFile(path).size()), qlonglong(fullBytes));

    YesPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    ViewSettings view(home.settings());
    const CommandContext context{session, state, prompter, choosers, progress, view};

    {
        qint32 a3 = -1;
        {
            test::FixtureStore store(home.home());
            a3 = store.pageRow(
                store.document(store.folder(store.drawer(store.cabinet("A3"), "D"), "F"), "Doc"),
                1);
        }
        const QString a3Path = session.paths().computedPagePath(a3);
        PagePaths::ensurePathExists(a3Path);
        if (!a3Scan().save(a3Path, "JPG", 75)) {
            std::printf("cannot write the A3 page\n");
            return 1;
        }
        const qint64 idleKb = statusKb("VmRSS");
        const bool peakReset = resetPeak();
        view.setZoomDefault(QStringLiteral("FITWIDTH"));
        ViewerPageOpener opener(context);
        QElapsedTimer clock;
        clock.start();
        opener.openPage(a3);
        PageViewWindow* w = opener.viewer();
        PaintWatch watch;
        watch.canvas = w->canvas();
        w->canvas()->viewport()->installEventFilter(&watch);
        while (!watch.painted && clock.elapsed() < 60000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        const double shownMs = clock.nsecsElapsed() / 1e6;
        const qint64 openKb = statusKb("VmRSS");
        const qint64 openPeakKb = statusKb("VmHWM");
        w->cmdRotateClockwise();
        w->canvas()->viewport()->repaint();
        w->mnuEditUndo();
        w->cmdAutoTrim();
        w->canvas()->viewport()->repaint();
        w->mnuEditUndo();
        w->canvas()->viewport()->repaint();
        const qint64 editsPeakKb = statusKb("VmHWM");
        const qint64 editedKb = statusKb("VmRSS");
        std::printf("A3 page: %dx%d, %lld bytes on disk, %s, shown in %.0f ms\n",
                    w->pageImage().image().width(), w->pageImage().image().height(),
                    qlonglong(QFile(a3Path).size()), watch.painted ? "drawn" : "NOT DRAWN",
                    shownMs);
        std::printf("  resident before the open:  %6lld MB\n", idleKb / 1024);
        std::printf("  resident after the open:   %6lld MB            goal 400\n", openKb / 1024);
        std::printf("  peak over the open:        %6lld MB%s  goal 400\n", openPeakKb / 1024,
                    peakReset ? "           " : " (of the run)");
        std::printf("  resident after the edits:  %6lld MB            goal 400\n", editedKb / 1024);
        std::printf("  peak with turn, trim, undo:%6lld MB%s\n", editsPeakKb / 1024,
                    peakReset ? "" : " (of the run)");
        w->close();
        QCoreApplication::processEvents();
        QFile::remove(a3Path);
    }

    std::vector<double> open[2], repaint, save;
    double mostCopies = 0;
    QSize windowSize;
    for (const char* zoom : {"NONE", "FITWIDTH"}) {
        view.setZoomDefault(QString::fromLatin1(zoom));
        for (int run = 0; run < runs; ++run) {
            ViewerPageOpener opener(context);
            QElapsedTimer clock;
            clock.start();
            opener.openPage(pageId);
            PageViewWindow* w = opener.viewer();
            PaintWatch watch;
            watch.canvas = w->canvas();
            w->canvas()->viewport()->installEventFilter(&watch);
            while (!watch.painted && clock.elapsed() < 5000)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            open[zoom[0] == 'F'].push_back(clock.nsecsElapsed() / 1e6);
            windowSize = w->size();
            mostCopies = std::max(mostCopies, copies(*w, fullBytes));

            if (zoom[0] == 'F') {
                w->canvas()->setZoomPercent(400);
                w->canvas()->verticalScrollBar()->setValue(3000);
                w->canvas()->horizontalScrollBar()->setValue(2000);
                for (int i = 0; i < 5; ++i) {
                    clock.restart();
                    w->canvas()->viewport()->repaint();
                    repaint.push_back(clock.nsecsElapsed() / 1e6);
                }
                mostCopies = std::max(mostCopies, copies(*w, fullBytes));
                w->cmdRotateClockwise();
                w->cmdZoomFitWidth();
                w->canvas()->viewport()->repaint();
                mostCopies = std::max(mostCopies, copies(*w, fullBytes));
                w->cmdAutoTrim();
                w->canvas()->viewport()->repaint();
                mostCopies = std::max(mostCopies, copies(*w, fullBytes));
                w->mnuEditUndo();
                w->mnuEditUndo();
                clock.restart();
                w->save();
                save.push_back(clock.nsecsElapsed() / 1e6);
                mostCopies = std::max(mostCopies, copies(*w, fullBytes));
            }
            w->close();
            QCoreApplication::processEvents();
        }
    }
    std::printf("window %dx%d, %d runs each, medians (worst):\n", windowSize.width(),
                windowSize.height(), runs);
    std::printf("  open to drawn, 100 %%:      %6.1f ms (%6.1f)   goal 150\n", median(open[0]),
                *std::max_element(open[0].begin(), open[0].end()));
    std::printf("  open to drawn, fit width:  %6.1f ms (%6.1f)   goal 150\n", median(open[1]),
                *std::max_element(open[1].begin(), open[1].end()));
    std::printf("  repaint at 400 %%:          %6.1f ms (%6.1f)   goal 16\n", median(repaint),
                *std::max_element(repaint.begin(), repaint.end()));
    std::printf("  save (JPEG, thumb, store): %6.1f ms (%6.1f)   goal 250\n", median(save),
                *std::max_element(save.begin(), save.end()));
    std::printf("  copies of the image held:  %6.2f at most          goal 2\n", mostCopies);
    return 0;
}
