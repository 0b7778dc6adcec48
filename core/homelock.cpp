#include "core/homelock.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>

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
            m_refusal = QStringLiteral("The home %1 is in use by Quillmere, process %2 on %3. "
                                       "Only one Quillmere can work on a home at a time.")
                            .arg(m_home)
                            .arg(pid)
                            .arg(host.isEmpty() ? QStringLiteral("this machine") : host);
            return false;
        }
        // Unreadable: it was being written or removed just now, or is not a lock of ours.
        m_refusal = QStringLiteral("The home %1 is in use by another Quillmere, and its lock "
                                   "file %2 cannot be read. If no Quillmere is working on this "
                                   "home, remove that file.")
                        .arg(m_home, m_path);
        return false;
    }
    m_refusal = QStringLiteral("The home %1 cannot be locked for this run: the lock file %2 "
                               "cannot be made.")
                    .arg(m_home, m_path);
    return false;
}

void HomeLock::refresh()
{
    // Only the time changes; the holder's pid and host stay as written.
    if (m_lock.isLocked())
        ::utimensat(AT_FDCWD, QFile::encodeName(m_path).constData(), nullptr, 0);
}

} // namespace qmr
