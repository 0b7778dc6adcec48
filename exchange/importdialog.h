#pragma once

#include <QDialog>
#include <memory>

#include "store/commandcontext.h"

namespace Ui {
class ImportDialog;
}

namespace qmr {

class DialogProgress;
class ExchangeFileSystem;

// frmImport: merges an exchange directory, from one disk or several, into an open cabinet,
// with its own bar and a Cancel that asks before it stops the import.
class ImportDialog : public QDialog
{
    Q_OBJECT
public:
    // `fs` stands in for the real file system (tests); the dialog does not own it.
    explicit ImportDialog(const CommandContext& context, QWidget* parent = nullptr,
                          ExchangeFileSystem* fs = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    ImportDialog(CommandContext&& context, QWidget* parent = nullptr,
                 ExchangeFileSystem* fs = nullptr) = delete;
    ~ImportDialog() override;

    void selectCabinet(qint32 cabinetId);
    bool isImporting() const { return m_importing; }
    DialogProgress* progress() const { return m_progress; }
    // How many threads make thumbnails; 0 for one per core.
    void setThumbnailThreads(int threads) { m_threads = threads; }

    void cmdOK();
    void cmdCancel();
    void cmdLookup();

public slots:
    // Esc and the window's close box mean Cancel.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void showProgressLayout(bool importing);
    void importCabinet(qint32 cabinetId, const QString& path, int diskCount);

    const CommandContext& m_context;
    std::unique_ptr<Ui::ImportDialog> m_ui;
    std::unique_ptr<ExchangeFileSystem> m_ownFs;
    ExchangeFileSystem* m_fs;
    DialogProgress* m_progress;
    bool m_importing = false;
    int m_threads = 0;
};

} // namespace qmr
