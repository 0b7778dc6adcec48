#include "store/schema.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QStringList>

#include "store/database.h"
#include "store/storecolumns.h"
#include "store/storeerror.h"
#include "store/wordindex.h"

namespace qmr {

namespace {

QStringList tableStatements()
{
    QStringList statements;
    for (const QString& table : StoreColumns::tables()) {
        QStringList columns;
        for (const StoreColumn& c : StoreColumns::of(table, 0))
            columns << c.definition();
        statements << QStringLiteral("CREATE TABLE %1 (%2)").arg(table, columns.join(", "));
    }
    // Children are always looked up by their parent.
    for (const StoreColumn& c : StoreColumns::all())
        if (c.type == ColumnType::Parent)
            statements << QStringLiteral("CREATE INDEX %1_%2 ON %1 (%2)")
                              .arg(c.tableName(), c.columnName());
    return statements;
}

// Step A to D: each brings the store one version forward.
QStringList upgradeStatements(int fromVersion)
{
    QStringList statements;
    for (const StoreColumn& c : StoreColumns::addedIn(fromVersion + 1))
        statements
            << QStringLiteral("ALTER TABLE %1 ADD COLUMN %2").arg(c.tableName(), c.definition());
    // Pages from before file types were kept are JPEG files.
    if (fromVersion == 1)
        statements << QStringLiteral("UPDATE Page SET Filetype='JPG' WHERE Filetype IS NULL");
    return statements;
}

// A copy that is on the disk (flushed and synced) once it returns.
void copyWhole(const QString& source, const QString& target)
{
    QFile in(source);
    QSaveFile out(target);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly))
        throw StoreError(
            QCoreApplication::translate("qmr::StoreSchema", "Cannot copy %1 to %2: %3")
                .arg(source, target, in.isOpen() ? out.errorString() : in.errorString()));
    while (!in.atEnd()) {
        const QByteArray chunk = in.read(1 << 20);
        if (chunk.isEmpty() && in.error() != QFileDevice::NoError)
            break;
        out.write(chunk);
    }
    if (in.error() != QFileDevice::NoError || !out.commit())
        throw StoreError(
            QCoreApplication::translate("qmr::StoreSchema", "Cannot copy %1 to %2: %3")
                .arg(source, target,
                     in.error() != QFileDevice::NoError ? in.errorString() : out.errorString()));
}

} // namespace

QString StoreSchema::storePath(const AppHome& home)
{
    return home.file(QStringLiteral("qmr.mdb"));
}

void StoreSchema::openDatabase(Database& db, const AppHome& home)
{
    if (!QFile::exists(storePath(home)))
        createDatabase(home);
    db.open(storePath(home));
    updateDatabase(db);
    if (readVersion(db) == kCurrentVersion)
        ensureSearchIndexes(db);
}

void StoreSchema::ensureSearchIndexes(Database& db)
{
    // A search reaches a cabinet's pages document by document and tests their scan date and
    // size; with both in the index the page rows themselves are not read (a scan-date search
    // over 100,000 pages takes a third of the time).
    // It only saves time: a store that cannot take it (read-only, full) still works without.
    try {
        db.execute(QStringLiteral("CREATE INDEX IF NOT EXISTS Page_DocumentScan ON Page "
                                  "(DocumentId, ScanDate, FileSize)"));
    } catch (const StoreError&) {
    }
    WordIndex::ensure(db);
}

void StoreSchema::createDatabase(const AppHome& home)
{
    // The store is made beside its place and moved there whole, so that a run that ends
    // mid-way (a crash, a kill) never leaves a half-made qmr.mdb that the next start would
    // take for a real one.
    const QString target = storePath(home);
    const QString building = target + QStringLiteral(".new");
    QFile::remove(building);
    QFile::remove(building + QStringLiteral("-journal"));
    const QString prepared = home.file(QStringLiteral("empty.mdb"));
    if (QFile::exists(prepared)) {
        copyWhole(prepared, building);
    } else {
        Database db;
        db.open(building);
        try {
            createTables(db);
        } catch (const StoreError&) {
            db.close();
            QFile::remove(building);
            throw;
        }
    }
    if (!QFile::rename(building, target)) {
        QFile::remove(building);
        throw StoreError(QCoreApplication::translate("qmr::StoreSchema", "Cannot move %1 to %2.")
                             .arg(building, target));
    }
}

void StoreSchema::createTables(Database& db)
{
    Database::Transaction tx(db);
    for (const QString& sql : tableStatements())
        db.execute(sql);
    tx.commit();
}

int StoreSchema::readVersion(Database& db)
{
    const QVariant v = db.scalar(QStringLiteral("SELECT Version FROM Version"));
    return v.isNull() ? 0 : v.toInt();
}

void StoreSchema::updateDatabase(Database& db, int target)
{
    const int stored = readVersion(db);
    // A version this program never wrote (below 0, or from a newer program) is left alone:
    // no step knows what such a store holds.
    if (stored < 0 || stored > kCurrentVersion)
        return;
    for (int version = stored; version < target; ++version) {
        // One step is one transaction: a failed step leaves the store as it was before it.
        Database::Transaction tx(db);
        for (const QString& sql : upgradeStatements(version))
            db.execute(sql);
        setDatabaseVersion(db, version + 1);
        tx.commit();
    }
}

void StoreSchema::setDatabaseVersion(Database& db, int version)
{
    db.execute(QStringLiteral("DELETE FROM Version"));
    db.execute(QStringLiteral("INSERT INTO Version (Version) VALUES (?)"), {version});
}

} // namespace qmr
