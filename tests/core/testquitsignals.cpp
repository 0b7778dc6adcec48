#include <QTest>
#include <csignal>

#include "core/quitsignals.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

sighandler_t handlerOf(int number)
{
    struct sigaction current = {};
    sigaction(number, nullptr, &current);
    return current.sa_handler;
}

} // namespace

class TestQuitSignals : public QObject
{
    Q_OBJECT
private slots:
    // An ignored signal (SIGHUP under nohup) is left alone; the others get their old handling
    // back when the watch ends.
    void theOldHandlingComesBack()
    {
        struct sigaction asIs = {};
        asIs.sa_handler = SIG_DFL;
        struct sigaction oldTerm = {}, oldHup = {};
        sigaction(SIGTERM, &asIs, &oldTerm);
        asIs.sa_handler = SIG_IGN;
        sigaction(SIGHUP, &asIs, &oldHup);
        {
            QuitSignals watch;
            QVERIFY(watch.isWatching());
            QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
            QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        }
        QVERIFY(handlerOf(SIGTERM) == SIG_DFL);
        QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        sigaction(SIGTERM, &oldTerm, nullptr);
        sigaction(SIGHUP, &oldHup, nullptr);
    }
};

QMR_TEST(TestQuitSignals)
#include "testquitsignals.moc"
