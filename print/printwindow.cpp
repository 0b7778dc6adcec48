#include "print/printwindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPageSetupDialog>
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

PrintWindow::PrintWindow(const CommandContext& context, PageLayouts& layouts, QWidget* parent)
    : QDialog(parent), m_context(context), m_layouts(layouts)
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
    QFont bold = font();
    bold.setBold(true);
    m_controls.item->setFont(bold);
    connect(m_controls.printer, &QComboBox::activated, this,
            [this] { m_context.session.settings().set(keys::Printer, printerEntry()); });

    const PrintScaleSettings scale = PrintScale::fromSettings(settings);
    m_controls.scale->setText(
        QStringLiteral("Pages are drawn at 95% of their true size, %1% across and %2% down "
                       "(File > Print Settings).")
            .arg(scale.widthPct)
            .arg(scale.heightPct));

    connect(m_controls.setup, &QPushButton::clicked, this, &PrintWindow::printSetup);
    connect(m_controls.print, &QPushButton::clicked, this,
            [this] { guarded(m_context.prompter, [this] { cmdPrint(); }); });
    connect(m_controls.cancel, &QPushButton::clicked, this, &QDialog::reject);
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

void PrintWindow::printSetup()
{
    const QString entry = printerEntry();
    QPrinter printer(QPrinter::HighResolution);
    PrinterChoice::configure(printer, entry, QString());
    if (m_layouts.contains(entry))
        printer.setPageLayout(m_layouts.value(entry));
    QPageSetupDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted)
        m_layouts.insert(entry, printer.pageLayout());
}

std::optional<QString> PrintWindow::askPdfFile(const QString& title)
{
    Settings& settings = m_context.session.settings();
    QString directory = settings.get(keys::PrintPdfPath);
    if (directory.isEmpty() || !QFileInfo(directory).isDir())
        directory = QDir::homePath();
    std::optional<QString> path = m_context.choosers.chooseSaveFile(
        PrinterChoice::pdfEntry(), directory + QLatin1Char('/') + PrinterChoice::pdfFileName(title),
        QStringLiteral("PDF files (*.pdf)"));
    if (!path)
        return std::nullopt;
    if (QFileInfo(*path).suffix().isEmpty())
        *path += QStringLiteral(".pdf");
    settings.set(keys::PrintPdfPath, QFileInfo(*path).absolutePath());
    return path;
}

bool PrintWindow::printPages(const QVector<PageRow>& pages, const QString& title, bool withProgress)
{
    const QString entry = printerEntry();
    m_context.session.settings().set(keys::Printer, entry);
    QString pdfFile;
    if (entry == PrinterChoice::pdfEntry()) {
        const std::optional<QString> chosen = askPdfFile(title);
        if (!chosen)
            return false;
        pdfFile = *chosen;
    } else if (QPrinterInfo::printerInfo(entry).isNull()) {
        m_context.prompter.tell(QStringLiteral("The printer '") + entry +
                                QStringLiteral("' is not available."));
        return false;
    }

    QPrinter printer(QPrinter::HighResolution);
    PrinterChoice::configure(printer, entry, pdfFile);
    if (m_layouts.contains(entry))
        printer.setPageLayout(m_layouts.value(entry));
    printer.setDocName(title);
    PrinterTarget target(printer);
    const PagePrinter routine(m_context.session.paths(),
                              PrintScale::fromSettings(m_context.session.settings()));
    PrintOutcome outcome;
    if (withProgress) {
        outcome =
            routine.print(pages, target, &m_context.progress, QStringLiteral("Printing ") + title);
    } else {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        outcome = routine.print(pages, target);
        QApplication::restoreOverrideCursor();
    }
    if (!outcome.error.isEmpty())
        m_context.prompter.tell(outcome.error);
    return true;
}

} // namespace qmr
