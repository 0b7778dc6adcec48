#pragma once

#include <QIcon>
#include <QString>

namespace qmr {

// The navigator's pictures, drawn for 16 and 32 pixels so that both sizes stay crisp.
// Keys: root, rootb, rootc, cabinet, locked, drawer, folder, document, page, found,
// thumbnails.
class NavIcons
{
public:
    static QIcon icon(const QString& key);
    static QPixmap pixmap(const QString& key, int side);
};

} // namespace qmr
