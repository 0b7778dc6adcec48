#include "app/appicon.h"

namespace qmr {

QList<int> AppIcon::sizes()
{
    return {16, 22, 24, 32, 48, 64, 128, 256};
}

QIcon AppIcon::icon()
{
    QIcon icon;
    for (const int size : sizes())
        icon.addFile(QStringLiteral(":/app/hicolor/%1x%1/apps/quillmere.png").arg(size),
                     QSize(size, size));
    return icon;
}

} // namespace qmr
