#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QVector>

namespace qmr::bench {

// A scan of a letter page: paper with grain, a letterhead, lines of print, a stamp. The
// grain matters: it is what makes a scan's JPEG big and slow to decode.
QImage scan(const QSize& size, int seed);

double median(QVector<double> values);

// How long some work took, and the longest time the event loop went without answering.
struct Watch
{
    double elapsedMs = 0;
    double longestStallMs = 0;
};

// Runs the event loop until `done`, after `start`.
template <typename Start, typename Done> Watch watch(Start start, Done done)
{
    Watch result;
    QElapsedTimer clock;
    QElapsedTimer since;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        result.longestStallMs = qMax(result.longestStallMs, since.nsecsElapsed() / 1e6);
        since.restart();
    });
    clock.start();
    since.start();
    ticker.start();
    start();
    // The work done inside start() counts as a stall too.
    result.longestStallMs = qMax(result.longestStallMs, since.nsecsElapsed() / 1e6);
    since.restart();
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    result.elapsedMs = clock.nsecsElapsed() / 1e6;
    ticker.stop();
    return result;
}

} // namespace qmr::bench
