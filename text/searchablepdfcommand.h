#pragma once

#include <QCoreApplication>

#include "core/commandtable.h"
#include "store/commandcontext.h"

namespace qmr {

// "Save as Searchable PDF..." for a document: asks for the file, writes the document's
// pictures with their words under them (text/searchablepdf.h), and says what went wrong or
// what the file lacks.
class SearchablePdfCommand
{
    Q_DECLARE_TR_FUNCTIONS(SearchablePdfCommand)
public:
    // The menu entry's name.
    static QString entry() { return QStringLiteral("mnuPopupDocumentSearchablePdf"); }
    // The entry runs on the context's target document; the context must outlive the table
    // (the window's navigator holds the one context of a run).
    static void addTo(const CommandContext& context, CommandTable& table);
    // The document the menus point at (a found one too).
    static void saveTarget(const CommandContext& context);
    // Saves one document; for the menus and the page viewer alike.
    static void saveDocument(const CommandContext& context, qint32 documentId);
    // A file name for the document: its name without what a file name cannot hold.
    static QString fileNameFor(const QString& documentName);
};

} // namespace qmr
