#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "core/attempt.h"
#include "core/partfile.h"

class QFile;

namespace qmr {

// The whole contents of a file, read and held in memory laid out so that the disk can fill it
// and a copy of it can go to the disk straight from here: past the page cache, without
// copying it there first and writing it back later. Used for page copies, where each file
// is read whole anyway (for its thumbnail) and must be on the disk before it counts as
// added.
class DirectFile
{
public:
    // The disk takes writes in blocks of this size, from memory aligned to it.
    static constexpr qsizetype kBlock = 4096;

    enum class Outcome { Written, TargetExists, Unsupported };

    // Reads the whole of an open file; the system's reason when it cannot.
    static Attempt<DirectFile> read(QFile& file);

    // The contents; valid while this or a copy of it lives.
    QByteArray bytes() const { return m_view; }

    // Writes the contents under a name aside next to `target`, makes them durable, and puts
    // them in place. Unsupported when the file system does not take direct writes (nothing
    // is left behind, and the caller writes the usual way); TargetExists when `placing` keeps
    // a file that stands there; a Failure with the system's reason.
    Attempt<Outcome> writeTo(const QString& target, PartFile::Placing placing) const;

private:
    // Bytes read out of the page cache into `at`, up to `room`; nothing when any of them
    // would have to come from the disk.
    static std::optional<qint64> readCached(int fd, char* at, qsizetype room);
    // Bytes read past the page cache into `at`, up to `room`; nothing when that is not
    // possible.
    static std::optional<qint64> readDirect(const QString& path, char* at, qsizetype room);

    QByteArray m_owner; // the allocation, a block larger than needed for the alignment
    QByteArray m_view;  // the contents within it, starting on a block boundary
};

} // namespace qmr
