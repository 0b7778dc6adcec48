#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include "core/navigatorcallbacks.h"

namespace qmr {

class ItemStore;

// One line of Drawer.txt or Sample.txt: a three-letter key and the name behind the first "=".
struct OutlineLine
{
    QString key;  // first three characters of the trimmed line, as written
    QString name; // trimmed text behind the first "=", "" without one
};

class OutlineFile
{
public:
    static OutlineLine parse(const QString& line);
    // The lines of the first section whose head line has the key `head` and the name `name`
    // (without regard to case), up to the next head line or the end of the file.
    static QVector<OutlineLine> section(const QString& path, const QString& head,
                                        const QString& name);
    // Creates the items of a section below `topId` of level `top`: "DRW", "FLD" and "DOC"
    // lines make drawers, folders and documents below the latest item of the level above;
    // a line with no such item is skipped, and each item ends the run of the levels below it.
    static QVector<CreatedItem> createItems(const QVector<OutlineLine>& lines, Level top,
                                            qint32 topId, ItemStore& items);
};

} // namespace qmr
