#pragma once

#include <memory>

#include "print/printwindow.h"

namespace Ui {
class PrintDialog;
}

namespace qmr {

// frmPrint: prints one page.
class PrintDialog : public PrintWindow
{
    Q_OBJECT
public:
    // `printers` are the system's printers; the PDF entry is always added.
    PrintDialog(const CommandContext& context, PageLayouts& layouts, qint32 pageId,
                const QStringList& printers = PrinterChoice::systemPrinters(),
                QWidget* parent = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    PrintDialog(CommandContext&& context, PageLayouts& layouts, qint32 pageId,
                const QStringList& printers = PrinterChoice::systemPrinters(),
                QWidget* parent = nullptr) = delete;
    ~PrintDialog() override;

protected:
    QVector<PageRow> pagesToPrint() override;
    QString jobTitle() const override { return m_title; }

private:
    std::unique_ptr<Ui::PrintDialog> m_ui;
    qint32 m_pageId;
    QString m_title;
};

} // namespace qmr
