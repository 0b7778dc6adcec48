#include <QTest>

#include "core/findcriteria.h"
#include "store/documentsearch.h"
#include "store/wordindex.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

QStringList foundNames(Database& db, qint32 cabinet, const QString& keywords)
{
    FindCriteria criteria;
    criteria.keywords = keywords;
    QStringList names;
    for (const FoundDocument& d : DocumentSearch(db).run(criteria, {cabinet}).documents)
        names << d.documentName;
    names.sort();
    names.removeDuplicates();
    return names;
}

void dropIndex(Database& db)
{
    for (const char* table : {"Document", "Folder"}) {
        for (const char* trigger : {"Add", "Remove", "Change"})
            db.execute(QStringLiteral("DROP TRIGGER %1_Words%2").arg(table, trigger));
        db.execute(QStringLiteral("DROP TABLE %1Words").arg(table));
    }
}

} // namespace

// The index only narrows what a search reads: kept by its triggers, made afresh from the rows,
// or not there at all, a search finds the same documents.
class TestWordIndex : public QObject
{
    Q_OBJECT

private slots:
    void findsWhatTheRowsHold_data()
    {
        columns<QString, QString, QStringList>({"change", "keywords", "expected"});
        const QString renamed =
            "UPDATE Document SET Name = 'Water bill' WHERE Name = 'Gas invoice'";
        const QString described =
            "UPDATE Document SET Description = 'summer cooling' WHERE Name = 'Gas invoice'";
        row("a word", "", "invoice", QStringList{"Gas invoice"});
        row("another case", "", "INVOICE", QStringList{"Gas invoice"});
        row("a description", "", "heating", QStringList{"Gas invoice"});
        row("long s", "", "hasen", QStringList{"Ha\u017Fen farm"});
        row("Kelvin sign", "", "kitchen", QStringList{"\u212Aitchen"});
        row("quotes", "", "\"big\"", QStringList{"The \"big\" one"});
        row("two letters", "", "as", QStringList{"Gas invoice", "Ha\u017Fen farm"});
        row("two words", "", "farm kitchen", QStringList{"Ha\u017Fen farm", "\u212Aitchen"});
        row("renamed: old name", renamed, "invoice", QStringList{});
        row("renamed: new name", renamed, "water", QStringList{"Water bill"});
        row("described: old text", described, "heating", QStringList{});
        row("described: new text", described, "cooling", QStringList{"Gas invoice"});
        row("deleted", "DELETE FROM Document WHERE Name = 'Gas invoice'", "gas", QStringList{});
        row("added",
            "INSERT INTO Document (FolderId, Name) SELECT FolderId, 'Gas "
            "meter' FROM Folder",
            "gas", QStringList{"Gas invoice", "Gas meter"});
        row("folder described", "UPDATE Folder SET Description = 'old receipts'", "receipts",
            QStringList{"Gas invoice", "Ha\u017Fen farm", "The \"big\" one", "\u212Aitchen"});
        row("folder renamed: old name", "UPDATE Folder SET Name = 'Bills'", "letters",
            QStringList{});
    }
    void findsWhatTheRowsHold()
    {
        QFETCH(QString, change);
        QFETCH(QString, keywords);
        QFETCH(QStringList, expected);
        TestHome home;
        FixtureStore store(home.home());
        Database& db = store.db();
        QVERIFY(WordIndex::present(db));
        const qint32 cabinet = store.cabinet("Home");
        const qint32 folder = store.folder(store.drawer(cabinet, "House"), "Letters");
        for (const QString name :
             {"Gas invoice", "Ha\u017Fen farm", "\u212Aitchen", "The \"big\" one"})
            store.document(folder, name);
        db.execute("UPDATE Document SET Description = 'winter heating' WHERE Name = 'Gas invoice'");
        if (!change.isEmpty())
            db.execute(change);

        QCOMPARE(foundNames(db, cabinet, keywords), expected); // kept by the triggers
        dropIndex(db);
        QVERIFY(!WordIndex::present(db));
        QCOMPARE(foundNames(db, cabinet, keywords), expected); // every row read
        WordIndex::ensure(db);
        QVERIFY(WordIndex::present(db));
        QCOMPARE(foundNames(db, cabinet, keywords), expected); // made from the rows
        // Later changes reach the index made from the rows too.
        db.execute("UPDATE Document SET Name = Name || ' x'");
        QStringList suffixed;
        for (const QString& name : expected)
            suffixed << name + " x";
        QCOMPARE(foundNames(db, cabinet, keywords), suffixed);
    }
};

QMR_TEST(TestWordIndex)
#include "testwordindex.moc"
