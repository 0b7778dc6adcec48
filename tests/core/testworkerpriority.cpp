#include <QScopeGuard>
#include <QTest>
#include <QThread>
#include <sys/resource.h>
#include <unistd.h>

#include "core/workerpriority.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Work beside the window runs nicer than the window, once lowered and no further.
class TestWorkerPriority : public QObject
{
    Q_OBJECT
private slots:
    void aWorkerIsLoweredOnceAndTheWindowNot_data()
    {
        test::columns<bool>({"raised"});
        test::row("window as started", false);
        // Started above the ordinary priority by its owner: -1 is a niceness, not a failure.
        test::row("window at -1", true);
    }
    void aWorkerIsLoweredOnceAndTheWindowNot()
    {
        const auto [raised] = test::fetch<bool>("raised");
        const int started = WorkerPriority::currentNiceness();
        if (raised && ::setpriority(PRIO_PROCESS, id_t(::gettid()), -1) != 0)
            QSKIP("raising a thread's priority needs privilege");
        const auto restore =
            qScopeGuard([&] { ::setpriority(PRIO_PROCESS, id_t(::gettid()), started); });
        const int window = raised ? -1 : started;
        int first = -100;
        int again = -100;
        std::unique_ptr<QThread> worker(QThread::create([&] {
            WorkerPriority::lowerCurrentThread();
            first = WorkerPriority::currentNiceness();
            WorkerPriority::lowerCurrentThread();
            again = WorkerPriority::currentNiceness();
        }));
        worker->start();
        QVERIFY(worker->wait(10000));
        QCOMPARE(first, qMin(window + WorkerPriority::kNicer, 19));
        QCOMPARE(again, first);
        QCOMPARE(WorkerPriority::currentNiceness(), window);
    }
};

QMR_TEST(TestWorkerPriority)
#include "testworkerpriority.moc"
