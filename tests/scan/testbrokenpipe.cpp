#include <QTest>
#include <cerrno>
#include <unistd.h>

#include "tests/support/testrunner.h"

// The scanner backend's reader writes into a pipe that a cancel has closed. The write must
// fail with an error, as it does in the program, and not stop the run as a crash.
class TestBrokenPipe : public QObject
{
    Q_OBJECT
private slots:
    void aWriteIntoAClosedPipeFails()
    {
        int ends[2];
        QCOMPARE(::pipe(ends), 0);
        ::close(ends[0]);
        errno = 0;
        QCOMPARE(::write(ends[1], "x", 1), ssize_t(-1));
        QCOMPARE(errno, EPIPE);
        ::close(ends[1]);
    }
};

QMR_TEST(TestBrokenPipe)
#include "testbrokenpipe.moc"
