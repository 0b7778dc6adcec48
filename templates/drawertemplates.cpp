#include "templates/drawertemplates.h"

#include "store/itemstore.h"
#include "templates/outlinefile.h"

namespace qmr {

void DrawerTemplates::LoadDrawerTemplates()
{
    m_names.clear();
    for (const QString& line : OutlineFile::readLines(filePath()))
        if (line.startsWith(QLatin1String("DRW=")))
            m_names << line.mid(4);
}

} // namespace qmr

namespace qmr {

QVector<CreatedItem> DrawerTemplates::ApplyDrawerTemplate(const QString& name, qint32 drawerId,
                                                          ItemStore& items) const
{
    QVector<CreatedItem> created;
    bool inTemplate = false;
    qint32 folder = -1;
    for (const QString& line : OutlineFile::readLines(filePath())) {
        const OutlineLine l = OutlineFile::parse(line);
        if (!inTemplate) {
            inTemplate =
                l.key == QLatin1String("DRW") && l.name.compare(name, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (l.key == QLatin1String("DRW"))
            break;
        if (l.key == QLatin1String("FLD") && drawerId != -1) {
            folder = items.insertItem(Level::Folder, drawerId, l.name);
            created << CreatedItem{Level::Folder, drawerId, folder, l.name, {}};
        } else if (l.key == QLatin1String("DOC") && folder != -1) {
            // A document ahead of any folder has nowhere to go.
            const qint32 doc = items.insertItem(Level::Document, folder, l.name);
            created << CreatedItem{Level::Document, folder, doc, l.name, {}};
        }
    }
    return created;
}

} // namespace qmr
