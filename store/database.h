#pragma once

#include "store/recordset.h"

#include <QString>
#include <QVariantList>

struct sqlite3;

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
    bool hasColumn(const QString& table, const QString& column);

    // Groups statements: commits at commit(), rolls back when destroyed without it.
    class Transaction
    {
    public:
        explicit Transaction(Database& db);
        ~Transaction();
        void commit();

    private:
        Database& m_db;
        bool m_done = false;
    };

    // The SQLite library's run-time version as a number (3040001 for 3.40.1).
    static int runtimeVersion();

private:
    Recordset run(const QString& sql, const QVariantList& binds);
    [[noreturn]] void fail(const QString& sql) const;

    sqlite3* m_db = nullptr;
    QString m_path;
};

} // namespace qmr
