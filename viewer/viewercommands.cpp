#include "viewer/viewercommands.h"

#include "viewer/viewsettingsdialog.h"

namespace qmr {

void ViewerCommands::addTo(CommandTable& commands)
{
    commands.insert(QStringLiteral("mnuViewSettings"), [this] { viewSettings(); });
}

void ViewerCommands::viewSettings()
{
    ViewSettingsDialog dialog(m_context.view, m_context.parent);
    dialog.exec();
}

} // namespace qmr
