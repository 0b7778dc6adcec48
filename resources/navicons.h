#pragma once

#include <QHash>
#include <QIcon>
#include <QString>

namespace qmr {

// The navigator's pictures, drawn from the program's SVG icons so that they stay crisp at any
// size and screen scale. Keys: root, rootb, rootc, cabinet, locked, drawer, folder, document,
// page, found, thumbnails.
class NavIcons
{
public:
    // Made once per key and kept: a large tree asks for the same few pictures many times.
    const QIcon& icon(const QString& key);
    static QPixmap pixmap(const QString& key, int side);

private:
    QHash<QString, QIcon> m_cache;
};

} // namespace qmr
