#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

class Database;

// An index of the three-letter runs in the names and descriptions of folders and documents,
// kept by triggers, so that a search by keywords reads only the rows that may hold a word
// instead of every row. It only narrows: the search still tests each row it reads with LIKE,
// so what is found is the same with the index or without it.
class WordIndex
{
public:
    // Makes the index and its triggers when missing, filled from the rows there are. A store
    // that cannot take it (read-only, an SQLite library without it) is searched without.
    static void ensure(Database& db);
    // Whether the store has the index of both tables.
    static bool present(Database& db);
    // The full-text query that finds every row whose name or description may hold one of
    // `pieces`, or "" when a piece cannot be looked up in the index (shorter than three
    // letters, a wildcard in it, letters beyond ASCII): then every row must be read.
    static QString matchFor(const QStringList& pieces);
    // The index table of "Document" or "Folder".
    static QString tableOf(const QString& table) { return table + QStringLiteral("Words"); }
};

} // namespace qmr
