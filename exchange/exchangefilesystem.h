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
        NoDirectory,  // the file's directory could not be made; nothing was written
        ReadFailed,   // the source could not be read
        WriteFailed,  // the target could not be written
        DiskFull,     // the target's disk has no room left
        TargetExists, // a file stands at the target, which was to be left alone
        Link          // the source is a symbolic link, which was not to be followed
    };
    Kind kind = Kind::Done;
    QString message; // the system's words, naming the file

    bool ok() const { return kind == Kind::Done; }
    static FileOutcome done() { return {}; }
    static FileOutcome failed(Kind kind, const QString& message) { return {kind, message}; }
};

// Whether a copy may read its source through a symbolic link: a file that a person keeps
// elsewhere (a shortcut's) may be reached so, a file that the store owns or that a walk found
// may not.
enum class LinkRule { Follow, Refuse };

// What a directory holds as a walk sees it. Hidden entries are left out, and so are files that
// a copy is still writing and whatever is neither a file, a directory nor a link. A name that
// is not UTF-8 is held as NativeName keeps it. Each list is sorted without regard to case.
struct DirectoryListing
{
    QStringList files;
    QStringList directories;
    QStringList links; // to anything at all: a walk never follows them
};

// The file system as export and import see it. Small, so that a test can put a full disk or
// an unreadable file behind it. Paths use '/'.
class ExchangeFileSystem
{
public:
    virtual ~ExchangeFileSystem() = default;

    // Each of these follows links: they serve paths that a person gave or that the store keeps.
    virtual bool isDirectory(const QString& path) const = 0;
    virtual bool isFile(const QString& path) const = 0;
    virtual DirectoryListing list(const QString& dir) const = 0;
    QStringList fileNames(const QString& dir) const { return list(dir).files; }
    QStringList directoryNames(const QString& dir) const { return list(dir).directories; }
    // The size of a file that a walk found; -1 when it cannot be looked at or is no plain file
    // (a link to one included).
    virtual qint64 fileSize(const QString& path) const = 0;
    // Makes a directory with all its parents; true when it stands afterwards.
    virtual bool makePath(const QString& dir) = 0;
    // Copies byte for byte to a temporary name beside the target and renames that into place
    // over whatever stands there (a link included, which is replaced and never written
    // through), so that a failed or interrupted copy never leaves half a file under the
    // target's name. A source that is no plain file is refused, and so is a link under Refuse.
    virtual FileOutcome copyFile(const QString& source, const QString& target, LinkRule links) = 0;
    // The same for a page file that a walk found coming into the store, never read through a
    // link: on the disk before it takes its name, and only where no file stands (TargetExists
    // otherwise, the file there untouched). With `contents`, a file small enough to be held
    // whole is copied through memory and its bytes handed back (for its thumbnail); a larger
    // one leaves `contents` empty.
    virtual FileOutcome copyIntoStore(const QString& source, const QString& target,
                                      QByteArray* contents = nullptr) = 0;
    // Writes a whole file the same way.
    virtual FileOutcome writeFile(const QString& path, const QByteArray& bytes) = 0;
    // The lines of a text file that a walk found (UTF-8, else Windows-1252), never read
    // through a link; nothing when it cannot be read.
    virtual std::optional<QStringList> readLines(const QString& path) const = 0;
    virtual bool remove(const QString& path) = 0;
};

} // namespace qmr
