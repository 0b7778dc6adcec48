#include "exchange/diskfilesystem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/nameorder.h"
#include "core/textfile.h"
#include "exchange/nativename.h"

namespace qmr {

namespace {

constexpr qint64 kChunk = 1 << 20;

// A page file up to this size is held whole while it is copied, so that its thumbnail needs
// no second read.
constexpr qint64 kWholeFile = 16 << 20;

// A manifest holds a few short lines; a file far larger is none, and is not read into memory.
constexpr qint64 kLongestText = 1 << 20;

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

FileOutcome writeError(int error, const QString& path)
{
    const QString message =
        QCoreApplication::translate("qmr::DiskFileSystem", "Cannot write %1: %2")
            .arg(path, systemText(error));
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

QByteArray native(const QString& path)
{
    return NativeName::encode(path);
}

FileOutcome readError(int error, const QString& path)
{
    if (error == ELOOP)
        return FileOutcome::failed(
            FileOutcome::Kind::Link,
            QCoreApplication::translate("qmr::DiskFileSystem",
                                        "'%1' is a link; it was not followed.")
                .arg(NativeName::display(path)));
    return FileOutcome::failed(
        FileOutcome::Kind::ReadFailed,
        QCoreApplication::translate("qmr::DiskFileSystem", "Cannot read %1: %2")
            .arg(NativeName::display(path), systemText(error)));
}

// Opens a copy's source for reading: a plain file only, so that a pipe or a device is never
// waited on; under Refuse, never through a link. -1 with `failure` set otherwise.
int openSource(const QString& path, LinkRule links, FileOutcome& failure, qint64* size = nullptr)
{
    const int flags =
        O_RDONLY | O_CLOEXEC | O_NONBLOCK | (links == LinkRule::Refuse ? O_NOFOLLOW : 0);
    const int fd = ::open(native(path).constData(), flags);
    if (fd < 0) {
        failure = readError(errno, path);
        return -1;
    }
    struct stat info;
    if (::fstat(fd, &info) != 0) {
        const int error = errno;
        ::close(fd);
        failure = readError(error, path);
        return -1;
    }
    if (!S_ISREG(info.st_mode)) {
        ::close(fd);
        failure =
            FileOutcome::failed(FileOutcome::Kind::ReadFailed,
                                QCoreApplication::translate("qmr::DiskFileSystem",
                                                            "Cannot read %1: it is no plain file")
                                    .arg(NativeName::display(path)));
        return -1;
    }
    if (size)
        *size = info.st_size;
    return fd;
}

// Reads an open file to its end; false with errno set when it fails or passes `limit` bytes.
bool readWhole(int fd, qint64 limit, QByteArray& bytes)
{
    bytes.clear();
    char buffer[1 << 16];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n == 0)
            return true;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (bytes.size() + n > limit) {
            errno = EFBIG;
            return false;
        }
        bytes.append(buffer, n);
    }
}

} // namespace

bool DiskFileSystem::isDirectory(const QString& path) const
{
    struct stat info;
    return ::stat(native(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool DiskFileSystem::isFile(const QString& path) const
{
    struct stat info;
    return ::stat(native(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

DirectoryListing DiskFileSystem::list(const QString& dir) const
{
    // Read by hand, since a listing through Qt turns a name that is not UTF-8 into one that
    // opens nothing, and tells a link only by following it.
    DirectoryListing listing;
    DIR* stream = ::opendir(native(dir).constData());
    if (!stream)
        return listing;
    while (const dirent* entry = ::readdir(stream)) {
        // Hidden entries, "." and ".." among them.
        if (entry->d_name[0] == '.')
            continue;
        unsigned char type = entry->d_type;
        if (type == DT_UNKNOWN) {
            struct stat info;
            if (::fstatat(::dirfd(stream), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            type = S_ISLNK(info.st_mode)   ? DT_LNK
                   : S_ISDIR(info.st_mode) ? DT_DIR
                   : S_ISREG(info.st_mode) ? DT_REG
                                           : DT_UNKNOWN;
        }
        const QString name = NativeName::decode(QByteArray(entry->d_name));
        if (type == DT_REG && !PartFile::isPartName(name)) // a copy cut short is nobody's file
            listing.files << name;
        else if (type == DT_DIR)
            listing.directories << name;
        else if (type == DT_LNK)
            listing.links << name;
    }
    ::closedir(stream);
    const auto byName = [](const QString& a, const QString& b) {
        return nameLess(NativeName::display(a), NativeName::display(b));
    };
    std::sort(listing.files.begin(), listing.files.end(), byName);
    std::sort(listing.directories.begin(), listing.directories.end(), byName);
    std::sort(listing.links.begin(), listing.links.end(), byName);
    return listing;
}

qint64 DiskFileSystem::fileSize(const QString& path) const
{
    struct stat info;
    if (::lstat(native(path).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return -1;
    return info.st_size;
}

bool DiskFileSystem::makePath(const QString& dir)
{
    return QFileInfo(dir).isDir() || QDir().mkpath(dir);
}

FileOutcome DiskFileSystem::copyFile(const QString& source, const QString& target, LinkRule links)
{
    FileOutcome failure;
    const int in = openSource(source, links, failure);
    if (in < 0)
        return failure;
    // Written outside the store, where the next run of a backup rewrites it anyway.
    return copy(in, source, target, PartFile::Placing::Replace, false);
}

FileOutcome DiskFileSystem::copyIntoStore(const QString& source, const QString& target,
                                          QByteArray* contents)
{
    if (contents)
        contents->clear();
    FileOutcome failure;
    qint64 size = 0;
    const int in = openSource(source, LinkRule::Refuse, failure, &size);
    if (in < 0)
        return failure;
    if (!contents || size > kWholeFile)
        return copy(in, source, target, PartFile::Placing::NoReplace, true);
    QByteArray bytes;
    bytes.reserve(size);
    const bool read = readWhole(in, kWholeFile, bytes);
    const int error = errno;
    ::close(in);
    if (!read)
        return readError(error, source);
    PartFile part(target);
    if (!part.open() || !part.write(bytes.constData(), bytes.size()))
        return writeError(part.error(), target);
    const FileOutcome outcome = placed(part, PartFile::Placing::NoReplace, true);
    if (outcome.ok())
        *contents = bytes;
    return outcome;
}

FileOutcome DiskFileSystem::copy(int in, const QString& source, const QString& target,
                                 PartFile::Placing placing, bool sync)
{
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
            return readError(error, source);
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
            tr("Cannot write %1: another file stands there").arg(part.target()));
    case PartFile::Placed::Failed:
        break;
    }
    return writeError(part.error(), part.target());
}

std::optional<QStringList> DiskFileSystem::readLines(const QString& path) const
{
    FileOutcome failure;
    const int fd = openSource(path, LinkRule::Refuse, failure);
    if (fd < 0)
        return std::nullopt;
    QByteArray bytes;
    const bool read = readWhole(fd, kLongestText, bytes);
    ::close(fd);
    if (!read)
        return std::nullopt;
    return TextFile::splitLines(TextFile::decode(bytes));
}

bool DiskFileSystem::remove(const QString& path)
{
    return QFile::remove(path);
}

} // namespace qmr
