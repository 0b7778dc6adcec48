#include "store/pagepaths.h"

#include "store/database.h"

#include <QDir>
#include <QFileInfo>

namespace qmr {

QString PagePaths::bucket(qint32 pageId)
{
    return QStringLiteral("%1").arg(pageId, 10, 10, QLatin1Char('0')).left(7);
}

QString PagePaths::PageFilename(qint32 pageId) const
{
    return m_db.scalar(QStringLiteral("SELECT Filename FROM Page WHERE PageId = ?"), {pageId})
        .toString();
}

bool PagePaths::IsPageShortcut(qint32 pageId) const
{
    return m_db.scalar(QStringLiteral("SELECT ShortcutYN FROM Page WHERE PageId = ?"), {pageId})
               .toString() == QLatin1String("Y");
}

QString PagePaths::ComputedPageDirectory(qint32 pageId) const
{
    return m_home.file(QStringLiteral("Pages/") + bucket(pageId));
}

QString PagePaths::ComputedThumbDirectory(qint32 pageId) const
{
    return m_home.file(QStringLiteral("Thumbs/") + bucket(pageId));
}

QString PagePaths::ComputedPagePath(qint32 pageId) const
{
    return ComputedPageDirectory(pageId) + QLatin1Char('/') + QString::number(pageId) +
           QLatin1String(".jpg");
}

QString PagePaths::ComputedThumbPath(qint32 pageId) const
{
    return ComputedThumbDirectory(pageId) + QLatin1Char('/') + QString::number(pageId) +
           QLatin1String(".jpg");
}

QString PagePaths::PageDirectory(qint32 pageId) const
{
    const QString stored = PageFilename(pageId);
    if (stored.isEmpty())
        return ComputedPageDirectory(pageId);
    QString dir = DirectoryPart(stored);
    if (dir.endsWith(QLatin1Char('/')) && dir.size() > 1)
        dir.chop(1);
    return dir;
}

QString PagePaths::PagePath(qint32 pageId) const
{
    const QString stored = PageFilename(pageId);
    if (!stored.isEmpty())
        return stored;
    return ComputedPagePath(pageId);
}

QString PagePaths::ThumbDirectory(qint32 pageId) const
{
    const QString stored = PageFilename(pageId);
    if (stored.isEmpty())
        return ComputedThumbDirectory(pageId);
    return DirectoryPart(stored) + QLatin1String("Thumbs");
}

QString PagePaths::ThumbPath(qint32 pageId) const
{
    const QString stored = PageFilename(pageId);
    if (stored.isEmpty())
        return ComputedThumbPath(pageId);
    return ThumbDirectory(pageId) + QLatin1Char('/') + FilePart(stored);
}

QString PagePaths::DirectoryPart(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash + 1);
}

QString PagePaths::FilePart(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.mid(slash + 1);
}

bool PagePaths::ensurePathExists(const QString& path) const
{
    return EnsurePathExists(path, m_home.path());
}

bool PagePaths::EnsurePathExists(const QString& path, const QString& base)
{
    QString dir = path;
    if (dir.isEmpty() || dir == QLatin1String("/"))
        return true;
    // Callers pass file paths and plain directory paths: a dot anywhere means a file name.
    const QString root = base.endsWith(QLatin1Char('/')) ? base : base + QLatin1Char('/');
    const QString tested = !base.isEmpty() && dir.startsWith(root) ? dir.mid(root.size()) : dir;
    if (tested.contains(QLatin1Char('.'))) {
        const int slash = dir.lastIndexOf(QLatin1Char('/'));
        if (slash >= 0)
            dir = dir.left(slash);
    }
    if (dir.isEmpty())
        return true;
    const QFileInfo info(dir);
    if (info.isDir())
        return true;
    return QDir().mkpath(dir);
}

} // namespace qmr
