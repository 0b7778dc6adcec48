#include "core/partfile.h"

#include <QFile>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qmr {

namespace {

// Tries before a name aside is given up: each is a fresh random name, so only a directory
// flooded with planted names runs out of them.
constexpr int kNameTries = 16;

QByteArray encoded(const QString& path)
{
    return QFile::encodeName(path);
}

} // namespace

PartFile::PartFile(QString target) : m_target(std::move(target))
{
}

PartFile::~PartFile()
{
    discard();
}

bool PartFile::isPartName(const QString& name)
{
    return name.endsWith(QLatin1String(kSuffix));
}

bool PartFile::open(int extraFlags)
{
    for (int i = 0; i < kNameTries; ++i) {
        const QString part = m_target +
                             QStringLiteral(".%1").arg(QRandomGenerator::global()->generate(), 8,
                                                       16, QLatin1Char('0')) +
                             QLatin1String(kSuffix);
        // Made as any other file is, under the user's umask; O_EXCL with O_NOFOLLOW never
        // opens what stands there, a link least of all.
        const int fd =
            ::open(encoded(part).constData(),
                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | extraFlags, 0666);
        if (fd >= 0) {
            m_part = part;
            m_fd = fd;
            m_closed = false;
            m_error = 0;
            return true;
        }
        if (errno != EEXIST) {
            m_error = errno;
            return false;
        }
    }
    m_error = EEXIST;
    return false;
}

bool PartFile::write(const char* data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(m_fd, data, size_t(size));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            m_error = errno;
            return false;
        }
        if (n == 0) {
            m_error = ENOSPC;
            return false;
        }
        data += n;
        size -= n;
    }
    return true;
}

void PartFile::fail(int error)
{
    m_error = error;
}

bool PartFile::closeHandle(bool sync)
{
    if (m_closed)
        return true;
    m_closed = true;
    const int fd = std::exchange(m_fd, -1);
    if (sync && ::fdatasync(fd) != 0) {
        m_error = errno;
        ::close(fd);
        return false;
    }
    // A full disk can show only when the last blocks are handed over.
    if (::close(fd) != 0) {
        m_error = errno;
        return false;
    }
    return true;
}

bool PartFile::renameNoReplace(const QString& from, const QString& to)
{
    const QByteArray a = encoded(from);
    const QByteArray b = encoded(to);
    if (::renameat2(AT_FDCWD, a.constData(), AT_FDCWD, b.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return false;
    // A file system without it: a hard link fails on a taken name just the same.
    if (::link(a.constData(), b.constData()) == 0) {
        ::unlink(a.constData());
        return true;
    }
    if (errno == EEXIST)
        return false;
    // Nor hard links (a memory card's file system): look, then rename.
    struct stat info;
    if (::lstat(b.constData(), &info) == 0) {
        errno = EEXIST;
        return false;
    }
    return std::rename(a.constData(), b.constData()) == 0;
}

PartFile::Placed PartFile::place(Placing placing, bool sync)
{
    if (m_part.isEmpty()) {
        if (m_error == 0)
            m_error = EBADF;
        return Placed::Failed;
    }
    // Once closed, only a taken target can have stopped an earlier try.
    if (!m_closed && (m_error != 0 || !closeHandle(sync))) {
        discard();
        return Placed::Failed;
    }
    const bool placed =
        placing == Placing::Replace
            ? std::rename(encoded(m_part).constData(), encoded(m_target).constData()) == 0
            : renameNoReplace(m_part, m_target);
    if (placed) {
        m_part.clear();
        return Placed::Done;
    }
    m_error = errno;
    if (placing == Placing::NoReplace && m_error == EEXIST)
        return Placed::TargetExists;
    discard();
    return Placed::Failed;
}

void PartFile::discard()
{
    if (m_fd >= 0)
        ::close(std::exchange(m_fd, -1));
    m_closed = true;
    if (!m_part.isEmpty())
        ::unlink(encoded(std::exchange(m_part, QString())).constData());
}

QString PartFile::errorString() const
{
    return QString::fromLocal8Bit(std::strerror(m_error));
}

} // namespace qmr
