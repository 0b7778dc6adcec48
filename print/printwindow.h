#pragma once

#include <QDialog>

#include "print/printerchoice.h"
#include "store/commandcontext.h"
#include "store/pagestore.h"

class QComboBox;
class QLabel;
class QPrinter;
class QPushButton;

namespace qmr {

// What the page and the document print windows share: the printer list, whose choice is kept
// as "Printer" for the next print, Print Setup, Preview, the system's print dialog (copies,
// a range) and the print run itself.
class PrintWindow : public QDialog
{
    Q_OBJECT
public:
    QString printerEntry() const;
    // As if the entry had been chosen in the list; false when it is not listed.
    bool choosePrinter(const QString& entry);

protected:
    // `range`: the window prints a document's range, a page at a time with the progress.
    PrintWindow(const CommandContext& context, PageLayouts& layouts, bool range, QWidget* parent);
    // The context is held by reference: a temporary one would be gone before its use.
    PrintWindow(CommandContext&& context, PageLayouts& layouts, bool range,
                QWidget* parent) = delete;

    struct Controls
    {
        QComboBox* printer;
        QPushButton* setup;
        QPushButton* print;
        QPushButton* cancel;
        QLabel* scale;
        QLabel* item;
        QPushButton* preview;
        QPushButton* systemDialog;
    };
    // Fills the list (the system's printers, then the PDF entry) and connects the buttons.
    void wire(const Controls& controls, const QStringList& printers);
    // The pages the window stands for, in their order, with the job's title; none after the
    // message "Nothing found to print.".
    virtual QVector<PageRow> pagesToPrint() = 0;
    virtual QString jobTitle() const = 0;

    const CommandContext& m_context;

private:
    void cmdPrint();
    // Prints on the chosen printer. False when nothing was started because the person
    // cancelled the PDF file name or the printer is gone: the window then stays.
    bool printPages(const QVector<PageRow>& pages);
    void runPrint(QPrinter& printer, const QVector<PageRow>& pages);
    // A printer for the chosen entry with the sheet set up for it in this run.
    void prepare(QPrinter& printer, const QString& entry, const QString& pdfFile) const;
    void printSetup();
    void preview();
    void systemDialog();
    QString pdfDirectory() const;
    std::optional<QString> askPdfFile(const QString& title);

    PageLayouts& m_layouts;
    bool m_range;
    Controls m_controls{};
};

} // namespace qmr
