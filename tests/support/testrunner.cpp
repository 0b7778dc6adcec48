#include <QApplication>
#include <QTest>
#include <csignal>
#include <cstring>
#include <pthread.h>

#include "core/brokenpipes.h"
#include "tests/support/testrunner.h"

namespace qmr::test {

std::vector<TestEntry>& registry()
{
    static std::vector<TestEntry> entries;
    return entries;
}

std::vector<ProgramMode>& programModes()
{
    static std::vector<ProgramMode> modes;
    return modes;
}

int runAll(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        for (const ProgramMode& mode : programModes())
            if (std::strcmp(argv[i], mode.option) == 0)
                return mode.run(argc, argv);
    // As in the program. Besides, the signal stays blocked in every thread: the test library
    // puts its crash handler over SIGPIPE as each class starts, and a broken pipe (a scanner
    // backend's reader after a cancel) is no crash, while the library's stack dump runs a
    // debugger that can hang the run. A blocked SIGPIPE leaves the write its EPIPE.
    surviveBrokenPipes();
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    // Tests never reach the desktop's session bus, its keyring above all: without a bus the
    // program keeps the SMTP password in the settings file. A test that needs a bus starts a
    // private one and names it in QMR_TEST_BUS.
    const QByteArray bus = qgetenv("QMR_TEST_BUS");
    qputenv("DBUS_SESSION_BUS_ADDRESS",
            bus.isEmpty() ? QByteArray("unix:path=/nonexistent/quillmere-test-bus") : bus);
    QApplication app(argc, argv);
    QString only;
    QString skip;
    std::vector<char*> args;
    for (int i = 0; i < argc; ++i) {
        if (std::strncmp(argv[i], "--only=", 7) == 0)
            only = QString::fromLocal8Bit(argv[i] + 7);
        else if (std::strncmp(argv[i], "--skip=", 7) == 0)
            skip = QString::fromLocal8Bit(argv[i] + 7);
        else
            args.push_back(argv[i]);
    }
    int failures = 0;
    int ran = 0;
    for (const TestEntry& entry : registry()) {
        const QString name = QString::fromLatin1(entry.name);
        if ((!only.isEmpty() && name != only) || name == skip || (entry.onDemand && only.isEmpty()))
            continue;
        std::unique_ptr<QObject> test = entry.make();
        failures += QTest::qExec(test.get(), int(args.size()), args.data());
        ++ran;
    }
    if (ran == 0) {
        std::fprintf(stderr, "No test class matched.\n");
        return 1;
    }
    return failures == 0 ? 0 : 1;
}

} // namespace qmr::test

int main(int argc, char** argv)
{
    return qmr::test::runAll(argc, argv);
}
