#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace qmr {

// What an export did, told alike in the window and on the command line.
struct ExportReport
{
    Q_DECLARE_TR_FUNCTIONS(qmr::ExportReport)

public:
    int pagesCopied = 0;      // page files written whole at the target
    bool stopped = false;     // the user stopped it
    bool diskRefused = false; // the target filled up and no further disk was given
    QString error;            // what ended it early, "" for nothing
    QStringList problems;     // files that could not be written, each with the reason

    // Whether something ended it before it had walked the whole cabinet.
    bool endedEarly() const { return !error.isEmpty() || diskRefused || stopped; }
    // What was written: "Export complete. N pages copied.", or "Export not complete. N pages
    // copied before it ended." for one that something ended early.
    QString reportText() const;
    // What failed, each with the reason: the problems, and the error that ended it.
    QStringList failures() const;
    // The report as a message tells it: what was written, then the first of what failed.
    QString messageText() const;
};

} // namespace qmr
