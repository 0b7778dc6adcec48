#include "resources/navicons.h"

#include <QPixmap>

#include "resources/appresources.h"

namespace qmr {

QPixmap NavIcons::pixmap(const QString& key, int side)
{
    return QIcon(AppResources::iconPath(key)).pixmap(side, side);
}

const QIcon& NavIcons::icon(const QString& key)
{
    auto it = m_cache.find(key);
    if (it == m_cache.end())
        it = m_cache.insert(key, QIcon(AppResources::iconPath(key)));
    return *it;
}

} // namespace qmr
