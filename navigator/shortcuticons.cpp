#include "navigator/shortcuticons.h"

#include <QApplication>
#include <QMimeDatabase>
#include <QPainter>
#include <QStyle>

#include "filing/thumbnailmaker.h"

namespace qmr {

namespace {

constexpr int kIconSide = 32;

QMimeType typeOf(const QString& path)
{
    // By name only: the file may lie on a slow or absent disk.
    return QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension);
}

} // namespace

QIcon ShortcutIcons::iconFor(const QString& path) const
{
    const QMimeType type = typeOf(path);
    for (const QString& name : {type.iconName(), type.genericIconName()}) {
        const QIcon themed = QIcon::fromTheme(name);
        if (!themed.isNull())
            return themed;
    }
    if (QApplication::style()) {
        const QIcon file = QApplication::style()->standardIcon(QStyle::SP_FileIcon);
        if (!file.isNull())
            return file;
    }
    return m_fallback;
}

bool ShortcutIcons::isPdf(const QString& path)
{
    return typeOf(path).inherits(QStringLiteral("application/pdf"));
}

QImage ShortcutIcons::tile(const QString& path)
{
    const QString type = typeOf(path).name();
    const auto found = m_tiles.constFind(type);
    if (found != m_tiles.constEnd())
        return *found;
    const int side = ThumbnailMaker::kThumbSide;
    QImage tile(side, side, QImage::Format_ARGB32_Premultiplied);
    tile.fill(Qt::white);
    {
        QPainter painter(&tile);
        const int at = (side - kIconSide) / 2;
        iconFor(path).paint(&painter, QRect(at, at, kIconSide, kIconSide));
    }
    m_tiles.insert(type, tile);
    return tile;
}

} // namespace qmr
