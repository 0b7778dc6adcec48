#include "core/directfile.h"

#include <QCoreApplication>
#include <QFile>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace qmr {

namespace {

qsizetype roundUp(qsizetype n)
{
    return (n + DirectFile::kBlock - 1) / DirectFile::kBlock * DirectFile::kBlock;
}

} // namespace

Attempt<DirectFile> DirectFile::read(QFile& file)
{
    const qint64 size = file.size();
    DirectFile whole;
    // Room for the padding to a whole block, and for the alignment of the start; one more
    // byte tells a file that grew since its size was taken.
    const qsizetype room = roundUp(size + 1);
    whole.m_owner = QByteArray(room + kBlock, Qt::Uninitialized);
    char* const start = whole.m_owner.data();
    char* const at = start + (kBlock - qsizetype(quintptr(start) % kBlock)) % kBlock;
    std::optional<qint64> got = readCached(file.handle(), at, room);
    if (!got)
        got = readDirect(file.fileName(), at, room);
    if (!got) {
        got = 0;
        while (*got <= size) {
            const qint64 n = file.read(at + *got, size + 1 - *got);
            if (n < 0)
                return Failure(file.errorString());
            if (n == 0)
                break;
            *got += n;
        }
    }
    if (*got > size)
        return Failure(
            QCoreApplication::translate("qmr::DirectFile", "The file changed while it was read"));
    whole.m_view = QByteArray::fromRawData(at, *got);
    return whole;
}

std::optional<qint64> DirectFile::readCached(int fd, char* at, qsizetype room)
{
    // A file just written or read by someone else is still in the page cache, and a copy out
    // of it costs a tenth of the disk's time: taken when all of it is there. Nothing is read
    // from the disk this way, so a file that is not there does not fill the cache either.
    if (fd < 0)
        return std::nullopt;
    qint64 got = 0;
    while (got < room) {
        iovec part{at + got, size_t(room - got)};
        const ssize_t n = ::preadv2(fd, &part, 1, off_t(got), RWF_NOWAIT);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return std::nullopt; // EAGAIN: a part is not in the cache
        if (n == 0)
            break;
        got += n;
    }
    return got;
}

std::optional<qint64> DirectFile::readDirect(const QString& path, char* at, qsizetype room)
{
    // Past the page cache as well, where the file system allows it: the disk puts the file
    // straight into place, and no copy is made out of the cache. Anything unexpected (a file
    // system that refuses, a file gone by now) leaves the reading to the open file.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECT | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    qint64 got = 0;
    while (got < room) {
        const ssize_t n = ::read(fd, at + got, size_t(room - got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            ::close(fd);
            return std::nullopt;
        }
        got += n;
        // Direct reads come in whole blocks until the end of the file.
        if (n == 0 || n % kBlock != 0)
            break;
    }
    ::close(fd);
    return got;
}

Attempt<DirectFile::Outcome> DirectFile::writeTo(const QString& target,
                                                 PartFile::Placing placing) const
{
    PartFile part(target);
    const auto fail = [&]() -> Attempt<Outcome> {
        const QString why = part.errorString();
        part.discard();
        if (part.error() == EINVAL)
            return Outcome::Unsupported;
        return Failure(why);
    };
    if (!part.open(O_DIRECT))
        return fail();
    const int fd = part.handle();
    // The whole blocks go straight to the disk; the last part of a block goes through the
    // page cache. Padding the last block and cutting the file back afterwards cost more: the
    // cut reads that block back from the disk to clear its end.
    const qsizetype size = m_view.size();
    const qsizetype whole = size / kBlock * kBlock;
    qsizetype written = 0;
    while (written < whole) {
        const ssize_t n = ::write(fd, m_view.constData() + written, size_t(whole - written));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            part.fail(n < 0 ? errno : ENOSPC);
            return fail();
        }
        // A short direct write leaves the rest unaligned: the usual way takes over.
        if (n % kBlock != 0 && written + n < whole) {
            part.fail(EINVAL);
            return fail();
        }
        written += n;
    }
    if (written < size) {
        const int flags = ::fcntl(fd, F_GETFL);
        if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_DIRECT) != 0) {
            part.fail(errno);
            return fail();
        }
        while (written < size) {
            const ssize_t n =
                ::pwrite(fd, m_view.constData() + written, size_t(size - written), off_t(written));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                part.fail(n < 0 ? errno : ENOSPC);
                return fail();
            }
            written += n;
        }
    }
    switch (part.place(placing)) {
    case PartFile::Placed::Done:
        return Outcome::Written;
    case PartFile::Placed::TargetExists:
        return Outcome::TargetExists;
    case PartFile::Placed::Failed:
        break;
    }
    return Failure(part.errorString());
}

} // namespace qmr
