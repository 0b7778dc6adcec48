#include <QFile>
#include <QTest>

#include "store/database.h"
#include "core/level.h"
#include "store/itemstore.h"
#include "store/schema.h"
#include "store/sqltext.h"
#include "store/storecolumns.h"
#include "store/storeerror.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/support/datarow.h"

using qmr::test::row;
using namespace qmr;
using qmr::test::columns;

namespace {

int columnCount(Database& db, const QString& table)
{
    return db.scalar(QStringLiteral("SELECT count(*) FROM pragma_table_info(?)"), {table}).toInt();
}

bool hasIndex(Database& db, const QString& name)
{
    return db.scalar("SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name = ?", {name})
               .toInt() == 1;
}

int versionRows(Database& db)
{
    return db.scalar(QStringLiteral("SELECT count(*) FROM Version")).toInt();
}

// The store as this program makes it, one version row and every table at its current shape.
void expectCurrent(Database& db)
{
    QCOMPARE(StoreSchema::readVersion(db), 4);
    QCOMPARE(versionRows(db), 1);
    const std::pair<const char*, int> tables[] = {{"Cabinet", 6},  {"Drawer", 4}, {"Folder", 5},
                                                  {"Document", 6}, {"Page", 13},  {"Version", 1}};
    for (const auto& [table, columns] : tables)
        QCOMPARE(columnCount(db, table), columns);
    QVERIFY(hasIndex(db, "Page_DocumentScan"));
}

// A store as an older program left it: the tables of version 0, brought to `version`.
void makeStoreAt(const AppHome& home, int version)
{
    Database db;
    db.open(StoreSchema::storePath(home));
    StoreSchema::createTables(db);
    StoreSchema::updateDatabase(db, version);
}

// A new store in a home of its own.
struct FreshStore
{
    test::TestHome home;
    Database db;
    FreshStore() { StoreSchema::openDatabase(db, home.home()); }
};

} // namespace

class TestSchema : public QObject
{
    Q_OBJECT
private slots:
    void freshStoreAndItsTransactions()
    {
        FreshStore fresh;
        Database& db = fresh.db;
        QVERIFY(QFile::exists(fresh.home.file("qmr.mdb")));
        expectCurrent(db);
        // A parent that does not exist is the program's business, not the store's.
        db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (999, 'Orphan')");
        // Transactions nest.
        auto count = [&] { return db.scalar("SELECT count(*) FROM Cabinet").toInt(); };
        {
            Database::Transaction outer(db);
            db.execute("INSERT INTO Cabinet (Name) VALUES ('Outer')");
            {
                Database::Transaction inner(db);
                QCOMPARE(db.transactionDepth(), 2);
                db.execute("INSERT INTO Cabinet (Name) VALUES ('Inner, undone')");
            } // rolled back: only the inner work goes
            QCOMPARE(count(), 1);
            {
                Database::Transaction inner(db);
                db.execute("INSERT INTO Cabinet (Name) VALUES ('Inner, kept')");
                inner.commit();
            }
            outer.commit();
        }
        QCOMPARE(db.transactionDepth(), 0);
        QCOMPARE(count(), 2);
        {
            Database::Transaction outer(db);
            {
                Database::Transaction inner(db);
                db.execute("INSERT INTO Cabinet (Name) VALUES ('Gone with the outer')");
                inner.commit();
            }
        } // the outer one rolls back what the inner one committed
        QCOMPARE(count(), 2);
        // A failing statement inside an inner group leaves the outer group usable.
        {
            Database::Transaction outer(db);
            try {
                Database::Transaction inner(db);
                db.execute("INSERT INTO NoSuchTable VALUES (1)");
                inner.commit();
            } catch (const StoreError&) {
            }
            db.execute("INSERT INTO Cabinet (Name) VALUES ('After the failure')");
            outer.commit();
        }
        QCOMPARE(count(), 3);
        // A failed statement in a single group takes the group's earlier work with it.
        try {
            Database::Transaction tx(db);
            db.execute("INSERT INTO Cabinet (Name) VALUES ('A')");
            db.execute("INSERT INTO NoSuchTable VALUES (1)");
            tx.commit();
        } catch (const StoreError&) {
        }
        QCOMPARE(count(), 3);
    }

    void upgradeFromEachVersion_data()
    {
        QTest::addColumn<int>("from");
        for (int from = 0; from <= 4; ++from)
            QTest::addRow("%d", from) << from;
    }
    void upgradeFromEachVersion()
    {
        QFETCH(int, from);
        test::TestHome home;
        makeStoreAt(home.home(), from);
        {
            Database db;
            db.open(StoreSchema::storePath(home.home()));
            QCOMPARE(StoreSchema::readVersion(db), from);
            QCOMPARE(db.hasColumn("Folder", "Email"), from >= 4);
            QCOMPARE(db.hasColumn("Page", "ShortcutYN"), from >= 3);
            QCOMPARE(db.hasColumn("Page", "Filetype"), from >= 2);
            QCOMPARE(db.hasColumn("Cabinet", "Storage"), from >= 1);
            if (from < 2) {
                // Rows as the oldest stores held them: both dates were there from the start.
                db.execute(
                    "INSERT INTO Document (FolderId, DateOnDocument) VALUES (1, '2020-01-02')");
                db.execute("INSERT INTO Page (DocumentId, PageNumber, ScanDate) VALUES (1, 1, "
                           "'2020-01-02')");
            }
            QVERIFY(!hasIndex(db, "Page_DocumentScan"));
        }
        Database db;
        StoreSchema::openDatabase(db, home.home());
        expectCurrent(db);
        if (from < 2) { // pages older than the file type get "JPG"; the dates stay
            QCOMPARE(db.scalar("SELECT Filetype FROM Page").toString(), QStringLiteral("JPG"));
            QCOMPARE(db.scalar("SELECT ScanDate FROM Page").toString(),
                     QStringLiteral("2020-01-02"));
            QCOMPARE(db.scalar("SELECT DateOnDocument FROM Document").toString(),
                     QStringLiteral("2020-01-02"));
        }
    }

    // A version the program did not write: none at all is version 0 and is upgraded; one
    // outside the known range (a newer program, or a damaged file) is left alone, start after
    // start.
    void unusualVersion_data()
    {
        columns<bool, QVariant, int>({"hasRow", "version", "opened"}); // invalid: Null
        row("no row", false, QVariant(), 4);
        row("null value", true, QVariant(), 4);
        row("minus one", true, QVariant(-1), -1);
        row("from a newer program", true, QVariant(7), 7);
    }
    void unusualVersion()
    {
        const auto [hasRow, version, opened] =
            test::fetch<bool, QVariant, int>("hasRow", "version", "opened");
        test::TestHome home;
        makeStoreAt(home.home(), 0);
        {
            Database db;
            db.open(StoreSchema::storePath(home.home()));
            if (hasRow && version.isNull()) {
                // A Version table written outside the program, which allowed Null.
                db.execute("DROP TABLE Version");
                db.execute("CREATE TABLE Version (Version INTEGER)");
            }
            if (hasRow)
                db.execute("INSERT INTO Version (Version) VALUES (?)", {version});
            QCOMPARE(StoreSchema::readVersion(db), version.isNull() ? 0 : opened);
        }
        for (int start = 0; start < 2; ++start) {
            Database db;
            StoreSchema::openDatabase(db, home.home());
            if (opened == 4) {
                expectCurrent(db);
                continue;
            }
            QCOMPARE(StoreSchema::readVersion(db), opened);
            QVERIFY(!db.hasColumn("Page", "Filename"));
        }
    }

    void emptyMdbIsCopied()
    {
        test::TestHome home;
        makeStoreAt(home.home(), 2);
        QVERIFY(QFile::rename(home.file("qmr.mdb"), home.file("empty.mdb")));
        Database db;
        StoreSchema::openDatabase(db, home.home());
        QVERIFY(QFile::exists(home.file("empty.mdb")));
        QCOMPARE(StoreSchema::readVersion(db), 4);
    }

    void halfMadeStoreOfAnEndedRunIsNeverTakenForOne()
    {
        test::TestHome home;
        // What a run killed while it made the store leaves: a file beside the store's place,
        // with an open transaction's journal.
        QVERIFY(home.writeFile("qmr.mdb.new", QByteArray(1024, '\0')));
        QVERIFY(home.writeFile("qmr.mdb.new-journal", QByteArray(512, '\x01')));
        Database db;
        StoreSchema::openDatabase(db, home.home());
        QCOMPARE(StoreSchema::readVersion(db), 4);
        QVERIFY(!QFile::exists(home.file("qmr.mdb.new")));
        QVERIFY(!QFile::exists(home.file("qmr.mdb.new-journal")));
        // A rollback journal flushed at every commit (the home may lie on a shared disk).
        QCOMPARE(db.scalar("PRAGMA journal_mode").toString(), QStringLiteral("delete"));
        QCOMPARE(db.scalar("PRAGMA synchronous").toInt(), 2);
    }

    void emptyMdbWithAddedColumnsButNoVersionFails()
    {
        test::TestHome home;
        makeStoreAt(home.home(), 4);
        {
            Database db;
            db.open(StoreSchema::storePath(home.home()));
            db.execute("DELETE FROM Version");
        }
        QVERIFY(QFile::rename(home.file("qmr.mdb"), home.file("empty.mdb")));
        Database db;
        try {
            StoreSchema::openDatabase(db, home.home());
            QFAIL("the first upgrade step must fail on a column that exists");
        } catch (const StoreError& e) {
            QVERIFY2(e.message().contains("duplicate column"), qPrintable(e.message()));
        }
        // The failed step left nothing half done.
        QCOMPARE(StoreSchema::readVersion(db), 0);
        QCOMPARE(versionRows(db), 0);
    }

    void notAStoreFailsWithAMessage()
    {
        test::TestHome home;
        QVERIFY(home.writeFile("qmr.mdb", QByteArray(4096, 'x')));
        Database db;
        QVERIFY_THROWS_EXCEPTION(StoreError, StoreSchema::openDatabase(db, home.home()));
    }

    void namesSortRoundTripAndCompareWithoutCase()
    {
        FreshStore fresh;
        Database& db = fresh.db;
        ItemStore items(db);
        const QStringList names{"zürich", "Émile",   "Zed",   "émile", "Emma",
                                "ecole",  "Eleanor", "apple", "Banana"};
        for (const QString& n : names)
            items.insertItem(Level::Cabinet, -1, n);
        QStringList sorted;
        for (const ItemRow& row : items.children(Level::Cabinet, -1))
            sorted << row.name;
        // Case never separates two names; accented letters stand beside their base letter.
        QCOMPARE(sorted, (QStringList{"apple", "Banana", "ecole", "Eleanor", "Émile", "émile",
                                      "Emma", "Zed", "zürich"}));
        const QString name = QStringLiteral("O'Brien's \"Müller\" cabinet");
        const qint32 id = items.insertItem(Level::Cabinet, -1, name);
        QCOMPARE(items.item(Level::Cabinet, id).name, name);
        QVERIFY(items.cabinetNameExists(QStringLiteral("o'brien's \"MÜLLER\" CABINET")));
        QVERIFY(!items.cabinetNameExists(QStringLiteral("O'Brien")));
        // Identifiers are never reused, not even after the last row is gone.
        db.execute("DELETE FROM Cabinet");
        QVERIFY(items.insertItem(Level::Cabinet, -1, "Next") > id);
    }

    void likeComparesWithoutCase_data()
    {
        columns<QString, QString>({"text", "pattern"});
        QTest::addColumn<QString>("escape"); // "" for none
        QTest::addColumn<int>("matches");    // -1: Null
        row("ascii, other case", "Tax bill 2004", "%TAX%", "", 1);
        row("ascii, no match", "Tax bill 2004", "%taxes%", "", 0);
        row("umlaut, other case", "Müller's letter", "%MÜLLER%", "", 1);
        row("ascii pattern, accented text", "Ärzte und Müller", "%und%", "", 1);
        row("accented pattern, ascii text", "Mueller", "%ü%", "", 0);
        row("greek", "ΑΘΗΝΑ", "%αθ%", "", 1);
        row("one character", "Müller", "m_ller", "", 1);
        row("one character is one", "Müller", "m_ler", "", 0);
        row("one character in a word", "Tax abc", "%a_c%", "", 1);
        row("anchored start, ascii", "Bill for Miller", "miller%", "", 0);
        row("anchored start", "Bill for Müller", "müller%", "", 0);
        row("percent backtracks", "äaäab", "%äab", "", 1);
        row("half a match is no match", "Tabs to Texas für Ärzte", "%tax%", "", 0);
        row("percent at the end", "Ölpreis", "öl%%", "", 1);
        row("escaped percent", "10% Rabatt für Ärzte", "10\\%%ärzte", "\\", 1);
        row("escaped percent is literal", "100 Ärzte", "10\\%%ärzte", "\\", 0);
        row("escaped, ascii", "10_off", "10!_off", "!", 1);
        row("escaped, ascii, literal", "10xoff", "10!_off", "!", 0);
        row("null text", QString(), "%a%", "", -1);
    }
    void likeComparesWithoutCase()
    {
        const auto [text, pattern, escape, matches] =
            test::fetch<QString, QString, QString, int>("text", "pattern", "escape", "matches");
        FreshStore fresh;
        Database& db = fresh.db;
        const QVariant value = text.isNull() ? QVariant() : QVariant(text);
        const QVariant result =
            escape.isEmpty() ? db.scalar("SELECT ? LIKE ?", {value, pattern})
                             : db.scalar("SELECT ? LIKE ? ESCAPE ?", {value, pattern, escape});
        QCOMPARE(result.isNull() ? -1 : result.toInt(), matches);
    }

    void overLongValuesAreRefused_data()
    {
        columns<QString, QString>({"sql", "message"});
        row("cabinet name", "INSERT INTO Cabinet (Name) VALUES (?)",
            "a cabinet's name can have at most 80 characters");
        row("folder email", "INSERT INTO Folder (DrawerId, Email) VALUES (1, ?)",
            "a folder's email address can have at most 100");
        row("storage path", "INSERT INTO Cabinet (StoragePath) VALUES (?)",
            "a cabinet's storage path can have at most 250");
    }
    void overLongValuesAreRefused()
    {
        const auto [sql, message] = test::fetch<QString, QString>("sql", "message");
        FreshStore fresh;
        Database& db = fresh.db;
        try {
            db.execute(sql, {QString(300, QLatin1Char('n'))});
            QFAIL("an over-long value was stored");
        } catch (const StoreError& e) {
            QVERIFY2(e.message().contains(message), qPrintable(e.message()));
        }
        QCOMPARE(db.scalar("SELECT count(*) FROM Cabinet").toInt(), 0);
        // Exactly the width is fine.
        ItemStore items(db);
        items.insertItem(Level::Cabinet, -1, QString(80, QLatin1Char('w')));
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 items.insertItem(Level::Drawer, 1, QString(81, QLatin1Char('w'))));
        // Checked before a copy into the store, ahead of the store's own refusal.
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 StoreColumns::check("Page", "Filename", QString(251, 'n')));
    }

    // A store that cannot grow (a full disk) refuses the insert with a message that says so,
    // and keeps what it held.
    void fullStoreSaysSo()
    {
        FreshStore fresh;
        Database& db = fresh.db;
        ItemStore items(db);
        items.insertItem(Level::Cabinet, -1, QStringLiteral("Kept"));
        const int pages = db.scalar(QStringLiteral("PRAGMA page_count")).toInt();
        db.execute(QStringLiteral("PRAGMA max_page_count = %1").arg(pages));
        try {
            for (int i = 0; i < 200; ++i)
                items.insertItem(Level::Cabinet, -1,
                                 QString(70, QLatin1Char('a' + i % 26)) + QString::number(i));
            QFAIL("the store grew past its limit");
        } catch (const StoreError& e) {
            QVERIFY2(e.message().startsWith(QStringLiteral("The disk is full: ")),
                     qPrintable(e.message()));
        }
        QCOMPARE(
            db.scalar(QStringLiteral("SELECT Name FROM Cabinet WHERE CabinetId = 1")).toString(),
            QStringLiteral("Kept"));
    }

    void quoteSqlAndNulls()
    {
        QCOMPARE(quoteSql("it's 'x'"), QStringLiteral("it''s ''x''"));
        QCOMPARE(quoteSql("a''b").size(), 6);
        QCOMPARE(quoteSql(QString()), QString());
        QCOMPARE(nullToString(QVariant()), QString());
        QCOMPARE(nullToString(QVariant(12)), QStringLiteral("12"));
    }

    void duplicateNamesIgnoreCaseWhateverTheColumnDeclares()
    {
        // A store whose tables were made elsewhere, with columns that compare with case.
        test::TestHome home;
        {
            Database db;
            db.open(StoreSchema::storePath(home.home()));
            db.execute("CREATE TABLE Cabinet (CabinetId INTEGER PRIMARY KEY AUTOINCREMENT, "
                       "Name VARCHAR(80), Password VARCHAR(10), Description TEXT)");
            db.execute("CREATE TABLE Drawer (DrawerId INTEGER PRIMARY KEY AUTOINCREMENT, "
                       "CabinetId INTEGER, Name VARCHAR(80), Description TEXT)");
            db.execute("INSERT INTO Cabinet (Name, Password) VALUES ('Old Cabinet', '')");
            db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (1, 'École')");
        }
        Database db;
        db.open(StoreSchema::storePath(home.home()));
        ItemStore items(db);
        QVERIFY(items.cabinetNameExists("old cabinet"));
        QVERIFY(items.nameTaken(Level::Cabinet, -1, "OLD CABINET", -1));
        QVERIFY(!items.nameTaken(Level::Cabinet, -1, "OLD CABINET", 1)); // itself
        QVERIFY(items.nameTaken(Level::Drawer, 1, QString::fromUtf8("école"), -1));
        QVERIFY(!items.nameTaken(Level::Drawer, 1, "Ecole", -1)); // an accent is no case
        QVERIFY(!items.nameTaken(Level::Drawer, 2, QString::fromUtf8("école"), -1));
        // A drawer's name in any cabinet, leaving out the drawer itself.
        QVERIFY(items.nameTakenAnywhere(Level::Drawer, QString::fromUtf8("ÉCOLE"), -1));
        QVERIFY(!items.nameTakenAnywhere(Level::Drawer, QString::fromUtf8("école"), 1));
    }

    void cachedStatementsSeeNewColumns()
    {
        // A statement kept from before an upgrade must not read the old table shape.
        test::TestHome home;
        makeStoreAt(home.home(), 3);
        Database db;
        db.open(StoreSchema::storePath(home.home()));
        db.execute("INSERT INTO Folder (DrawerId, Name) VALUES (1, 'F')");
        QCOMPARE(db.openRecordset("SELECT * FROM Folder").columns().size(), 4);
        StoreSchema::updateDatabase(db);
        QCOMPARE(db.openRecordset("SELECT * FROM Folder").columns().size(), 5);
    }
};

QMR_TEST(TestSchema)
#include "testschema.moc"
