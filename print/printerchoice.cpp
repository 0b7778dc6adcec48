#include "print/printerchoice.h"

#include <QPrinter>
#include <QPrinterInfo>
#include <QRegularExpression>

namespace qmr {

QString PrinterChoice::pdfEntry()
{
    return QStringLiteral("Print to PDF file");
}

QStringList PrinterChoice::systemPrinters()
{
    return QPrinterInfo::availablePrinterNames();
}

QString PrinterChoice::systemDefault()
{
    return QPrinterInfo::defaultPrinterName();
}

QStringList PrinterChoice::entries(const QStringList& printers)
{
    QStringList list = printers;
    list.removeAll(pdfEntry());
    list << pdfEntry();
    return list;
}

QString PrinterChoice::initial(const QStringList& entries, const QString& kept,
                               const QString& systemDefault)
{
    if (!kept.isEmpty() && entries.contains(kept))
        return kept;
    if (!systemDefault.isEmpty() && entries.contains(systemDefault))
        return systemDefault;
    return entries.isEmpty() ? pdfEntry() : entries.first();
}

void PrinterChoice::configure(QPrinter& printer, const QString& entry, const QString& pdfFile)
{
    if (entry == pdfEntry()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdfFile);
    } else {
        printer.setOutputFormat(QPrinter::NativeFormat);
        printer.setPrinterName(entry);
    }
}

QString PrinterChoice::pdfFileName(const QString& title)
{
    static const QRegularExpression refused(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f]"));
    QString name = title;
    name.replace(refused, QStringLiteral("_"));
    name = name.trimmed();
    if (name.isEmpty() || name.startsWith(QLatin1Char('.')))
        name.prepend(QStringLiteral("Quillmere"));
    return name + QStringLiteral(".pdf");
}

} // namespace qmr
