#include <QTest>
#include <QThread>

#include "core/workerpriority.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// Work beside the window runs nicer than the window, once lowered and no further.
class TestWorkerPriority : public QObject
{
    Q_OBJECT
private slots:
    void aWorkerIsLoweredOnceAndTheWindowNot()
    {
        const int window = WorkerPriority::currentNiceness();
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
