#include "store/schema.h"

#include "store/columnwidths.h"
#include "store/database.h"
#include "store/storeerror.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>

namespace qmr {

namespace {

QString text(const char* table, const char* column, int width)
{
    return ColumnWidths::textColumn(QLatin1String(table), QLatin1String(column), width);
}

QString memo(const char* column)
{
    return QLatin1String(column) + QLatin1String(" TEXT COLLATE NOCASE");
}

QStringList tableStatements()
{
    const QString id = QStringLiteral(" INTEGER PRIMARY KEY AUTOINCREMENT");
    return {
        QStringLiteral("CREATE TABLE Cabinet (CabinetId%1, %2, %3, %4)")
            .arg(id, text("Cabinet", "Name", 80), text("Cabinet", "Password", 10),
                 memo("Description")),
        QStringLiteral("CREATE TABLE Drawer (DrawerId%1, CabinetId INTEGER NOT NULL, %2, %3)")
            .arg(id, text("Drawer", "Name", 80), memo("Description")),
        QStringLiteral("CREATE TABLE Folder (FolderId%1, DrawerId INTEGER NOT NULL, %2, %3)")
            .arg(id, text("Folder", "Name", 80), memo("Description")),
        QStringLiteral("CREATE TABLE Document (DocumentId%1, FolderId INTEGER NOT NULL, %2, %3, "
                       "DateOnDocument TEXT, Amount REAL)")
            .arg(id, text("Document", "Name", 80), memo("Description")),
        QStringLiteral("CREATE TABLE Page (PageId%1, DocumentId INTEGER NOT NULL, %2, "
                       "PageNumber INTEGER, FileSize INTEGER, ZoomFactor INTEGER, XOff INTEGER, "
                       "YOff INTEGER, %3, ScanDate TEXT)")
            .arg(id, text("Page", "Name", 80), text("Page", "InternalStatus", 2)),
        QStringLiteral("CREATE TABLE Version (Version INTEGER NOT NULL)"),
        QStringLiteral("CREATE INDEX Drawer_CabinetId ON Drawer (CabinetId)"),
        QStringLiteral("CREATE INDEX Folder_DrawerId ON Folder (DrawerId)"),
        QStringLiteral("CREATE INDEX Document_FolderId ON Document (FolderId)"),
        QStringLiteral("CREATE INDEX Page_DocumentId ON Page (DocumentId)"),
    };
}

// Step A to D: each brings the store one version forward.
QStringList upgradeStatements(int fromVersion)
{
    switch (fromVersion) {
    case 0:
        return {QStringLiteral("ALTER TABLE Cabinet ADD COLUMN Storage INTEGER"),
                QStringLiteral("ALTER TABLE Cabinet ADD COLUMN ") +
                    text("Cabinet", "StoragePath", 250) + QStringLiteral(" NULL"),
                QStringLiteral("ALTER TABLE Page ADD COLUMN ") + text("Page", "Filename", 250) +
                    QStringLiteral(" NULL")};
    case 1:
        return {QStringLiteral("ALTER TABLE Page ADD COLUMN ") + text("Page", "Filetype", 3) +
                    QStringLiteral(" NULL"),
                QStringLiteral("UPDATE Page SET Filetype='JPG' WHERE Filetype IS NULL")};
    case 2:
        return {QStringLiteral("ALTER TABLE Page ADD COLUMN ") + text("Page", "ShortcutYN", 1) +
                QStringLiteral(" NULL")};
    case 3:
        return {QStringLiteral("ALTER TABLE Folder ADD COLUMN ") + text("Folder", "Email", 100) +
                QStringLiteral(" NULL")};
    default:
        return {};
    }
}

// A copy that is on the disk (flushed and synced) once it returns.
void copyWhole(const QString& source, const QString& target)
{
    QFile in(source);
    QSaveFile out(target);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly))
        throw StoreError(
            QStringLiteral("Cannot copy %1 to %2: %3")
                .arg(source, target, in.isOpen() ? out.errorString() : in.errorString()));
    while (!in.atEnd()) {
        const QByteArray chunk = in.read(1 << 20);
        if (chunk.isEmpty() && in.error() != QFileDevice::NoError)
            break;
        out.write(chunk);
    }
    if (in.error() != QFileDevice::NoError || !out.commit())
        throw StoreError(
            QStringLiteral("Cannot copy %1 to %2: %3")
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
        throw StoreError(QStringLiteral("Cannot move %1 to %2.").arg(building, target));
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
    for (int version = readVersion(db); version < target; ++version) {
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
