#pragma once

#include <QDialog>

#include "print/printerchoice.h"
#include "store/commandcontext.h"
#include "store/pagestore.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace qmr {

// What the page and the document print windows share: the printer list, whose choice is kept
// as "Printer" for the next print, Print Setup, and the print run itself.
class PrintWindow : public QDialog
{
    Q_OBJECT
public:
    QString printerEntry() const;
    // As if the entry had been chosen in the list; false when it is not listed.
    bool choosePrinter(const QString& entry);

protected:
    PrintWindow(const CommandContext& context, PageLayouts& layouts, QWidget* parent);

    struct Controls
    {
        QComboBox* printer;
        QPushButton* setup;
        QPushButton* print;
        QPushButton* cancel;
        QLabel* scale;
        QLabel* item;
    };
    // Fills the list (the system's printers, then the PDF entry) and connects the buttons.
    void wire(const Controls& controls, const QStringList& printers);
    // Prints `pages` on the chosen printer. False when nothing was started because the
    // person cancelled the PDF file name or the printer is gone: the window then stays.
    bool printPages(const QVector<PageRow>& pages, const QString& title, bool withProgress);
    virtual void cmdPrint() = 0;

    CommandContext m_context;

private:
    void printSetup();
    std::optional<QString> askPdfFile(const QString& title);

    PageLayouts& m_layouts;
    Controls m_controls{};
};

} // namespace qmr
