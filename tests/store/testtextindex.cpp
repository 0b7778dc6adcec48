#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "core/pagewords.h"
#include "core/findcriteria.h"
#include "store/documentsearch.h"
#include "store/textindex.h"
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
        QFETCH(QString, typed);
        QFETCH(QList<int>, pages);
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
        QFETCH(QString, typed);
        QFETCH(QList<int>, words);
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
        QFETCH(QString, keywords);
        QFETCH(QString, pageWords);
        QFETCH(bool, attached);
        QFETCH(QStringList, documents);
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
        FindCriteria criteria;
        criteria.keywords = keywords;
        criteria.pageWords = PageWords::parse(pageWords);
        QStringList names;
        for (const FoundDocument& d : DocumentSearch(store.db()).run(criteria, {cabinet}).documents)
            names << d.documentName;
        names.sort();
        names.removeDuplicates();
        QCOMPARE(names, documents);
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
};

QMR_TEST(TestTextIndex)
#include "testtextindex.moc"
