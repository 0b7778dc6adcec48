#include "store/wordindex.h"

#include "store/database.h"
#include "store/storelog.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

struct Indexed
{
    const char* table;
    const char* key;
};
const Indexed kIndexed[] = {{"Document", "DocumentId"}, {"Folder", "FolderId"}};

QString values(const QString& row, const Indexed& t)
{
    return QStringLiteral("%1.%2, %1.Name, %1.Description").arg(row, QLatin1String(t.key));
}

} // namespace

bool WordIndex::present(Database& db)
{
    return db.scalar(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' "
                                    "AND name IN ('DocumentWords', 'FolderWords')"))
               .toInt() == 2;
}

void WordIndex::ensure(Database& db)
{
    try {
        if (present(db))
            return;
        Database::Transaction tx(db);
        for (const Indexed& t : kIndexed) {
            const QString table = QLatin1String(t.table);
            const QString words = tableOf(table);
            // Contentless: the rows stay in their table, the index keeps only the runs.
            db.execute(QStringLiteral("CREATE VIRTUAL TABLE %1 USING fts5(Name, Description, "
                                      "content='', tokenize='trigram')")
                           .arg(words));
            const QString add = QStringLiteral("INSERT INTO %1 (rowid, Name, Description) VALUES "
                                               "(%2);")
                                    .arg(words, values(QStringLiteral("new"), t));
            const QString remove = QStringLiteral("INSERT INTO %1 (%1, rowid, Name, Description) "
                                                  "VALUES ('delete', %2);")
                                       .arg(words, values(QStringLiteral("old"), t));
            db.execute(QStringLiteral("CREATE TRIGGER %1_WordsAdd AFTER INSERT ON %1 BEGIN %2 END")
                           .arg(table, add));
            db.execute(
                QStringLiteral("CREATE TRIGGER %1_WordsRemove AFTER DELETE ON %1 BEGIN %2 END")
                    .arg(table, remove));
            db.execute(QStringLiteral("CREATE TRIGGER %1_WordsChange AFTER UPDATE OF Name, "
                                      "Description ON %1 BEGIN %2 %3 END")
                           .arg(table, remove, add));
            db.execute(QStringLiteral("INSERT INTO %1 (rowid, Name, Description) SELECT %2 FROM "
                                      "%3 AS row")
                           .arg(words, values(QStringLiteral("row"), t), table));
        }
        tx.commit();
    } catch (const StoreError& e) {
        // Searching works without the index, only slower: the user is not troubled with it.
        qCWarning(lcStore) << "The word index could not be made:" << e.message();
    }
}

QString WordIndex::matchFor(const QStringList& pieces)
{
    QStringList phrases;
    for (const QString& piece : pieces) {
        if (piece.size() < 3)
            return QString();
        for (const QChar c : piece)
            if (c.unicode() >= 0x80 || c == QLatin1Char('%') || c == QLatin1Char('_'))
                return QString();
        QString quoted = piece;
        quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
        phrases << QLatin1Char('"') + quoted + QLatin1Char('"');
    }
    return phrases.join(QStringLiteral(" OR "));
}

} // namespace qmr
