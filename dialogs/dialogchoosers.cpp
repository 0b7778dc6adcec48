#include "dialogs/dialogchoosers.h"

#include "dialogs/passworddialog.h"
#include "dialogs/pathselectdialog.h"

#include <QProcess>

namespace qmr {

std::optional<QString> DialogChoosers::askPassword()
{
    PasswordDialog dialog(m_parent);
    dialog.exec();
    return dialog.reply();
}

std::optional<QString> DialogChoosers::chooseDirectory(const QString& start)
{
    PathSelectDialog dialog(m_settings, start, m_parent);
    if (dialog.exec() != QDialog::Accepted || dialog.path().isEmpty())
        return std::nullopt;
    return dialog.path();
}

std::optional<QString> DialogChoosers::openInEditor(const QString& path)
{
    // $VISUAL, then $EDITOR, then whatever the desktop opens text files with.
    QString editor = qEnvironmentVariable("VISUAL");
    if (editor.isEmpty())
        editor = qEnvironmentVariable("EDITOR");
    QStringList command =
        editor.isEmpty() ? QStringList{QStringLiteral("xdg-open")} : QProcess::splitCommand(editor);
    if (command.isEmpty())
        command = {QStringLiteral("xdg-open")};
    const QString program = command.takeFirst();
    if (!QProcess::startDetached(program, command << path))
        return QStringLiteral("Cannot start %1.").arg(program);
    return std::nullopt;
}

} // namespace qmr
