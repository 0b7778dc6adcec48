#include "dialogs/dialogchoosers.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QUrl>

#include "dialogs/passworddialog.h"

namespace qmr {

std::optional<QString> DialogChoosers::askPassword()
{
    PasswordDialog dialog(m_parent);
    dialog.exec();
    return dialog.reply();
}

std::optional<QString> DialogChoosers::chooseDirectory(const QString& start)
{
    // The desktop's own folder chooser: it follows the desktop's theme and portal, and brings
    // the keys, places and typed paths people know from every other program. It opens at
    // home when the start is no directory, never at the top of the disk.
    const QString at = QFileInfo(start).isDir() ? start : QDir::homePath();
    const QString chosen = QFileDialog::getExistingDirectory(m_parent, tr("Select Path"), at);
    if (chosen.isEmpty())
        return std::nullopt;
    return QDir::cleanPath(chosen);
}

std::optional<QString> DialogChoosers::chooseFileToOpen(const QString& start,
                                                        const QStringList& filters,
                                                        int selectedFilter)
{
    QFileDialog dialog(m_parent, tr("Open"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setNameFilters(filters);
    if (selectedFilter >= 0 && selectedFilter < filters.size())
        dialog.selectNameFilter(filters.at(selectedFilter));
    dialog.selectFile(start);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().constFirst();
}

std::optional<QString> DialogChoosers::openFile(const QString& path)
{
    // A terminal editor started without a terminal never shows: the desktop's own program
    // for the file's type is what a person expects to see.
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return tr("No program could be started to open the file '%1'.").arg(path);
    return std::nullopt;
}

std::optional<QString> DialogChoosers::saveFile(const SaveFileRequest& request)
{
    QFileDialog dialog(m_parent, request.caption);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmOverwrite);
    dialog.setNameFilters(request.filters);
    if (request.filterIndex >= 0 && request.filterIndex < request.filters.size())
        dialog.selectNameFilter(request.filters.at(request.filterIndex));
    dialog.setDefaultSuffix(request.defaultSuffix);
    dialog.selectFile(request.start);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().constFirst();
}

} // namespace qmr
