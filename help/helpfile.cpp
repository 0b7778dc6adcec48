#include "help/helpfile.h"

namespace qmr {

namespace {

bool isComment(const QString& line)
{
    return line.startsWith(QLatin1Char('\''));
}

bool endsSection(const QString& line)
{
    return line.trimmed().startsWith(QLatin1Char('['));
}

} // namespace

QString HelpFile::tocHead()
{
    return QStringLiteral("[toc]");
}

QString HelpFile::pageHead(int topic, int page)
{
    return QStringLiteral("[topic%1,page%2]").arg(topic).arg(page);
}

std::optional<qsizetype> HelpFile::find(const QStringList& lines, const QString& head)
{
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!isComment(lines.at(i)) && lines.at(i).toLower() == head)
            return i + 1;
    }
    return std::nullopt;
}

std::optional<QStringList> HelpFile::readToc(const QStringList& lines)
{
    const std::optional<qsizetype> start = find(lines, tocHead());
    if (!start)
        return std::nullopt;
    QStringList titles(kLines);
    for (qsizetype i = *start; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('[')))
            break;
        if (isComment(line))
            continue;
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        bool isNumber = false;
        const int n = line.left(qMax<qsizetype>(equals, 0)).trimmed().toInt(&isNumber);
        // A line that names no place in the table is left out rather than shown anywhere.
        if (equals < 0 || !isNumber || n < 1 || n > kLines)
            continue;
        titles[n - 1] = line.mid(equals + 1);
    }
    return titles;
}

std::optional<QStringList> HelpFile::readPage(const QStringList& lines, int topic, int page)
{
    const std::optional<qsizetype> start = find(lines, pageHead(topic, page));
    if (!start)
        return std::nullopt;
    QStringList text;
    for (qsizetype i = *start; i < lines.size() && text.size() < kLines; ++i) {
        const QString& line = lines.at(i);
        if (endsSection(line))
            break;
        if (isComment(line))
            continue;
        const QString lower = line.toLower();
        if (lower.startsWith(QLatin1String("centericon")) ||
            lower.startsWith(QLatin1String("centerpicture")))
            continue;
        text << line;
    }
    return text;
}

} // namespace qmr
