#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "core/pagewords.h"
#include "core/findcriteria.h"
#include "store/documentsearch.h"
#include "store/textindex.h"
#include "store/wordindex.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// A page's words as a reader gives them, each in a box of its own along one line.
QList<TextIndex::Word> line(const QString& text, int y = 100)
{
    QList<TextIndex::Word> words;
    int x = 10;
    for (const QString& word : text.split(' ', Qt::SkipEmptyParts)) {
        words << TextIndex::Word{word, QRect(x, y, 20 * int(word.size()), 30)};
        x += 20 * int(word.size()) + 15;
    }
    return words;
}

const TextIndex::Stamp kStamp{1234, 1700000000000};

// The names of the documents a search of the cabinet finds, sorted, each once.
QStringList foundNames(Database& db, qint32 cabinet, const QString& keywords,
                       const QString& pageWords = QString())
{
    FindCriteria criteria;
    criteria.keywords = keywords;
    criteria.pageWords = PageWords::parse(pageWords);
    QStringList names;
    for (const FoundDocument& d : DocumentSearch(db).run(criteria, {cabinet}).documents)
        names << d.documentName;
    names.sort();
    names.removeDuplicates();
    return names;
}

void dropWordIndex(Database& db)
{
    for (const char* table : {"Document", "Folder"}) {
        for (const char* trigger : {"Add", "Remove", "Change"})
            db.execute(QStringLiteral("DROP TRIGGER %1_Words%2").arg(table, trigger));
        db.execute(QStringLiteral("DROP TABLE %1Words").arg(table));
    }
}

} // namespace

class TestTextIndex : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

private slots:
    void findsThePagesThatHoldEveryTerm_data()
    {
        columns<QString, QList<int>>({"typed", "pages"});
        row("a word on two pages", "invoice", QList<int>{1, 2});
        row("another case, no accent", "MULLER", QList<int>{1});
        row("a phrase", "\"gas invoice\"", QList<int>{1});
        row("a phrase in another order", "\"invoice gas\"", QList<int>{});
        row("a beginning", "bill*", QList<int>{1, 3});
        row("every term on one page", "invoice total", QList<int>{2});
        row("terms on different pages only", "müller total", QList<int>{});
        row("a mail address", "billing@example.com", QList<int>{1});
        row("quotes and apostrophes", "o'brien \"", QList<int>{3});
        row("punctuation alone", "*", QList<int>{});
    }
    void findsThePagesThatHoldEveryTerm()
    {
        const auto [typed, pages] = test::fetch<QString, QList<int>>("typed", "pages");
        TextIndex index(m_home.path());
        index.open();
        index.put(1, kStamp, line("Gas invoice for Müller, e-mail billing@example.com"));
        index.put(2, kStamp, line("Water invoice total 42,00 EUR"));
        index.put(3, kStamp, line("Billing address: O'Brien"));
        QCOMPARE(index.pagesWith(PageWords::parse(typed)), pages);
    }

    // A page read again holds only its new words; a dropped one is gone; what the reader
    // could not do is kept with the page and stays after another run opens the file.
    void entriesFollowTheirPages()
    {
        QTemporaryDir home;
        const PageWords water = PageWords::parse("water");
        {
            TextIndex index(home.path());
            index.open();
            index.put(7, kStamp, line("gas bill"));
            index.put(7, TextIndex::Stamp{99, 5}, line("water bill"));
            QCOMPARE(index.pagesWith(PageWords::parse("gas")), QList<int>{});
            QCOMPARE(index.pagesWith(water), QList<int>{7});
            QCOMPARE(index.entry(7)->stamp, (TextIndex::Stamp{99, 5}));
            QCOMPARE(index.countWorkerEnd(8, TextIndex::Stamp{5, 5}), 1);
            QCOMPARE(index.countWorkerEnd(8, kStamp), 1); // the file changed in between
            QCOMPARE(index.countWorkerEnd(8, kStamp), 2);
            QCOMPARE(index.entry(8)->state, TextIndex::State::Interrupted);
            index.markUnreadable(8, kStamp);
            index.put(9, kStamp, line("water"));
            index.drop(9);
        }
        TextIndex index(home.path());
        index.open();
        QCOMPARE(index.pages(), (QList<int>{7, 8}));
        QCOMPARE(index.pagesWith(water), QList<int>{7});
        const TextIndex::Entry unreadable = *index.entry(8);
        QCOMPARE(unreadable.state, TextIndex::State::Unreadable);
        QCOMPARE(unreadable.workerEnds, 2);
        QCOMPARE(unreadable.stamp, kStamp);
        QVERIFY(!index.entry(9));
        QCOMPARE(index.textOf(7), QString("water bill"));
    }

    void boxesOfTheMatchingWords_data()
    {
        columns<QString, QList<int>>({"typed", "words"});
        row("a word", "due", QList<int>{2});
        row("a phrase", "\"amount due\"", QList<int>{1, 2});
        row("a word inside a word as read", "mail", QList<int>{3});
        row("a beginning, twice", "tot*", QList<int>{0, 5});
        row("not there", "invoice", QList<int>{});
    }
    void boxesOfTheMatchingWords()
    {
        const auto [typed, words] = test::fetch<QString, QList<int>>("typed", "words");
        TextIndex index(m_home.path());
        index.open();
        // Two lines: the boxes go back to the left and down, and come back as they were.
        const QList<TextIndex::Word> read =
            line("Total amount due:") + line("e-mail, 42 total", 160);
        index.put(4, kStamp, read);
        QList<QRect> expected;
        for (int i : words)
            expected << read.at(i).box;
        QCOMPARE(index.boxesOf(4, PageWords::parse(typed)), expected);
    }

    // Words on the pages narrow both passes of a document search to documents with a page
    // that holds them all; without the index on the store's connection nothing holds them.
    void theDocumentSearchAsksTheIndex_data()
    {
        columns<QString, QString, bool, QStringList>(
            {"keywords", "pageWords", "attached", "documents"});
        row("words alone", "", "invoice", true, QStringList{"Spring", "Winter"});
        row("all on one page", "", "northwind invoice", true, QStringList{"Winter"});
        row("terms on different pages", "", "northwind water", true, QStringList{});
        row("with a folder's keyword", "gas", "invoice", true, QStringList{"Winter"});
        row("with a document's keyword", "spring", "invoice", true, QStringList{"Spring"});
        row("no words: as before", "gas", "", true, QStringList{"Autumn", "Winter"});
        row("no text read", "", "invoice", false, QStringList{});
    }
    void theDocumentSearchAsksTheIndex()
    {
        const auto [keywords, pageWords, attached, documents] =
            test::fetch<QString, QString, bool, QStringList>("keywords", "pageWords", "attached",
                                                             "documents");
        TestHome home;
        FixtureStore store(home.home());
        const qint32 cabinet = store.cabinet("Home");
        const qint32 drawer = store.drawer(cabinet, "Bills");
        const qint32 gas = store.folder(drawer, "Gas");
        TextIndex index(home.path());
        index.open();
        const auto file = [&](qint32 folder, const QString& name, const QStringList& pages) {
            const qint32 document = store.document(folder, name);
            for (int i = 0; i < pages.size(); ++i)
                index.put(store.page(document, i + 1), kStamp, line(pages.at(i)));
        };
        file(gas, "Winter", {"Northwind gas invoice", "terms"});
        file(gas, "Autumn", {"water", "Northwind"});
        file(store.folder(drawer, "Water"), "Spring", {"invoice"});
        if (attached)
            index.attachTo(store.db());
        QCOMPARE(foundNames(store.db(), cabinet, keywords, pageWords), documents);
    }

    // A file that is no index is set aside, and no journal of it is left to be played into
    // the new one.
    void aDamagedFileIsSetAsideAndMadeAnew()
    {
        QTemporaryDir home;
        const QString path = home.filePath(TextIndex::fileName());
        for (const QString& name : {path, path + "-journal"}) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(4096, 'x'));
        }
        TextIndex index(home.path());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("set aside as .*damaged"));
        index.open();
        index.put(1, kStamp, line("invoice"));
        QCOMPARE(index.pagesWith(PageWords::parse("invoice")), QList<int>{1});
        QFile aside(path + ".damaged");
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), QByteArray(4096, 'x'));
        QVERIFY(!QFile::exists(path + "-journal"));
    }

    // The word index only narrows what a search reads: kept by its triggers, made afresh from
    // the rows, or not there at all, a search finds the same documents.
    void wordIndexFindsWhatTheRowsHold_data()
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
    void wordIndexFindsWhatTheRowsHold()
    {
        const auto [change, keywords, expected] =
            test::fetch<QString, QString, QStringList>("change", "keywords", "expected");
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
        dropWordIndex(db);
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

QMR_TEST(TestTextIndex)
#include "testtextindex.moc"
