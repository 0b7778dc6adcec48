#include "text/textcommands.h"

#include "core/settingkeys.h"
#include "core/settings.h"
#include "store/session.h"
#include "text/searchablepdfcommand.h"
#include "text/textrecognizer.h"
#include "text/textsettingsdialog.h"

namespace qmr {

void TextCommands::addTo(CommandTable& commands)
{
    commands.insert(QStringLiteral("mnuTextSettings"), [this] { textSettings(); });
    SearchablePdfCommand::addTo(m_context, commands);
}

void TextCommands::textSettings()
{
    Settings& settings = m_context.session.settings();
    const QString before = TextRecognizer::chosenLanguages(settings.get(keys::OcrLanguages));
    TextSettingsDialog dialog(before, TextRecognizer::installedLanguages(), m_context.parent);
    if (dialog.exec() != QDialog::Accepted || dialog.languages() == before)
        return;
    settings.set(keys::OcrLanguages, dialog.languages());
    emit languagesChosen(dialog.languages());
}

} // namespace qmr
