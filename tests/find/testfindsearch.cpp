#include <QTest>
#include <tuple>

#include "core/findrecord.h"
#include "core/runstate.h"
#include "find/findsearch.h"
#include "findfixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
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

// The keywords that only documents match, with one range set: "scan", "doc", "amount" or "size".
FindRecord ranged(const QString& range, const QVariant& from, const QVariant& thru,
                  FindRecord r = keywords("statement fees bill letter"))
{
    if (range == "scan")
        std::tie(r.scanFrom, r.scanThru) = std::pair(from.toDate(), thru.toDate());
    else if (range == "doc")
        std::tie(r.docFrom, r.docThru) = std::pair(from.toDate(), thru.toDate());
    else if (range == "amount")
        std::tie(r.amountFrom, r.amountThru) = std::pair(from.toDouble(), thru.toDouble());
    else
        std::tie(r.fileSizeFrom, r.fileSizeThru) = std::pair(from.toInt(), thru.toInt());
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
        columns<FindRecord, int, int>({"criteria", "cabinet", "folder"});
        QTest::addColumn<QString>("documents"); // found, without duplicates, sorted, by blanks
        QTest::addColumn<int>("count");         // the sum of the passes' record counts

        row("word in a name", keywords("statement"), 0, 0, "DOC1", 1);
        row("word in a description, any case", keywords("MARCH"), 0, 0, "DOC1", 1);
        row("any word: either", keywords("Return  Acme"), 0, 0, "DOC3 DOC6", 3);
        row("all words: one piece", keywords("tax bill", false), 0, 0, "DOC6", 1);
        row("all words: not split", keywords("bill tax", false), 0, 0, "", 0);
        row("any case beyond ascii", keywords("ÄRZTEKAMMER"), 0, 0, "DOC7", 1);
        row("quote in a keyword", keywords("O'Brien"), 0, 0, "DOC2", 1);
        row("all words: quotes and blanks", keywords("O'Brien's letter", false), 0, 0, "DOC2", 1);
        // What is typed is matched as typed: % and _ stand for any text and any character.
        row("percent in a keyword", keywords("statement%March"), 0, 0, "DOC1", 1);
        row("underscore in a keyword", keywords("Acme_tax"), 0, 0, "DOC6", 1);
        row("all words: underscore", keywords("tax_bill", false), 0, 0, "DOC6", 1);
        // Every document and every folder of the open cabinets: 6 documents and 4 folders.
        row("percent alone", keywords("%"), 0, 0, "DOC1 DOC2 DOC3 DOC5 DOC6 DOC7", 10);
        // The folder Checking matches, so all its documents come, and "Checking fees" twice.
        row("folder hit brings its documents", keywords("checking"), 0, 0, "DOC1 DOC2 DOC5", 2);
        row("folder description", keywords("everyday"), 0, 0, "DOC1 DOC2 DOC5", 1);
        row("empty folder counts", keywords("rainy"), 0, 0, "", 1);
        row("locked cabinet skipped", keywords("checkup doctor"), 0, 0, "", 0);
        row("one cabinet", keywords("bill statement"), 3, 0, "DOC6", 1);
        row("one folder", keywords("fees statement return"), 0, 1, "DOC1 DOC5", 2);

        // No keywords: every folder matches, so every document in scope comes, whatever the
        // Advanced tab says.
        FindRecord dates;
        dates.scanFrom = QDate(2004, 1, 1);
        dates.scanThru = QDate(2004, 1, 31);
        row("date range alone brings everything", dates, 0, 0, "DOC1 DOC2 DOC3 DOC5 DOC6 DOC7", 5);
        row("date range alone, one cabinet", dates, 3, 0, "DOC6", 2);

        // Advanced criteria with keywords that only documents match.
        const auto day = [](int y, int m, int d) { return QDate(y, m, d); };
        const QString scan = "scan", doc = "doc", amount = "amount", size = "size";
        const FindRecord defaults;
        row("scan date", ranged(scan, day(2026, 2, 1), day(2026, 2, 28)), 0, 0, "DOC5", 1);
        // The day itself, at midnight.
        row("scan date, last day", ranged(scan, day(2026, 2, 1), day(2026, 2, 3)), 0, 0, "DOC5", 1);
        row("scan date, one day", ranged(scan, day(2026, 2, 3), day(2026, 2, 3)), 0, 0, "DOC5", 1);
        row("scan date, the day after", ranged(scan, day(2026, 2, 4), day(2026, 2, 4)), 0, 0, "",
            0);
        // One limit at its default counts.
        row("scan date, first day, default thru",
            ranged(scan, day(2026, 2, 3), defaults.defaultThru), 0, 0, "DOC1 DOC5", 2);
        row("scan date, default from, last day",
            ranged(scan, defaults.defaultFrom, day(2004, 1, 10)), 0, 0, "DOC6", 1);
        // A range that does not count asks nothing: documents without pages come too.
        const QString everyMatch = "DOC1 DOC2 DOC5 DOC6";
        row("scan date, from past thru", ranged(scan, day(2026, 3, 1), day(2026, 2, 1)), 0, 0,
            everyMatch, 4);
        row("date on document", ranged(doc, day(2004, 3, 1), day(2004, 4, 1)), 0, 0, "DOC6", 1);
        row("date on document, one day", ranged(doc, day(2026, 2, 1), day(2026, 2, 1)), 0, 0,
            "DOC5", 1);
        row("date on document, from past thru", ranged(doc, day(2026, 2, 2), day(2026, 2, 1)), 0, 0,
            everyMatch, 4);
        // O'Brien's letter has the amount 15 but no page: not found this way.
        row("amount, pages needed", ranged(amount, 10.0, 20.0), 0, 0, "DOC5 DOC6", 2);
        row("amount, one value", ranged(amount, 12.0, 12.0), 0, 0, "DOC5", 1);
        row("amount, both limits", ranged(amount, 12.0, 15.0), 0, 0, "DOC5 DOC6", 2);
        row("amount, below zero", ranged(amount, -20.0, -0.25), 0, 0, "", 0);
        row("amount, from past thru", ranged(amount, 20.0, 10.0), 0, 0, everyMatch, 4);
        // Two pages of the bill would give it twice without DISTINCT; only one matches.
        row("file size", ranged(size, 100, 200), 0, 0, "DOC6", 1);
        row("file size, two pages, one row", ranged(size, 100, 1000), 0, 0, "DOC6", 1);
        row("file size, from 0", ranged(size, 0, 150), 0, 0, "DOC6", 1);
        row("file size, both limits", ranged(size, 3000, 4000), 0, 0, "DOC1 DOC5", 2);
        row("file size, from past thru", ranged(size, 4001, 3000), 0, 0, everyMatch, 4);
        // The pages that meet the scan date must meet the size too.
        row("scan date and size, not one page",
            ranged(size, 900, 900, ranged(scan, day(2004, 1, 1), day(2004, 1, 31))), 0, 0, "", 0);
        const FindRecord all = ranged(
            size, 100, 200,
            ranged(amount, 10.0, 20.0,
                   ranged(doc, day(2004, 3, 1), day(2004, 4, 1),
                          ranged(scan, day(2004, 1, 1), day(2004, 2, 1), keywords("tax bill")))));
        row("all options", all, 3, 5, "DOC6", 1);
        row("all options, amount out", ranged(amount, 10.0, 14.99, all), 3, 5, "", 0);
    }
    void search()
    {
        const auto [criteria, cabinet, folder, documents, count] =
            test::fetch<FindRecord, int, int, QString, int>("criteria", "cabinet", "folder",
                                                            "documents", "count");
        Session& session = m_fixture.open();
        RunState state;
        const FindOutcome outcome =
            FindSearch(session, state.foundSet()).run(criteria, cabinet, folder);
        QCOMPARE(sortedUnique(foundKeys(outcome)).join(' '), documents);
        QCOMPARE(outcome.foundCount, count);
    }

    // On one session: both passes of a search, the page filter a search leaves, and a locked
    // cabinet once opened.
    void oneSession()
    {
        Session& session = m_fixture.open();
        RunState state;
        FindSearch search(session, state.foundSet());
        const FindOutcome outcome = search.run(keywords("checking"), 0, 0);
        // Document pass first, then the folder's documents.
        QCOMPARE(foundKeys(outcome).count("DOC5"), 2);
        QCOMPARE(foundKeys(outcome).first(), QString("DOC5"));
        const FoundDocument& d = outcome.documents.first();
        QCOMPARE((QList<int>{d.cabinetId, d.drawerId, d.folderId}), (QList<int>{1, 1, 1}));
        QCOMPARE((QStringList{d.cabinetName, d.drawerName, d.folderName, d.documentName}),
                 (QStringList{"Home Papers", "Bank", "Checking", "Checking fees"}));
        // Without keywords every document in scope comes, with its places, and the bill (in
        // January's range) by both passes: seven rows.
        FindRecord january;
        january.scanFrom = QDate(2004, 1, 1);
        january.scanThru = QDate(2004, 1, 31);
        const QVector<FoundDocument> all = search.run(january, 0, 0).documents;
        QCOMPARE(all.size(), 7);
        const FoundDocument& bill = all.last();
        QCOMPARE((QList<int>{bill.cabinetId, bill.drawerId, bill.folderId, bill.documentId}),
                 (QList<int>{3, 4, 5, 6}));
        QCOMPARE(
            (QStringList{bill.cabinetName, bill.drawerName, bill.folderName, bill.documentName}),
            (QStringList{"Office", "Clients", "Acme", "Acme tax bill"}));

        FindRecord r =
            ranged("size", 500, 900,
                   ranged("scan", QDate(2004, 2, 1), QDate(2004, 2, 20), keywords("bill")));
        r.amountThru = 100; // not about pages
        search.run(r, 0, 0);
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
        search.run(keywords("bill"), 0, 0);
        QVERIFY(state.foundSet().pageFilter.isEmpty());

        QCOMPARE(search.cabinetsToSearch(0), (QVector<qint32>{1, 3}));
        session.locks().recordOpen(2);
        QCOMPARE(search.cabinetsToSearch(0), (QVector<qint32>{1, 2, 3}));
        QCOMPARE(sortedUnique(foundKeys(search.run(keywords("checkup"), 0, 0))),
                 QStringList{"DOC4"});
    }

    void noCabinetsFindsNothing()
    {
        test::FindFixture bare; // never built: its store is made empty when opened
        RunState state;
        const FindOutcome outcome =
            FindSearch(bare.open(), state.foundSet()).run(FindRecord(), 0, 0);
        QCOMPARE(outcome.foundCount, 0);
        QVERIFY(outcome.documents.isEmpty());
    }
};

QMR_TEST(TestFindSearch)
#include "testfindsearch.moc"
