#pragma once

#include <QString>

namespace qmr {

// A file written under a name aside, "<target>.<random>.qmrpart", and put under its own name
// only once it is whole. The name aside is made exclusively and never through a link, so a
// file or link planted there is never written through; and the placing can refuse to replace
// what stands at the target, so an old file is never taken for the copy just made.
class PartFile
{
public:
    // What placing does with a file that stands at the target already.
    enum class Placing {
        Replace,  // it is replaced in one step (the file's own new contents, a chosen overwrite)
        NoReplace // it stays, and placing reports TargetExists
    };
    enum class Placed { Done, TargetExists, Failed };

    static constexpr const char* kSuffix = ".qmrpart";

    explicit PartFile(QString target);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    // Makes the name aside; `extraFlags` are further open(2) flags (O_DIRECT). False with the
    // reason in error().
    bool open(int extraFlags = 0);
    // The open descriptor, -1 before open() and after place() or discard().
    int handle() const { return m_fd; }
    // Writes all of `size` bytes, going on after short writes.
    bool write(const char* data, qint64 size);
    // Records a failure met while filling handle() another way.
    void fail(int error);

    // Optionally makes the contents durable, closes, and puts the part under the target's
    // name. With NoReplace and a file at the target, the part stays (place() may be called
    // again once the caller has dealt with that file) and the result is TargetExists.
    Placed place(Placing placing, bool sync = true);
    // Removes the part; nothing is left of it.
    void discard();

    const QString& target() const { return m_target; }
    const QString& partPath() const { return m_part; }
    // The system's error number and words for the last failure.
    int error() const { return m_error; }
    QString errorString() const;

    static bool isPartName(const QString& name);
    // Puts an existing file under a new name without replacing anything: false with EEXIST
    // in errno when the new name is taken. Works where the file system offers neither
    // rename-without-replace nor hard links, short of a race with another writer.
    static bool renameNoReplace(const QString& from, const QString& to);

private:
    bool closeHandle(bool sync);

    QString m_target;
    QString m_part;
    int m_fd = -1;
    int m_error = 0;
    bool m_closed = false;
};

} // namespace qmr
