#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// One line of Drawer.txt or Sample.txt: a three-letter key and the name behind the first "=".
struct OutlineLine
{
    QString key;  // first three characters of the trimmed line, as written
    QString name; // trimmed text behind the first "=", "" without one
};

class OutlineFile
{
public:
    // The lines of a text file; an empty list when it cannot be read.
    static QStringList readLines(const QString& path);
    // Writes the lines, replacing the file; false on failure.
    static bool writeLines(const QString& path, const QStringList& lines);
    static OutlineLine parse(const QString& line);
};

} // namespace qmr
