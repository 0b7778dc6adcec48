#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace qmr {

// How one file operation of an export or import ended.
struct FileOutcome
{
    enum class Kind {
        Done,
        NoDirectory, // the file's directory could not be made; nothing was written
        ReadFailed,  // the source could not be read
        WriteFailed, // the target could not be written
        DiskFull,    // the target's disk has no room left
        TargetExists // a file stands at the target, which was to be left alone
    };
    Kind kind = Kind::Done;
    QString message; // the system's words, naming the file

    bool ok() const { return kind == Kind::Done; }
    static FileOutcome done() { return {}; }
    static FileOutcome failed(Kind kind, const QString& message) { return {kind, message}; }
};

// The file system as export and import see it. Small, so that a test can put a full disk or
// an unreadable file behind it. Paths use '/'.
class ExchangeFileSystem
{
public:
    virtual ~ExchangeFileSystem() = default;

    virtual bool isDirectory(const QString& path) const = 0;
    virtual bool isFile(const QString& path) const = 0;
    // The names of a directory's files, or of its subdirectories, sorted without regard to
    // case. Hidden entries are left out, and so are files that a copy is still writing.
    virtual QStringList fileNames(const QString& dir) const = 0;
    virtual QStringList directoryNames(const QString& dir) const = 0;
    // -1 when the file cannot be looked at.
    virtual qint64 fileSize(const QString& path) const = 0;
    // Makes a directory with all its parents; true when it stands afterwards.
    virtual bool makePath(const QString& dir) = 0;
    // Copies byte for byte to a temporary name beside the target and renames that into place
    // over whatever stands there, so that a failed or interrupted copy never leaves half a
    // file under the target's name.
    virtual FileOutcome copyFile(const QString& source, const QString& target) = 0;
    // The same for a page file coming into the store: on the disk before it takes its name,
    // and only where no file stands (TargetExists otherwise, the file there untouched). With
    // `contents`, a file small enough to be held whole is copied through memory and its bytes
    // handed back (for its thumbnail); a larger one leaves `contents` empty.
    virtual FileOutcome copyIntoStore(const QString& source, const QString& target,
                                      QByteArray* contents = nullptr) = 0;
    // Writes a whole file the same way.
    virtual FileOutcome writeFile(const QString& path, const QByteArray& bytes) = 0;
    // The lines of an outside text file (UTF-8, else Windows-1252); nothing when unreadable.
    virtual std::optional<QStringList> readLines(const QString& path) const = 0;
    virtual bool remove(const QString& path) = 0;
};

} // namespace qmr
