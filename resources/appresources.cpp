#include "resources/appresources.h"

#include <QDir>

namespace qmr {

namespace {
const QString kIconDirectory = QStringLiteral(":/icons");
}

QString AppResources::iconPath(const QString& name)
{
    return kIconDirectory + QLatin1Char('/') + name + QLatin1String(".svg");
}

QStringList AppResources::iconNames()
{
    QStringList names;
    const QStringList files =
        QDir(kIconDirectory).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (const QString& file : files)
        names << file.chopped(4);
    return names;
}

} // namespace qmr
