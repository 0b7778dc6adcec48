#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QList>
#include <QMap>
#include <QRandomGenerator>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <sys/resource.h>

#include "store/textindex.h"

namespace qmr::bench {

// A scan of a letter page: paper with grain, a letterhead, lines of print, a stamp. The
// grain matters: it is what makes a scan's JPEG big and slow to decode.
QImage scan(const QSize& size, int seed);

double median(QVector<double> values);

// Page text as people write it: common words of English (which a recogniser reads with its
// language model), and a vocabulary of 30,000 words with those first and made-up ones after.
QStringList commonWords();
QStringList textVocabulary(QRandomGenerator& random);
// A page's words as the index keeps them: 180 to 320 drawn with the frequencies of real text
// (Zipf), standing line after line on a 300 dpi page; `rare`, when given, in the middle.
QList<TextIndex::Word> pageWords(QRandomGenerator& random, const QStringList& vocabulary,
                                 const QString& rare = {});

// How long some work took, and the longest time the event loop went without answering.
struct Watch
{
    double elapsedMs = 0;
    double longestStallMs = 0;
    // Processor time of the whole program and of the window's thread meanwhile.
    double cpuMs = 0;
    double windowCpuMs = 0;
};

// Processor time, user and system, of the program or of the calling thread.
inline double cpuTimeMs(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

// A thread of this program as the scheduler counts it.
struct ThreadTime
{
    QString name;
    double runMs = 0;
    double waitMs = 0;
};

// Every thread of this program by its id.
QMap<QString, ThreadTime> threadTimes();

// Runs the event loop until `done`, after `start`. The loop's answers are sampled every
// `tickMs`: each sample wakes the window's thread, which a long run pays for.
template <typename Start, typename Done> Watch watch(Start start, Done done, int tickMs = 1)
{
    Watch result;
    QElapsedTimer clock;
    QElapsedTimer since;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(tickMs);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        result.longestStallMs = qMax(result.longestStallMs, since.nsecsElapsed() / 1e6);
        since.restart();
    });
    const double cpuBefore = cpuTimeMs(RUSAGE_SELF);
    const double windowBefore = cpuTimeMs(RUSAGE_THREAD);
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
    result.cpuMs = cpuTimeMs(RUSAGE_SELF) - cpuBefore;
    result.windowCpuMs = cpuTimeMs(RUSAGE_THREAD) - windowBefore;
    ticker.stop();
    return result;
}

} // namespace qmr::bench
