#pragma once

#include <QHash>
#include <QPageLayout>
#include <QString>
#include <QStringList>

class QPrinter;

namespace qmr {

// The page setup chosen for each printer during a run, so the next print uses it too.
using PageLayouts = QHash<QString, QPageLayout>;

// The printer list of the print windows: the system's printers and, last, an entry that
// writes a PDF file, so that a person without a printer can still print.
class PrinterChoice
{
public:
    static QString pdfEntry();
    // The printers Qt knows of (CUPS on Linux).
    static QStringList systemPrinters();
    static QString systemDefault();
    static QStringList entries(const QStringList& printers);
    // The entry to select: the kept one while it is listed, else the system's default
    // printer, else the first printer, else the PDF entry.
    static QString initial(const QStringList& entries, const QString& kept,
                           const QString& systemDefault);
    // Points `printer` at an entry: a named printer, or PDF output into `pdfFile`.
    static void configure(QPrinter& printer, const QString& entry, const QString& pdfFile);
    // A file name from a title: what a file system would refuse becomes "_".
    static QString pdfFileName(const QString& title);
};

} // namespace qmr
