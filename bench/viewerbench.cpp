// Times the page viewer on a 2550 x 3300 JPEG page (letter size at 300 dpi): from the open
// command to the image drawn on the screen, a repaint at 400 %, and a save (JPEG, thumbnail
// and store); and counts the copies of the image that the viewer holds along the way.
//
//   build/bench/bench_viewer [runs]
//
// Goals: on screen <= 150 ms, repaint <= 16 ms, save <= 250 ms, at most two copies.

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cstdio>

#include "core/progress.h"
#include "core/prompter.h"
#include "core/viewsettings.h"
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
    const CommandContext context{session, prompter, choosers, progress, view};

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
