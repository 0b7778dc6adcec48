#pragma once

#include <QString>
#include <QVector>

namespace qmr {

class PagePaths;

// The files of the home's page and thumbnail directories, as the program names them: a
// page's file "Pages/0000012/12345.jpg", its thumbnail under "Thumbs/" likewise, and files
// aside that a writer left when its run ended early. Other files are not listed: they are
// nobody's that the program knows of. Reads only the file system, so any thread may list.
class StoreFiles
{
public:
    struct Entry
    {
        enum class Kind { Page, Thumbnail, Leftover };
        Kind kind = Kind::Page;
        QString path;
        qint32 id = -1;      // the page a page file or thumbnail is named for
        qint64 modified = 0; // seconds since the epoch
    };

    explicit StoreFiles(const PagePaths& paths);

    QVector<Entry> list() const;
    // A name a writer uses aside: "*.qmrpart", or any "<id>.jpg.<more>" left by an older one.
    static bool isLeftoverName(const QString& name);

private:
    void listTree(const QString& root, bool thumbs, QVector<Entry>& entries) const;

    const PagePaths& m_paths;
};

} // namespace qmr
