#pragma once

#include <QByteArray>
#include <QHash>
#include <functional>
#include <QString>
#include <QVariantList>

#include "store/recordset.h"

struct sqlite3;
struct sqlite3_stmt;

namespace qmr {

// The one connection to the store. Statements bind their values; every failure is a
// StoreError with the engine's own text.
class Database
{
public:
    Database() = default;
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens (and creates when missing) the SQLite file.
    void open(const QString& path);
    void close();
    bool isOpen() const { return m_db != nullptr; }
    const QString& path() const { return m_path; }

    void execute(const QString& sql, const QVariantList& binds = {});
    Recordset openRecordset(const QString& sql, const QVariantList& binds = {});
    // The first field of the first row, or a null QVariant when there is no row.
    QVariant scalar(const QString& sql, const QVariantList& binds = {});
    qint32 lastInsertId() const;

    // One row of a result as it is read; valid only during the call that receives it.
    class Row
    {
    public:
        bool isNull(int column) const;
        qint64 integer(int column) const;
        QString text(int column) const; // "" for Null

    private:
        friend class Database;
        explicit Row(sqlite3_stmt* stmt) : m_stmt(stmt) {}
        sqlite3_stmt* m_stmt;
    };
    // Reads a result row by row without keeping it, for results too large to copy whole.
    // `visit` may run other statements, but not this one.
    void forEachRow(const QString& sql, const QVariantList& binds,
                    const std::function<void(const Row&)>& visit);
    bool hasColumn(const QString& table, const QString& column);

    // Groups statements: commits at commit(), rolls back when destroyed without it. Groups
    // nest (as savepoints): an inner group that is rolled back undoes only its own work, and
    // nothing is on disk before the outermost one commits.
    class Transaction
    {
    public:
        explicit Transaction(Database& db);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();

    private:
        Database& m_db;
        QString m_name;
        bool m_done = false;
    };
    // How many groups are open; 0 outside any.
    int transactionDepth() const { return m_depth; }

    // The SQLite library's run-time version as a number (3040001 for 3.40.1).
    static int runtimeVersion();

private:
    Recordset run(const QString& sql, const QVariantList& binds);
    // The statement prepared, with its values bound; null for a text without a statement.
    sqlite3_stmt* start(const QString& sql, const QVariantList& binds);
    // A prepared statement from the cache, reset and unbound, or a new one.
    sqlite3_stmt* prepare(const QString& sql);
    void finalizeAll();
    [[noreturn]] void fail() const;

    sqlite3* m_db = nullptr;
    QString m_path;
    // Statements prepared on this connection, by their text: the navigator runs the same few
    // queries thousands of times.
    QHash<QByteArray, sqlite3_stmt*> m_statements;
    int m_depth = 0;
};

} // namespace qmr
