#include "store/storefiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <sys/stat.h>

#include "core/partfile.h"
#include "store/pagepaths.h"

namespace qmr {

StoreFiles::StoreFiles(const PagePaths& paths) : m_paths(paths)
{
}

bool StoreFiles::isLeftoverName(const QString& name)
{
    static const QRegularExpression older(QStringLiteral("^[0-9]+\\.jpg\\..+$"));
    return PartFile::isPartName(name) || older.match(name).hasMatch();
}

QVector<StoreFiles::Entry> StoreFiles::list() const
{
    QVector<Entry> entries;
    listTree(m_paths.home().file(QStringLiteral("Pages")), false, entries);
    listTree(m_paths.home().file(QStringLiteral("Thumbs")), true, entries);
    return entries;
}

void StoreFiles::listTree(const QString& root, bool thumbs, QVector<Entry>& entries) const
{
    // The buckets alone: a link among them is not followed, nor is anything deeper looked at.
    const QStringList buckets =
        QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QString& bucket : buckets) {
        const QString dir = root + QLatin1Char('/') + bucket;
        QDirIterator it(dir, QDir::Files | QDir::System | QDir::Hidden);
        while (it.hasNext()) {
            it.next();
            const QString name = it.fileName();
            const QString path = dir + QLatin1Char('/') + name;
            Entry entry;
            entry.path = path;
            if (isLeftoverName(name)) {
                entry.kind = Entry::Kind::Leftover;
            } else {
                entry.id = m_paths.computedIdOf(path, thumbs);
                if (entry.id < 0)
                    continue;
                entry.kind = thumbs ? Entry::Kind::Thumbnail : Entry::Kind::Page;
            }
            struct stat info;
            if (::lstat(QFile::encodeName(path).constData(), &info) == 0)
                entry.modified = info.st_mtim.tv_sec;
            entries << entry;
        }
    }
}

} // namespace qmr
