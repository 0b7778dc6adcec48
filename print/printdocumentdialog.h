#pragma once

#include <memory>

#include "print/printwindow.h"

namespace Ui {
class PrintDocumentDialog;
}

namespace qmr {

// frmPrintDocument: prints the pages of a document whose numbers lie in a range, a sheet each.
class PrintDocumentDialog : public PrintWindow
{
    Q_OBJECT
public:
    // The range starts as the document's lowest and highest page numbers.
    PrintDocumentDialog(const CommandContext& context, PageLayouts& layouts, qint32 documentId,
                        const QStringList& printers = PrinterChoice::systemPrinters(),
                        QWidget* parent = nullptr);
    // The context is held by reference: a temporary one would be gone before its use.
    PrintDocumentDialog(CommandContext&& context, PageLayouts& layouts, qint32 documentId,
                        const QStringList& printers = PrinterChoice::systemPrinters(),
                        QWidget* parent = nullptr) = delete;
    ~PrintDocumentDialog() override;

protected:
    QVector<PageRow> pagesToPrint() override;
    QString jobTitle() const override { return m_name; }

private:
    std::unique_ptr<Ui::PrintDocumentDialog> m_ui;
    qint32 m_documentId;
    QString m_name;
};

} // namespace qmr
