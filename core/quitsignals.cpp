#include "core/quitsignals.h"

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace qmr {

namespace {

// The write end of the pipe. A signal handler reaches nothing but static storage, so this one
// value lives here; QuitSignals sets it while it watches and clears it before closing the pipe.
std::atomic<int> g_pipeWrite{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void onQuitSignal(int number)
{
    const int saved = errno;
    const int fd = g_pipeWrite.load();
    if (fd >= 0) {
        const unsigned char byte = static_cast<unsigned char>(number);
        // The pipe does not block: a full one already says that a signal came.
        [[maybe_unused]] const ssize_t n = ::write(fd, &byte, 1);
    }
    errno = saved;
}

} // namespace

QuitSignals::QuitSignals(QObject* parent) : QObject(parent)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_read = fds[0];
    m_write = fds[1];
    g_pipeWrite.store(m_write);
    m_notifier = new QSocketNotifier(m_read, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &QuitSignals::drain);

    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    // Calls the signal lands in go on; the handler runs once for all three at a time.
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (int number : kSignals)
        sigaddset(&action.sa_mask, number);
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        struct sigaction current = {};
        if (::sigaction(kSignals[i], nullptr, &current) != 0 || current.sa_handler == SIG_IGN)
            continue;
        m_installed[i] = ::sigaction(kSignals[i], &action, &m_previous[i]) == 0;
    }
}

QuitSignals::~QuitSignals()
{
    for (size_t i = 0; i < std::size(kSignals); ++i)
        if (m_installed[i])
            ::sigaction(kSignals[i], &m_previous[i], nullptr);
    if (m_read < 0)
        return;
    g_pipeWrite.store(-1);
    ::close(m_write);
    ::close(m_read);
}

bool QuitSignals::requested()
{
    drain();
    return m_first != 0;
}

void QuitSignals::drain()
{
    if (m_read < 0)
        return;
    int last = 0;
    unsigned char bytes[16];
    for (;;) {
        const ssize_t n = ::read(m_read, bytes, sizeof bytes);
        if (n > 0) {
            last = bytes[n - 1];
            if (m_first == 0)
                m_first = bytes[0];
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        break;
    }
    if (last != 0)
        emit arrived(last);
}

} // namespace qmr
