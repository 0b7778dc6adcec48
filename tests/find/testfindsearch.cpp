#include <QTest>

#include "core/findrecord.h"
#include "core/runstate.h"
#include "find/findsearch.h"
#include "findfixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::row;

Q_DECLARE_METATYPE(qmr::FindRecord)

namespace {

// "DOC<id>" for each document in the order found, duplicates kept.
QStringList foundKeys(const FindOutcome& outcome)
{
    QStringList keys;
    for (const FoundDocument& d : outcome.documents)
        keys << QString("DOC%1").arg(d.documentId);
    return keys;
}

QStringList sortedUnique(QStringList keys)
{
    keys.removeDuplicates();
    keys.sort();
    return keys;
}

FindRecord keywords(const QString& text, bool any = true)
{
    FindRecord r;
    r.keywords = text;
    r.matchAny = any ? 1 : 0;
    r.matchAll = any ? 0 : 1;
    return r;
}

} // namespace

class TestFindSearch : public QObject
{
    Q_OBJECT
    // Built once: searching reads the store, and each test opens a session of its own.
    test::FindFixture m_fixture;

private slots:
    void initTestCase() { m_fixture.build(); }

    void search_data()
    {
        QTest::addColumn<FindRecord>("criteria");
        QTest::addColumn<int>("cabinet");
        QTest::addColumn<int>("folder");
        QTest::addColumn<QStringList>("documents"); // found, without duplicates, sorted
        QTest::addColumn<int>("count");             // the sum of the passes' record counts

        row("word in a name", keywords("statement"), 0, 0, QStringList{"DOC1"}, 1);
        row("word in a description, any case", keywords("MARCH"), 0, 0, QStringList{"DOC1"}, 1);
        row("any word: either", keywords("Return  Acme"), 0, 0, QStringList{"DOC3", "DOC6"}, 3);
        row("all words: one piece", keywords("tax bill", false), 0, 0, QStringList{"DOC6"}, 1);
        row("all words: not split", keywords("bill tax", false), 0, 0, QStringList{}, 0);
        row("any case beyond ascii", keywords("ÄRZTEKAMMER"), 0, 0, QStringList{"DOC7"}, 1);
        row("quote in a keyword", keywords("O'Brien"), 0, 0, QStringList{"DOC2"}, 1);
        row("all words: quotes and blanks", keywords("O'Brien's letter", false), 0, 0,
            QStringList{"DOC2"}, 1);
        // What is typed is matched as typed: % and _ stand for any text and any character.
        row("percent in a keyword", keywords("statement%March"), 0, 0, QStringList{"DOC1"}, 1);
        row("underscore in a keyword", keywords("Acme_tax"), 0, 0, QStringList{"DOC6"}, 1);
        row("all words: underscore", keywords("tax_bill", false), 0, 0, QStringList{"DOC6"}, 1);
        // Every document and every folder of the open cabinets: 6 documents and 4 folders.
        row("percent alone", keywords("%"), 0, 0,
            QStringList{"DOC1", "DOC2", "DOC3", "DOC5", "DOC6", "DOC7"}, 10);
        // The folder Checking matches, so all its documents come, and "Checking fees" twice.
        row("folder hit brings its documents", keywords("checking"), 0, 0,
            QStringList{"DOC1", "DOC2", "DOC5"}, 2);
        row("folder description", keywords("everyday"), 0, 0, QStringList{"DOC1", "DOC2", "DOC5"},
            1);
        row("empty folder counts", keywords("rainy"), 0, 0, QStringList{}, 1);
        row("locked cabinet skipped", keywords("checkup doctor"), 0, 0, QStringList{}, 0);
        row("one cabinet", keywords("bill statement"), 3, 0, QStringList{"DOC6"}, 1);
        row("one folder", keywords("fees statement return"), 0, 1, QStringList{"DOC1", "DOC5"}, 2);

        // No keywords: every folder matches, so every document in scope comes, whatever the
        // Advanced tab says.
        FindRecord dates;
        dates.scanFrom = QDate(2004, 1, 1);
        dates.scanThru = QDate(2004, 1, 31);
        row("date range alone brings everything", dates, 0, 0,
            QStringList{"DOC1", "DOC2", "DOC3", "DOC5", "DOC6", "DOC7"}, 5);
        row("date range alone, one cabinet", dates, 3, 0, QStringList{"DOC6"}, 2);

        // Advanced criteria with keywords that only documents match.
        FindRecord scan = keywords("statement fees bill letter");
        scan.scanFrom = QDate(2026, 2, 1);
        scan.scanThru = QDate(2026, 2, 28);
        row("scan date", scan, 0, 0, QStringList{"DOC5"}, 1);
        scan.scanThru = QDate(2026, 2, 3); // the day itself, at midnight
        row("scan date, last day", scan, 0, 0, QStringList{"DOC5"}, 1);
        scan.scanFrom = QDate(2026, 2, 3);
        row("scan date, one day", scan, 0, 0, QStringList{"DOC5"}, 1);
        scan.scanFrom = scan.scanThru = QDate(2026, 2, 4);
        row("scan date, the day after", scan, 0, 0, QStringList{}, 0);
        scan.scanFrom = QDate(2026, 2, 3);
        scan.scanThru = scan.defaultThru; // one limit at its default counts
        row("scan date, first day, default thru", scan, 0, 0, QStringList{"DOC1", "DOC5"}, 2);
        scan.scanFrom = scan.defaultFrom;
        scan.scanThru = QDate(2004, 1, 10);
        row("scan date, default from, last day", scan, 0, 0, QStringList{"DOC6"}, 1);
        // A range that does not count asks nothing: documents without pages come too.
        const QStringList everyMatch{"DOC1", "DOC2", "DOC5", "DOC6"};
        scan.scanFrom = QDate(2026, 3, 1);
        scan.scanThru = QDate(2026, 2, 1);
        row("scan date, from past thru", scan, 0, 0, everyMatch, 4);
        FindRecord doc = keywords("statement fees bill letter");
        doc.docFrom = QDate(2004, 3, 1);
        doc.docThru = QDate(2004, 4, 1);
        row("date on document", doc, 0, 0, QStringList{"DOC6"}, 1);
        doc.docFrom = doc.docThru = QDate(2026, 2, 1);
        row("date on document, one day", doc, 0, 0, QStringList{"DOC5"}, 1);
        doc.docFrom = QDate(2026, 2, 2);
        row("date on document, from past thru", doc, 0, 0, everyMatch, 4);
        FindRecord amount = keywords("statement fees bill letter");
        amount.amountFrom = 10;
        amount.amountThru = 20;
        // O'Brien's letter has the amount 15 but no page: not found this way.
        row("amount, pages needed", amount, 0, 0, QStringList{"DOC5", "DOC6"}, 2);
        amount.amountFrom = amount.amountThru = 12;
        row("amount, one value", amount, 0, 0, QStringList{"DOC5"}, 1);
        amount.amountThru = 15;
        row("amount, both limits", amount, 0, 0, QStringList{"DOC5", "DOC6"}, 2);
        amount.amountFrom = -20;
        amount.amountThru = -0.25;
        row("amount, below zero", amount, 0, 0, QStringList{}, 0);
        amount.amountFrom = 20;
        amount.amountThru = 10;
        row("amount, from past thru", amount, 0, 0, everyMatch, 4);
        FindRecord size = keywords("statement fees bill letter");
        size.fileSizeFrom = 100;
        size.fileSizeThru = 200;
        // Two pages of the bill would give it twice without DISTINCT; only one matches.
        row("file size", size, 0, 0, QStringList{"DOC6"}, 1);
        size.fileSizeThru = 1000;
        row("file size, two pages, one row", size, 0, 0, QStringList{"DOC6"}, 1);
        size.fileSizeFrom = 0;
        size.fileSizeThru = 150;
        row("file size, from 0", size, 0, 0, QStringList{"DOC6"}, 1);
        size.fileSizeFrom = 3000;
        size.fileSizeThru = 4000;
        row("file size, both limits", size, 0, 0, QStringList{"DOC1", "DOC5"}, 2);
        size.fileSizeFrom = 4001;
        size.fileSizeThru = 3000;
        row("file size, from past thru", size, 0, 0, everyMatch, 4);
        // The pages that meet the scan date must meet the size too.
        size = scan;
        size.scanFrom = QDate(2004, 1, 1);
        size.scanThru = QDate(2004, 1, 31);
        size.fileSizeFrom = 900;
        size.fileSizeThru = 900;
        row("scan date and size, not one page", size, 0, 0, QStringList{}, 0);
        FindRecord all = keywords("tax bill");
        all.scanFrom = QDate(2004, 1, 1);
        all.scanThru = QDate(2004, 2, 1);
        all.docFrom = QDate(2004, 3, 1);
        all.docThru = QDate(2004, 4, 1);
        all.amountFrom = 10;
        all.amountThru = 20;
        all.fileSizeFrom = 100;
        all.fileSizeThru = 200;
        row("all options", all, 3, 5, QStringList{"DOC6"}, 1);
        all.amountThru = 14.99;
        row("all options, amount out", all, 3, 5, QStringList{}, 0);
    }
    void search()
    {
        QFETCH(FindRecord, criteria);
        QFETCH(int, cabinet);
        QFETCH(int, folder);
        QFETCH(QStringList, documents);
        QFETCH(int, count);
        Session& session = m_fixture.open();
        RunState state;
        const FindOutcome outcome =
            FindSearch(session, state.foundSet()).run(criteria, cabinet, folder);
        QCOMPARE(sortedUnique(foundKeys(outcome)), documents);
        QCOMPARE(outcome.foundCount, count);
    }

    void foundByBothPasses()
    {
        Session& session = m_fixture.open();
        RunState state;
        const FindOutcome outcome =
            FindSearch(session, state.foundSet()).run(keywords("checking"), 0, 0);
        // Document pass first, then the folder's documents.
        QCOMPARE(foundKeys(outcome).count("DOC5"), 2);
        QCOMPARE(foundKeys(outcome).first(), QString("DOC5"));
        const FoundDocument& d = outcome.documents.first();
        QCOMPARE((QList<int>{d.cabinetId, d.drawerId, d.folderId}), (QList<int>{1, 1, 1}));
        QCOMPARE((QStringList{d.cabinetName, d.drawerName, d.folderName, d.documentName}),
                 (QStringList{"Home Papers", "Bank", "Checking", "Checking fees"}));
    }

    void lockedCabinetOnceOpened()
    {
        Session& session = m_fixture.open();
        RunState state;
        FindSearch search(session, state.foundSet());
        QCOMPARE(search.cabinetsToSearch(0), (QVector<qint32>{1, 3}));
        session.locks().recordOpen(2);
        QCOMPARE(search.cabinetsToSearch(0), (QVector<qint32>{1, 2, 3}));
        QCOMPARE(sortedUnique(foundKeys(search.run(keywords("checkup"), 0, 0))),
                 QStringList{"DOC4"});
    }

    void pageFilterOfTheSearch()
    {
        Session& session = m_fixture.open();
        RunState state;
        FindRecord r = keywords("bill");
        r.scanFrom = QDate(2004, 2, 1);
        r.scanThru = QDate(2004, 2, 20);
        r.fileSizeFrom = 500;
        r.fileSizeThru = 900;
        r.amountThru = 100; // not about pages
        FindSearch(session, state.foundSet()).run(r, 0, 0);
        PageFilter asked;
        asked.scanDate = ValueRange<QDate>{QDate(2004, 2, 1), QDate(2004, 2, 20)};
        asked.fileSize = ValueRange<qint64>{500, 900};
        QVERIFY(state.foundSet().pageFilter == asked);
        // The found document's pages are those the search asked for, the limits included.
        const QVector<PageRow> pages = session.pages().pages(6, state.foundSet().pageFilter);
        QCOMPARE(pages.size(), 1);
        QCOMPARE(pages.first().pageNumber, 2);
        QCOMPARE(session.pages().pages(6).size(), 2);
        asked.fileSize->thru = 899;
        QVERIFY(session.pages().pages(6, asked).isEmpty());
        asked.fileSize.reset();
        asked.scanDate->thru = QDate(2004, 2, 19);
        QVERIFY(session.pages().pages(6, asked).isEmpty());
        // A new search empties it first.
        FindSearch(session, state.foundSet()).run(keywords("bill"), 0, 0);
        QVERIFY(state.foundSet().pageFilter.isEmpty());
    }

    void noCabinetsFindsNothing()
    {
        test::TestHome home;
        Session session(home.home(), home.settings());
        RunState state;
        StoreSchema::openDatabase(session.db(), home.home());
        const FindOutcome outcome = FindSearch(session, state.foundSet()).run(FindRecord(), 0, 0);
        QCOMPARE(outcome.foundCount, 0);
        QVERIFY(outcome.documents.isEmpty());
    }
};

QMR_TEST(TestFindSearch)
#include "testfindsearch.moc"
