#include "print/printwindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>

#include "core/choosers.h"
#include "core/prompter.h"
#include "print/pageprinter.h"
#include "print/printertarget.h"
#include "store/commandguard.h"
#include "store/session.h"

namespace qmr {

PrintWindow::PrintWindow(const CommandContext& context, PageLayouts& layouts, bool range,
                         QWidget* parent)
    : QDialog(parent), m_context(context), m_layouts(layouts), m_range(range)
{
}

void PrintWindow::wire(const Controls& controls, const QStringList& printers)
{
    m_controls = controls;
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (parentWidget())
        setWindowIcon(parentWidget()->window()->windowIcon());

    Settings& settings = m_context.session.settings();
    const QStringList entries = PrinterChoice::entries(printers);
    m_controls.printer->addItems(entries);
    m_controls.printer->setCurrentText(PrinterChoice::initial(entries, settings.get(keys::Printer),
                                                              PrinterChoice::systemDefault()));
    m_controls.print->setEnabled(m_controls.printer->count() > 0);
    m_controls.preview->setEnabled(m_controls.printer->count() > 0);
    QFont bold = font();
    bold.setBold(true);
    m_controls.item->setFont(bold);
    connect(m_controls.printer, &QComboBox::activated, this,
            [this] { m_context.session.settings().set(keys::Printer, printerEntry()); });

    const PrintScaleSettings scale = PrintScale::fromSettings(settings);
    m_controls.scale->setText(
        tr("Pages are drawn at 95% of their true size, %1% across and %2% down "
           "(File > Print Settings).")
            .arg(scale.widthPct)
            .arg(scale.heightPct));

    connect(m_controls.setup, &QPushButton::clicked, this, &PrintWindow::printSetup);
    connect(m_controls.print, &QPushButton::clicked, this,
            [this] { guarded(m_context.prompter, [this] { cmdPrint(); }); });
    connect(m_controls.cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_controls.preview, &QPushButton::clicked, this,
            [this] { guarded(m_context.prompter, [this] { preview(); }); });
    connect(m_controls.systemDialog, &QPushButton::clicked, this,
            [this] { guarded(m_context.prompter, [this] { systemDialog(); }); });
}

QString PrintWindow::printerEntry() const
{
    return m_controls.printer ? m_controls.printer->currentText() : QString();
}

bool PrintWindow::choosePrinter(const QString& entry)
{
    const int index = m_controls.printer->findText(entry);
    if (index < 0)
        return false;
    m_controls.printer->setCurrentIndex(index);
    emit m_controls.printer->activated(index);
    return true;
}

void PrintWindow::prepare(QPrinter& printer, const QString& entry, const QString& pdfFile) const
{
    PrinterChoice::configure(printer, entry, pdfFile);
    if (m_layouts.contains(entry))
        printer.setPageLayout(m_layouts.value(entry));
    printer.setDocName(jobTitle());
}

void PrintWindow::printSetup()
{
    const QString entry = printerEntry();
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, entry, QString());
    QPageSetupDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted)
        m_layouts.insert(entry, printer.pageLayout());
}

QString PrintWindow::pdfDirectory() const
{
    const QString directory = m_context.session.settings().get(keys::PrintPdfPath);
    return directory.isEmpty() || !QFileInfo(directory).isDir() ? QDir::homePath() : directory;
}

std::optional<QString> PrintWindow::askPdfFile(const QString& title)
{
    Settings& settings = m_context.session.settings();
    const QString directory = pdfDirectory();
    std::optional<QString> path = m_context.choosers.saveFile(
        {PrinterChoice::pdfEntry(),
         directory + QLatin1Char('/') + PrinterChoice::pdfFileName(title),
         {tr("PDF files (*.pdf)")},
         0,
         QStringLiteral("pdf"),
         true});
    if (!path)
        return std::nullopt;
    if (QFileInfo(*path).suffix().isEmpty())
        *path += QStringLiteral(".pdf");
    settings.set(keys::PrintPdfPath, QFileInfo(*path).absolutePath());
    return path;
}

void PrintWindow::cmdPrint()
{
    const QVector<PageRow> pages = pagesToPrint();
    if (!pages.isEmpty() && printPages(pages))
        accept();
}

bool PrintWindow::printPages(const QVector<PageRow>& pages)
{
    const QString entry = printerEntry();
    m_context.session.settings().set(keys::Printer, entry);
    QString pdfFile;
    if (entry == PrinterChoice::pdfEntry()) {
        const std::optional<QString> chosen = askPdfFile(jobTitle());
        if (!chosen)
            return false;
        pdfFile = *chosen;
    } else if (QPrinterInfo::printerInfo(entry).isNull()) {
        m_context.prompter.tell(tr("The printer '%1' is not available.").arg(entry));
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, entry, pdfFile);
    runPrint(printer, pages);
    return true;
}

void PrintWindow::runPrint(QPrinter& printer, const QVector<PageRow>& pages)
{
    PrinterTarget target(printer);
    const PagePrinter routine(m_context.session.paths(),
                              PrintScale::fromSettings(m_context.session.settings()));
    PrintOutcome outcome;
    if (m_range) {
        outcome =
            routine.print(pages, target, &m_context.progress, tr("Printing %1").arg(jobTitle()));
    } else {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        outcome = routine.print(pages, target);
        QApplication::restoreOverrideCursor();
    }
    if (!outcome.error.isEmpty())
        m_context.prompter.tell(outcome.error);
}

void PrintWindow::preview()
{
    const QVector<PageRow> pages = pagesToPrint();
    if (pages.isEmpty())
        return;
    // The sheets of the chosen printer; nothing is written while they are only looked at.
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, printerEntry(), QString());
    QPrintPreviewDialog dialog(&printer, this);
    dialog.setWindowTitle(tr("Preview of %1").arg(jobTitle()));
    const PagePrinter routine(m_context.session.paths(),
                              PrintScale::fromSettings(m_context.session.settings()));
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this, [&](QPrinter* shown) {
        PrinterTarget target(*shown, PrinterTarget::Sheets::Fixed);
        QApplication::setOverrideCursor(Qt::WaitCursor);
        const PrintOutcome outcome = routine.print(pages, target);
        QApplication::restoreOverrideCursor();
        if (!outcome.error.isEmpty())
            m_context.prompter.tell(outcome.error);
    });
    dialog.exec();
}

void PrintWindow::systemDialog()
{
    const QVector<PageRow> pages = pagesToPrint();
    if (pages.isEmpty())
        return;
    const QString entry = printerEntry();
    QPrinter printer(QPrinter::HighResolution);
    // The system's dialog starts on the chosen printer; for a PDF file it offers one in the
    // folder of the last.
    prepare(printer, entry,
            pdfDirectory() + QLatin1Char('/') + PrinterChoice::pdfFileName(jobTitle()));
    QPrintDialog dialog(&printer, this);
    dialog.setOption(QAbstractPrintDialog::PrintToFile);
    dialog.setOption(QAbstractPrintDialog::PrintCollateCopies);
    dialog.setOption(QAbstractPrintDialog::PrintShowPageSize);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, m_range);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    // The range is one of page numbers, within those this window stands for.
    dialog.setMinMax(pages.first().pageNumber, pages.last().pageNumber);
    if (dialog.exec() != QDialog::Accepted)
        return;

    QVector<PageRow> chosen;
    for (const PageRow& page : pages)
        if (printer.printRange() != QPrinter::PageRange ||
            (page.pageNumber >= printer.fromPage() && page.pageNumber <= printer.toPage()))
            chosen << page;
    if (chosen.isEmpty()) {
        m_context.prompter.tell(tr("Nothing found to print."));
        return;
    }
    // A printer that cannot make copies itself (a PDF file) gets each sheet as often.
    const int copies = printer.supportsMultipleCopies() ? 1 : qMax(1, printer.copyCount());
    QVector<PageRow> sheets;
    for (int c = 0; c < copies && printer.collateCopies(); ++c)
        sheets << chosen;
    if (!printer.collateCopies())
        for (const PageRow& page : chosen)
            for (int c = 0; c < copies; ++c)
                sheets << page;

    const bool toFile = printer.outputFormat() == QPrinter::PdfFormat;
    Settings& settings = m_context.session.settings();
    if (toFile && !printer.outputFileName().isEmpty())
        settings.set(keys::PrintPdfPath, QFileInfo(printer.outputFileName()).absolutePath());
    const QString used = toFile ? PrinterChoice::pdfEntry() : printer.printerName();
    if (!choosePrinter(used))
        settings.set(keys::Printer, used);
    runPrint(printer, sheets);
    accept();
}

} // namespace qmr
