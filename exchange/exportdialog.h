#pragma once

#include <QDialog>
#include <memory>

#include "store/commandcontext.h"

namespace Ui {
class ExportDialog;
}

namespace qmr {

class DialogProgress;
class ExchangeFileSystem;

// frmExport: writes one open cabinet to an exchange directory, with its own bar and a Cancel
// that asks before it stops the export.
class ExportDialog : public QDialog
{
    Q_OBJECT
public:
    // `fs` stands in for the real file system (tests); the dialog does not own it.
    explicit ExportDialog(const CommandContext& context, QWidget* parent = nullptr,
                          ExchangeFileSystem* fs = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    ExportDialog(CommandContext&& context, QWidget* parent = nullptr,
                 ExchangeFileSystem* fs = nullptr) = delete;
    ~ExportDialog() override;

    void selectCabinet(qint32 cabinetId);
    bool isExporting() const { return m_exporting; }
    DialogProgress* progress() const { return m_progress; }

    void cmdOK();
    void cmdCancel();
    void cmdLookup();

public slots:
    // Esc and the window's close box mean Cancel.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void showProgressLayout(bool exporting);
    void exportCabinet(qint32 cabinetId, const QString& path);

    const CommandContext& m_context;
    std::unique_ptr<Ui::ExportDialog> m_ui;
    std::unique_ptr<ExchangeFileSystem> m_ownFs;
    ExchangeFileSystem* m_fs;
    DialogProgress* m_progress;
    bool m_exporting = false;
};

} // namespace qmr
