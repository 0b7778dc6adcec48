#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QVector>

#include "core/navigatorcallbacks.h"

namespace qmr {

class ItemStore;

// One line of Drawer.txt or Sample.txt: a three-letter key and the name behind the first "=".
struct OutlineLine
{
    QString key;            // first three characters of the trimmed line, as written
    QString name;           // trimmed text behind the first "=", "" without one
    bool hasEquals = false; // the line holds "=": it is meant as an entry, not as a note
    int number = 0;         // its line in the file, from 1; 0 for a line not read from a file
};

// A line of a section that made nothing, and why, in a sentence.
struct UnusedLine
{
    int number;
    QString reason;
};

class OutlineFile
{
    Q_DECLARE_TR_FUNCTIONS(qmr::OutlineFile)

public:
    static OutlineLine parse(const QString& line);
    // The lines of the first section whose head line has the key `head` and the name `name`
    // (without regard to case), up to the next head line or the end of the file.
    static QVector<OutlineLine> section(const QString& path, const QString& head,
                                        const QString& name);
    // Creates the items of a section below `topId` of level `top`: "DRW", "FLD" and "DOC"
    // lines make drawers, folders and documents below the latest item of the level above;
    // a line with no such item is skipped, and each item ends the run of the levels below it.
    // With `unused`, a line that cannot be used is passed over and listed there with the
    // reason: an entry of an unknown key, one without a name, one with no item above it, one
    // whose name the store refuses. Without it such a name ends the work with the store's error.
    static QVector<CreatedItem> createItems(const QVector<OutlineLine>& lines, Level top,
                                            qint32 topId, ItemStore& items,
                                            QVector<UnusedLine>* unused = nullptr);
};

} // namespace qmr
