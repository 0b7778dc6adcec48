#include "exchange/diskfilesystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/nameorder.h"
#include "core/textfile.h"

namespace qmr {

namespace {

constexpr qint64 kChunk = 1 << 20;

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

FileOutcome writeError(int error, const QString& path)
{
    const QString message = QStringLiteral("Cannot write %1: %2").arg(path, systemText(error));
    return FileOutcome::failed(error == ENOSPC || error == EDQUOT ? FileOutcome::Kind::DiskFull
                                                                  : FileOutcome::Kind::WriteFailed,
                               message);
}

// Writes all of `size` bytes at `data`, going on after short writes.
int writeAll(int fd, const char* data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        data += n;
        size -= n;
    }
    return 0;
}

// Copies the rest of `in` to `out`: in the kernel where it can, else through a buffer.
// Returns 0, or the error with `readSide` telling which file it concerns.
int copyContents(int in, int out, bool& readSide)
{
    bool kernel = true;
    QByteArray buffer;
    for (;;) {
        if (kernel) {
            const ssize_t n = ::copy_file_range(in, nullptr, out, nullptr, size_t(kChunk), 0);
            if (n > 0)
                continue;
            if (n == 0)
                return 0;
            if (errno == EINTR)
                continue;
            if (errno == ENOSPC || errno == EDQUOT)
                return errno;
            // Not offered here (another file system, an old kernel), or a failure whose side
            // the kernel does not tell: the plain loop goes on where this stopped and says.
            kernel = false;
            buffer.resize(kChunk);
            continue;
        }
        const ssize_t n = ::read(in, buffer.data(), size_t(buffer.size()));
        if (n == 0)
            return 0;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            readSide = true;
            return errno;
        }
        if (const int error = writeAll(out, buffer.constData(), n))
            return error;
    }
}

QStringList sortedNames(const QString& dir, QDir::Filters filters)
{
    QStringList names = QDir(dir).entryList(filters | QDir::NoDotAndDotDot);
    std::sort(names.begin(), names.end(), nameLess);
    return names;
}

} // namespace

QString DiskFileSystem::partName(const QString& target)
{
    return target + QStringLiteral(".qmrpart");
}

bool DiskFileSystem::isDirectory(const QString& path) const
{
    return QFileInfo(path).isDir();
}

bool DiskFileSystem::isFile(const QString& path) const
{
    return QFileInfo(path).isFile();
}

QStringList DiskFileSystem::fileNames(const QString& dir) const
{
    // A copy cut short by a crash is no file of anybody's.
    QStringList names = sortedNames(dir, QDir::Files);
    names.removeIf([](const QString& name) { return name.endsWith(QLatin1String(".qmrpart")); });
    return names;
}

QStringList DiskFileSystem::directoryNames(const QString& dir) const
{
    return sortedNames(dir, QDir::Dirs);
}

qint64 DiskFileSystem::fileSize(const QString& path) const
{
    const QFileInfo info(path);
    return info.isFile() ? info.size() : -1;
}

bool DiskFileSystem::makePath(const QString& dir)
{
    return QFileInfo(dir).isDir() || QDir().mkpath(dir);
}

FileOutcome DiskFileSystem::copyFile(const QString& source, const QString& target)
{
    const QByteArray from = QFile::encodeName(source);
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return FileOutcome::failed(
            FileOutcome::Kind::ReadFailed,
            QStringLiteral("Cannot read %1: %2").arg(source, systemText(errno)));
    const QString part = partName(target);
    const QByteArray partPath = QFile::encodeName(part);
    const int out = ::open(partPath.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (out < 0) {
        const int error = errno;
        ::close(in);
        return writeError(error, target);
    }
    bool readSide = false;
    int error = copyContents(in, out, readSide);
    ::close(in);
    // A full disk can show only when the last blocks are handed over.
    if (::close(out) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(partPath.constData(), QFile::encodeName(target).constData()) != 0)
        error = errno;
    if (error == 0)
        return FileOutcome::done();
    ::unlink(partPath.constData());
    if (readSide)
        return FileOutcome::failed(
            FileOutcome::Kind::ReadFailed,
            QStringLiteral("Cannot read %1: %2").arg(source, systemText(error)));
    return writeError(error, target);
}

FileOutcome DiskFileSystem::writeFile(const QString& path, const QByteArray& bytes)
{
    const QString part = partName(path);
    const QByteArray partPath = QFile::encodeName(part);
    const int out = ::open(partPath.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (out < 0)
        return writeError(errno, path);
    int error = writeAll(out, bytes.constData(), bytes.size());
    if (::close(out) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(partPath.constData(), QFile::encodeName(path).constData()) != 0)
        error = errno;
    if (error == 0)
        return FileOutcome::done();
    ::unlink(partPath.constData());
    return writeError(error, path);
}

std::optional<QStringList> DiskFileSystem::readLines(const QString& path) const
{
    return TextFile::readLines(path);
}

bool DiskFileSystem::remove(const QString& path)
{
    return QFile::remove(path);
}

} // namespace qmr
