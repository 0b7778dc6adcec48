#include "dialogs/dialogchoosers.h"

#include "dialogs/passworddialog.h"

#include <QFileDialog>

namespace qmr {

std::optional<QString> DialogChoosers::askPassword()
{
    PasswordDialog dialog(m_parent);
    dialog.exec();
    return dialog.reply();
}

std::optional<QString> DialogChoosers::chooseDirectory(const QString& start)
{
    const QString dir = QFileDialog::getExistingDirectory(m_parent, QStringLiteral("Select Path"),
                                                          start, QFileDialog::ShowDirsOnly);
    if (dir.isEmpty())
        return std::nullopt;
    return dir;
}

} // namespace qmr
