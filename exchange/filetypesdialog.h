#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "exchange/filetypefilter.h"

namespace Ui {
class FileTypesDialog;
}

class QListWidget;

namespace qmr {

// frmImportFileTypes: the types of the files in a directory, of which the user takes some or
// all for a loose-file import.
class FileTypesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit FileTypesDialog(const QStringList& types, QWidget* parent = nullptr);
    ~FileTypesDialog() override;

    // The chosen filter; nothing when the dialog was cancelled.
    const std::optional<FileTypeFilter>& filter() const { return m_filter; }
    QListWidget* list() const;

    void cmdOK();
    void cmdAll();
    void cmdCancel();

private:
    std::unique_ptr<Ui::FileTypesDialog> m_ui;
    std::optional<FileTypeFilter> m_filter;
};

} // namespace qmr
