#pragma once

#include "core/apphome.h"

namespace qmr {

class Database;

// Bringing qmr.mdb into being and up to the current schema.
class StoreSchema
{
public:
    static constexpr int kCurrentVersion = 4;
    // The oldest SQLite library the store works with (ALTER TABLE ADD COLUMN with CHECK,
    // pragma table functions).
    static constexpr int kMinimumSqlite = 3031000;

    // Creates the store when it is missing, opens it and runs the upgrades.
    static void openDatabase(Database& db, const AppHome& home);
    // Copies empty.mdb to qmr.mdb when there is one; else builds the tables of version 0.
    static void createDatabase(const AppHome& home);
    // The six tables at version 0, with no Version row.
    static void createTables(Database& db);
    // The upgrade chain from the stored version up to `target`.
    static void updateDatabase(Database& db, int target = kCurrentVersion);
    // Indexes that no version's tables call for and that only make searching quicker; made
    // when missing on a store of the current version.
    static void ensureSearchIndexes(Database& db);
    // No row, or a Null value, is version 0.
    static int readVersion(Database& db);

    static QString storePath(const AppHome& home);

private:
    static void setDatabaseVersion(Database& db, int version);
};

} // namespace qmr
