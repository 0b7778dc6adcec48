#include "templates/outlinefile.h"

#include "core/textfile.h"
#include "store/itemstore.h"

namespace qmr {

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

QVector<OutlineLine> OutlineFile::section(const QString& path, const QString& head,
                                          const QString& name)
{
    QVector<OutlineLine> lines;
    bool inside = false;
    for (const QString& text : TextFile::readLines(path).value_or(QStringList())) {
        const OutlineLine line = parse(text);
        const bool isHead = line.key == head;
        if (inside && isHead)
            break;
        if (inside)
            lines << line;
        else
            inside = isHead && line.name.compare(name, Qt::CaseInsensitive) == 0;
    }
    return lines;
}

QVector<CreatedItem> OutlineFile::createItems(const QVector<OutlineLine>& lines, Level top,
                                              qint32 topId, ItemStore& items)
{
    QVector<CreatedItem> created;
    // The latest item of each level; -1 where there is none.
    qint32 latest[5] = {-1, -1, -1, -1, -1};
    latest[static_cast<int>(top)] = topId;
    for (const OutlineLine& line : lines) {
        std::optional<Level> level = levelOfPrefix(line.key);
        if (!level || *level <= top || *level == Level::Page)
            continue;
        const int l = static_cast<int>(*level);
        const qint32 parent = latest[l - 1];
        if (parent == -1)
            continue;
        latest[l] = items.insertItem(*level, parent, line.name);
        for (int below = l + 1; below < 5; ++below)
            latest[below] = -1;
        created << CreatedItem{*level, parent, latest[l], line.name, {}};
    }
    return created;
}

} // namespace qmr
