#include "templates/drawertemplates.h"

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
