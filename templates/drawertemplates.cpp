#include "templates/drawertemplates.h"

#include "core/textfile.h"
#include "store/itemstore.h"
#include "templates/outlinefile.h"

namespace qmr {

void DrawerTemplates::loadDrawerTemplates()
{
    m_names.clear();
    for (const QString& line : TextFile::readLines(filePath()).value_or(QStringList()))
        if (line.startsWith(QLatin1String("DRW=")))
            m_names << line.mid(4);
}

} // namespace qmr

namespace qmr {

QVector<CreatedItem> DrawerTemplates::applyDrawerTemplate(const QString& name, qint32 drawerId,
                                                          ItemStore& items) const
{
    return OutlineFile::createItems(OutlineFile::section(filePath(), QStringLiteral("DRW"), name),
                                    Level::Drawer, drawerId, items);
}

} // namespace qmr
