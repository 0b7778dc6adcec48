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

// A page file up to this size is held whole while it is copied, so that its thumbnail needs
// no second read.
constexpr qint64 kWholeFile = 16 << 20;

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
    names.removeIf(PartFile::isPartName);
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
    // Written outside the store, where the next run of a backup rewrites it anyway.
    return copy(source, target, PartFile::Placing::Replace, false);
}

FileOutcome DiskFileSystem::copyIntoStore(const QString& source, const QString& target,
                                          QByteArray* contents)
{
    if (contents)
        contents->clear();
    QFile in(source);
    if (!contents || !in.open(QIODevice::ReadOnly) || in.size() > kWholeFile)
        return copy(source, target, PartFile::Placing::NoReplace, true);
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError)
        return FileOutcome::failed(
            FileOutcome::Kind::ReadFailed,
            QStringLiteral("Cannot read %1: %2").arg(source, in.errorString()));
    PartFile part(target);
    if (!part.open() || !part.write(bytes.constData(), bytes.size()))
        return writeError(part.error(), target);
    const FileOutcome outcome = placed(part, PartFile::Placing::NoReplace, true);
    if (outcome.ok())
        *contents = bytes;
    return outcome;
}

FileOutcome DiskFileSystem::copy(const QString& source, const QString& target,
                                 PartFile::Placing placing, bool sync)
{
    const QByteArray from = QFile::encodeName(source);
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return FileOutcome::failed(
            FileOutcome::Kind::ReadFailed,
            QStringLiteral("Cannot read %1: %2").arg(source, systemText(errno)));
    PartFile part(target);
    if (!part.open()) {
        ::close(in);
        return writeError(part.error(), target);
    }
    bool readSide = false;
    const int error = copyContents(in, part.handle(), readSide);
    ::close(in);
    if (error != 0) {
        if (readSide)
            return FileOutcome::failed(
                FileOutcome::Kind::ReadFailed,
                QStringLiteral("Cannot read %1: %2").arg(source, systemText(error)));
        return writeError(error, target);
    }
    return placed(part, placing, sync);
}

FileOutcome DiskFileSystem::writeFile(const QString& path, const QByteArray& bytes)
{
    PartFile part(path);
    if (!part.open() || !part.write(bytes.constData(), bytes.size()))
        return writeError(part.error(), path);
    return placed(part, PartFile::Placing::Replace, false);
}

FileOutcome DiskFileSystem::placed(PartFile& part, PartFile::Placing placing, bool sync)
{
    switch (part.place(placing, sync)) {
    case PartFile::Placed::Done:
        return FileOutcome::done();
    case PartFile::Placed::TargetExists:
        return FileOutcome::failed(
            FileOutcome::Kind::TargetExists,
            QStringLiteral("Cannot write %1: another file stands there").arg(part.target()));
    case PartFile::Placed::Failed:
        break;
    }
    return writeError(part.error(), part.target());
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
