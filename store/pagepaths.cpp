#include "store/pagepaths.h"

#include <QDir>
#include <QFileInfo>

namespace qmr {

QString PagePaths::bucket(qint32 pageId)
{
    return QStringLiteral("%1").arg(pageId, 10, 10, QLatin1Char('0')).left(7);
}

QString PagePaths::computedPageDirectory(qint32 pageId) const
{
    return m_home.file(QStringLiteral("Pages/") + bucket(pageId));
}

QString PagePaths::computedThumbDirectory(qint32 pageId) const
{
    return m_home.file(QStringLiteral("Thumbs/") + bucket(pageId));
}

QString PagePaths::computedPagePath(qint32 pageId) const
{
    return computedPageDirectory(pageId) + QLatin1Char('/') + QString::number(pageId) +
           QLatin1String(".jpg");
}

QString PagePaths::computedThumbPath(qint32 pageId) const
{
    return computedThumbDirectory(pageId) + QLatin1Char('/') + QString::number(pageId) +
           QLatin1String(".jpg");
}

qint32 PagePaths::computedIdOf(const QString& path, bool thumbs) const
{
    const QString dir = PagePaths::directoryPart(path);
    const QString name = PagePaths::filePart(path);
    if (!name.endsWith(QLatin1String(".jpg")))
        return -1;
    bool ok = false;
    const qint32 id = name.chopped(4).toInt(&ok);
    // Only the id's own spelling counts: "007.jpg" is nobody's page.
    if (!ok || id < 0 || QString::number(id) + QLatin1String(".jpg") != name)
        return -1;
    const QString expected =
        (thumbs ? computedThumbDirectory(id) : computedPageDirectory(id)) + QLatin1Char('/');
    return dir == expected ? id : -1;
}

QString PagePaths::pageDirectory(qint32 pageId, const QString& stored) const
{
    if (stored.isEmpty())
        return computedPageDirectory(pageId);
    QString dir = directoryPart(stored);
    if (dir.endsWith(QLatin1Char('/')) && dir.size() > 1)
        dir.chop(1);
    return dir;
}

QString PagePaths::pagePath(qint32 pageId, const QString& stored) const
{
    if (!stored.isEmpty())
        return stored;
    return computedPagePath(pageId);
}

QString PagePaths::thumbDirectory(qint32 pageId, const QString& stored) const
{
    if (stored.isEmpty())
        return computedThumbDirectory(pageId);
    return directoryPart(stored) + QLatin1String("Thumbs");
}

QString PagePaths::thumbPath(qint32 pageId, const QString& stored) const
{
    if (stored.isEmpty())
        return computedThumbPath(pageId);
    return thumbDirectory(pageId, stored) + QLatin1Char('/') + filePart(stored);
}

QString PagePaths::directoryPart(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash + 1);
}

QString PagePaths::filePart(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.mid(slash + 1);
}

bool PagePaths::ensurePathInHome(const QString& path) const
{
    return ensurePathExists(path, m_home.path());
}

bool PagePaths::ensurePathExists(const QString& path, const QString& base)
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
