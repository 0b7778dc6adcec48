#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace qmr {

// What an import did.
struct ImportReport
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ImportReport)

public:
    int filesImported = 0;    // page files copied into the store
    int shortcutsCreated = 0; // new pages that point at a file where it lies
    int filesSkipped = 0;     // the page's file stood there already
    bool stopped = false;     // the user stopped it
    bool declined = false;    // nothing to import, and the structure alone was not wanted
    QString error;            // what ended it early, "" for nothing
    QStringList problems;     // files that could not be read or taken in, each with the reason
    // What the walk met and passed over on purpose, each with the reason: links, which are
    // never followed, and files whose paths a shortcut cannot keep.
    QStringList skipped;
    // "N files imported.\r\nM shortcuts created.", and "Import stopped by user." after a stop.
    QString reportText() const;
    // The first of `skipped`, one a line; "" when there are none.
    QString skippedText() const;
};

} // namespace qmr
