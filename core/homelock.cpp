#include "core/homelock.h"

#include <QCoreApplication>
#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qmr {

HomeLock::HomeLock(const AppHome& home)
    : m_home(home.path()), m_path(home.file(fileName())), m_lock(m_path)
{
    m_lock.setStaleLockTime(kStaleAfter);
    m_refresh.setInterval(kRefreshEvery);
    QObject::connect(&m_refresh, &QTimer::timeout, [this] { refresh(); });
}

HomeLock::~HomeLock()
{
    m_refresh.stop();
    m_lock.unlock();
}

bool HomeLock::acquire()
{
    m_refusal.clear();
    if (m_lock.tryLock(0)) {
        m_refresh.start();
        return true;
    }
    if (m_lock.error() == QLockFile::LockFailedError) {
        qint64 pid = 0;
        QString host;
        QString program;
        if (m_lock.getLockInfo(&pid, &host, &program)) {
            m_refusal =
                QCoreApplication::translate("qmr::HomeLock",
                                            "The home %1 is in use by Quillmere, process %2 on %3. "
                                            "Only one Quillmere can work on a home at a time.")
                    .arg(m_home)
                    .arg(pid)
                    .arg(host.isEmpty()
                             ? QCoreApplication::translate("qmr::HomeLock", "this machine")
                             : host);
            return false;
        }
        // Unreadable: it was being written or removed just now, or is not a lock of ours.
        m_refusal =
            QCoreApplication::translate(
                "qmr::HomeLock", "The home %1 is in use by another Quillmere, and its lock "
                                 "file %2 cannot be read. If no Quillmere is working on this "
                                 "home, remove that file.")
                .arg(m_home, m_path);
        return false;
    }
    const QString why = whyNotMade();
    m_refusal = QCoreApplication::translate(
                    "qmr::HomeLock", "The home %1 cannot be locked for this run: the lock file %2 "
                                     "cannot be made")
                    .arg(m_home, m_path) +
                (why.isEmpty() ? QStringLiteral(".") : QStringLiteral(": %1.").arg(why));
    return false;
}

QString HomeLock::whyNotMade() const
{
    // The lock file says only that it failed; making a file beside it the same way gives the
    // system's own words (a read-only file system, a full disk, no permission). It has a name
    // of its own, so that no other run takes it for a lock.
    const QByteArray path = QFile::encodeName(m_path) + '.' + QByteArray::number(::getpid());
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return errno == EEXIST ? QString() : QString::fromLocal8Bit(std::strerror(errno));
    // As much as a holder writes into it: its pid, program, host and ids.
    const QByteArray content(256, '\n');
    int error = 0;
    const ssize_t n = ::write(fd, content.constData(), size_t(content.size()));
    if (n < 0)
        error = errno;
    else if (n < content.size())
        error = ENOSPC;
    ::close(fd);
    ::unlink(path.constData());
    return error == 0 ? QString() : QString::fromLocal8Bit(std::strerror(error));
}

void HomeLock::refresh()
{
    // Only the time changes; the holder's pid and host stay as written.
    if (m_lock.isLocked())
        ::utimensat(AT_FDCWD, QFile::encodeName(m_path).constData(), nullptr, 0);
}

} // namespace qmr
