#include "templates/outlinefile.h"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace qmr {

QStringList OutlineFile::readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList lines;
    QTextStream in(&file);
    while (!in.atEnd())
        lines << in.readLine();
    return lines;
}

bool OutlineFile::writeLines(const QString& path, const QStringList& lines)
{
    // Written aside and renamed, so that a failed write never leaves half a file.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream out(&file);
    for (const QString& line : lines)
        out << line << '\n';
    out.flush();
    return file.commit();
}

OutlineLine OutlineFile::parse(const QString& line)
{
    const QString trimmed = line.trimmed();
    OutlineLine result;
    result.key = trimmed.left(3);
    const int eq = trimmed.indexOf(QLatin1Char('='));
    if (eq >= 0)
        result.name = trimmed.mid(eq + 1).trimmed();
    return result;
}

} // namespace qmr
