#include "templates/outlinefile.h"

#include "core/textfile.h"
#include "store/itemstore.h"
#include "store/storeerror.h"

namespace qmr {

OutlineLine OutlineFile::parse(const QString& line)
{
    const QString trimmed = line.trimmed();
    OutlineLine result;
    result.key = trimmed.left(3);
    const int eq = trimmed.indexOf(QLatin1Char('='));
    result.hasEquals = eq >= 0;
    if (eq >= 0)
        result.name = trimmed.mid(eq + 1).trimmed();
    return result;
}

QVector<OutlineLine> OutlineFile::section(const QString& path, const QString& head,
                                          const QString& name)
{
    QVector<OutlineLine> lines;
    bool inside = false;
    int number = 0;
    for (const QString& text : TextFile::readLines(path).value_or(QStringList())) {
        OutlineLine line = parse(text);
        line.number = ++number;
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
                                              qint32 topId, ItemStore& items,
                                              QVector<UnusedLine>* unused)
{
    QVector<CreatedItem> created;
    // The latest item of each level; -1 where there is none.
    qint32 latest[5] = {-1, -1, -1, -1, -1};
    // The line of the latest item of each level that could not be made; 0 where there is none.
    int lostAt[5] = {0, 0, 0, 0, 0};
    latest[static_cast<int>(top)] = topId;
    const auto word = [](int level) {
        return QString::fromLatin1(levelInfo(static_cast<Level>(level)).word).toLower();
    };
    for (const OutlineLine& line : lines) {
        std::optional<Level> level = levelOfPrefix(line.key);
        const bool usable = level && *level > top && *level != Level::Page;
        const auto pass = [&](const QString& reason) {
            if (unused)
                *unused << UnusedLine{line.number, reason};
        };
        if (!usable) {
            // Blank lines and notes are no entries.
            if (line.hasEquals) {
                QStringList keys;
                for (int l = static_cast<int>(top) + 1; l < static_cast<int>(Level::Page); ++l)
                    keys << QString::fromLatin1(levelInfo(static_cast<Level>(l)).prefix);
                const QString last = keys.takeLast();
                pass(tr("It does not begin with %1.")
                         .arg(keys.isEmpty() ? last
                                             : keys.join(QStringLiteral(", ")) +
                                                   QStringLiteral(" or ") + last));
            }
            continue;
        }
        const int l = static_cast<int>(*level);
        const qint32 parent = latest[l - 1];
        qint32 id = -1;
        if (parent == -1) {
            if (lostAt[l - 1] > 0)
                pass(tr("Its %1 on line %2 was not made.").arg(word(l - 1)).arg(lostAt[l - 1]));
            else
                pass(tr("A %1 needs a %2 line above it.").arg(word(l), word(l - 1)));
        } else if (unused && line.name.isEmpty()) {
            pass(tr("It has no name."));
        } else {
            try {
                id = items.insertItem(*level, parent, line.name);
            } catch (const StoreError& e) {
                // Only a value the store refuses concerns the line; any other failure ends
                // the work.
                if (!unused || e.column().isEmpty())
                    throw;
                pass(e.message());
            }
        }
        // An item, made or not, ends the run of the levels below it.
        latest[l] = id;
        lostAt[l] = id < 0 ? line.number : 0;
        for (int below = l + 1; below < 5; ++below) {
            latest[below] = -1;
            lostAt[below] = 0;
        }
        if (id >= 0)
            created << CreatedItem{*level, parent, id, line.name, {}};
    }
    return created;
}

} // namespace qmr
