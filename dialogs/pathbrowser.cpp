#include "dialogs/pathbrowser.h"

#include <QFileInfo>
#include <QLineEdit>

#include "core/choosers.h"
#include "core/settings.h"

namespace qmr {

void browseForPath(QLineEdit* box, Settings& settings, Choosers& choosers)
{
    if (!box)
        return;
    QString start = box->text().trimmed();
    if (start.isEmpty())
        start = settings.get(keys::PathSelect);
    if (!QFileInfo(start).isDir())
        start.clear(); // a stale path opens the chooser at its usual place
    const std::optional<QString> chosen = choosers.chooseDirectory(start);
    if (!chosen)
        return;
    settings.set(keys::PathSelect, *chosen);
    box->setText(*chosen);
}

} // namespace qmr
