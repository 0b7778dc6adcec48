#include <QTest>

#include "core/findrecord.h"
#include "find/findquery.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Every option of the dialog in use: cabinet 3, folder 17, "tax bill" by any word, and a
// range on each of the four Advanced rows.
FindRecord allOptions()
{
    FindRecord r;
    r.keywords = "tax bill";
    r.scanFrom = QDate(2004, 1, 1);
    r.scanThru = QDate(2004, 2, 1);
    r.docFrom = QDate(2004, 3, 1);
    r.docThru = QDate(2004, 4, 1);
    r.amountFrom = 10;
    r.amountThru = 20;
    r.fileSizeFrom = 100;
    r.fileSizeThru = 200;
    return r;
}

} // namespace

class TestFindQuery : public QObject
{
    Q_OBJECT
private slots:
    void allOptionsStatement()
    {
        const QString expected =
            "SELECT DISTINCT Document.DocumentId, Document.* FROM ((Cabinet INNER JOIN Drawer ON "
            "Cabinet.CabinetId = Drawer.CabinetId) INNER JOIN (Document INNER JOIN Folder ON "
            "Document.FolderId = Folder.FolderId) ON Drawer.DrawerId = Folder.DrawerId) INNER "
            "JOIN Page ON Document.DocumentId = Page.DocumentId  WHERE Cabinet.CabinetId = 3 "
            "AND  ( Document.Name LIKE '%tax%' OR Document.Description LIKE '%tax%' OR  "
            "Document.Name LIKE '%bill%' OR Document.Description LIKE '%bill%') AND  "
            "(Folder.FolderId = 17) AND  (Page.ScanDate BETWEEN #1/1/2004# AND #2/1/2004#) AND  "
            "(Document.DateOnDocument BETWEEN #3/1/2004# AND #4/1/2004#) AND  (Document.Amount "
            ">= 10 AND Document.Amount <= 20) AND  (Page.FileSize BETWEEN 100 AND 200) AND  "
            "(Page.DocumentId = Document.DocumentId) ";
        QCOMPARE(FindQuery::documentStatement(allOptions(), 3, 17), expected);
        // The store sees the same text with its own date literals and nothing else changed.
        QString forStore = expected;
        forStore.replace("#1/1/2004#", "'2004-01-01 00:00:00'")
            .replace("#2/1/2004#", "'2004-02-01 00:00:00'")
            .replace("#3/1/2004#", "'2004-03-01 00:00:00'")
            .replace("#4/1/2004#", "'2004-04-01 00:00:00'");
        QCOMPARE(FindQuery::forStore(expected), forStore);
    }

    void plainStatements()
    {
        FindRecord r;
        r.keywords = "tax";
        QCOMPARE(FindQuery::documentStatement(r, 5, 0),
                 QString("SELECT Document.* FROM (Cabinet INNER JOIN Drawer ON Cabinet.CabinetId "
                         "= Drawer.CabinetId) INNER JOIN (Document INNER JOIN Folder ON "
                         "Document.FolderId = Folder.FolderId) ON Drawer.DrawerId = "
                         "Folder.DrawerId  WHERE Cabinet.CabinetId = 5 AND  ( Document.Name LIKE "
                         "'%tax%' OR Document.Description LIKE '%tax%')"));
        QCOMPARE(FindQuery::folderStatement(r, 5, 9),
                 QString("SELECT Folder.* FROM (Cabinet INNER JOIN Drawer ON Cabinet.CabinetId = "
                         "Drawer.CabinetId) INNER JOIN Folder ON Drawer.DrawerId = "
                         "Folder.DrawerId  WHERE Cabinet.CabinetId = 5 AND  ( Folder.Name LIKE "
                         "'%tax%' OR Folder.Description LIKE '%tax%') AND  (Folder.FolderId = 9)"));
        // The documents of those folders, in one statement.
        QCOMPARE(FindQuery::folderDocumentsStatement(r, 5, 9),
                 QString("SELECT Document.DocumentId, Document.FolderId, Document.Name FROM "
                         "((Cabinet INNER JOIN Drawer ON Cabinet.CabinetId = Drawer.CabinetId) "
                         "INNER JOIN Folder ON Drawer.DrawerId = Folder.DrawerId) INNER JOIN "
                         "Document ON Folder.FolderId = Document.FolderId  WHERE "
                         "Cabinet.CabinetId = 5 AND  ( Folder.Name LIKE '%tax%' OR "
                         "Folder.Description LIKE '%tax%') AND  (Folder.FolderId = 9)"));
        // No keywords and no folder: the cabinet alone.
        r.keywords.clear();
        QVERIFY(FindQuery::documentStatement(r, 5, 0).endsWith("  WHERE Cabinet.CabinetId = 5"));
        QVERIFY(FindQuery::folderStatement(r, 5, 0).endsWith("  WHERE Cabinet.CabinetId = 5"));
        // The folder pass never carries a date, amount or size, whatever is asked.
        FindRecord all = allOptions();
        QCOMPARE(FindQuery::folderStatement(all, 3, 17),
                 QString("SELECT Folder.* FROM (Cabinet INNER JOIN Drawer ON Cabinet.CabinetId = "
                         "Drawer.CabinetId) INNER JOIN Folder ON Drawer.DrawerId = "
                         "Folder.DrawerId  WHERE Cabinet.CabinetId = 3 AND  ( Folder.Name LIKE "
                         "'%tax%' OR Folder.Description LIKE '%tax%' OR  Folder.Name LIKE "
                         "'%bill%' OR Folder.Description LIKE '%bill%') AND  (Folder.FolderId = "
                         "17)"));
    }

    void keywordClause_data()
    {
        QTest::addColumn<QString>("keywords");
        QTest::addColumn<bool>("matchAny");
        QTest::addColumn<QString>("clause");
        QTest::newRow("any word, one") << "tax" << true
                                       << "( Document.Name LIKE '%tax%' OR Document.Description "
                                          "LIKE '%tax%')";
        const QString twoWords = "( Document.Name LIKE '%tax%' OR Document.Description LIKE "
                                 "'%tax%' OR  Document.Name LIKE '%bill%' OR "
                                 "Document.Description LIKE '%bill%')";
        QTest::newRow("any word, two") << "tax bill" << true << twoWords;
        QTest::newRow("any word, runs of blanks") << "tax    bill" << true << twoWords;
        QTest::newRow("any word, blanks around") << "  tax  bill   " << true << twoWords;
        QTest::newRow("all words, one piece with both blanks")
            << "tax  bill" << false
            << "(Document.Description LIKE '%tax  bill%' OR Document.Name LIKE '%tax  bill%')";
        QTest::newRow("any word, quote doubled")
            << "O'Brien" << true
            << "( Document.Name LIKE '%O''Brien%' OR Document.Description LIKE '%O''Brien%')";
        QTest::newRow("all words, quote doubled")
            << "O'Brien's bill" << false
            << "(Document.Description LIKE '%O''Brien''s bill%' OR Document.Name LIKE "
               "'%O''Brien''s bill%')";
        QTest::newRow("wildcards stay wildcards")
            << "10%_off" << true
            << "( Document.Name LIKE '%10%_off%' OR Document.Description LIKE '%10%_off%')";
        QTest::newRow("any word, empty") << "" << true << "";
        QTest::newRow("any word, blanks only") << "   " << true << "";
        QTest::newRow("all words, empty") << "" << false << "";
    }
    void keywordClause()
    {
        QFETCH(QString, keywords);
        QFETCH(bool, matchAny);
        QFETCH(QString, clause);
        FindRecord r;
        r.keywords = keywords;
        r.matchAny = matchAny ? 1 : 0;
        r.matchAll = matchAny ? 0 : 1;
        QCOMPARE(FindQuery::buildKeywordClause(r, "Document."), clause);
        QCOMPARE(r.keywords, keywords); // what the user typed is not touched
    }

    void rangeClauses_data()
    {
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("thru");
        QTest::addColumn<double>("amountFrom");
        QTest::addColumn<double>("amountThru");
        QTest::addColumn<int>("sizeFrom");
        QTest::addColumn<int>("sizeThru");
        QTest::addColumn<QString>("dates");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("size");
        const QDate dflFrom(1901, 1, 1), dflThru(2099, 12, 31);
        QTest::newRow("defaults: nothing") << dflFrom << dflThru << 0.0 << 0.0 << 0 << 0 << ""
                                           << ""
                                           << "";
        QTest::newRow("from past thru: nothing")
            << QDate(2004, 5, 1) << QDate(2004, 4, 1) << 20.0 << 10.0 << 200 << 100 << ""
            << ""
            << "";
        QTest::newRow("default from, other thru: written")
            << dflFrom << QDate(2004, 4, 1) << 0.0 << 5.5 << 0 << 100 << "#1/1/1901# AND #4/1/2004#"
            << "(Document.Amount >= 0 AND Document.Amount <= 5.5)"
            << "(Page.FileSize BETWEEN 0 AND 100)";
        QTest::newRow("other from, default thru: written")
            << QDate(2004, 4, 1) << dflThru << 1234.5 << 1234.5 << 7 << 7
            << "#4/1/2004# AND #12/31/2099#"
            << "(Document.Amount >= 1234.5 AND Document.Amount <= 1234.5)"
            << "(Page.FileSize BETWEEN 7 AND 7)";
        QTest::newRow("one day, negative amounts")
            << QDate(2026, 3, 14) << QDate(2026, 3, 14) << -20.0 << -0.25 << 0 << 0
            << "#3/14/2026# AND #3/14/2026#"
            << "(Document.Amount >= -20 AND Document.Amount <= -0.25)"
            << "";
    }
    void rangeClauses()
    {
        QFETCH(QDate, from);
        QFETCH(QDate, thru);
        QFETCH(double, amountFrom);
        QFETCH(double, amountThru);
        QFETCH(int, sizeFrom);
        QFETCH(int, sizeThru);
        QFETCH(QString, dates);
        QFETCH(QString, amount);
        QFETCH(QString, size);
        FindRecord r;
        r.scanFrom = r.docFrom = from;
        r.scanThru = r.docThru = thru;
        r.amountFrom = amountFrom;
        r.amountThru = amountThru;
        r.fileSizeFrom = sizeFrom;
        r.fileSizeThru = sizeThru;
        QCOMPARE(FindQuery::buildScanDateClause(r),
                 dates.isEmpty() ? QString() : "(Page.ScanDate BETWEEN " + dates + ")");
        QCOMPARE(FindQuery::buildDocDateClause(r),
                 dates.isEmpty() ? QString() : "(Document.DateOnDocument BETWEEN " + dates + ")");
        QCOMPARE(FindQuery::buildAmountClause(r), amount);
        QCOMPARE(FindQuery::buildFileSizeClause(r), size);
        const bool joins = !dates.isEmpty() || !amount.isEmpty() || !size.isEmpty();
        QCOMPARE(FindQuery::documentPassJoinsPages(r), joins);
        QCOMPARE(FindQuery::documentStatement(r, 1, 0).startsWith("SELECT DISTINCT"), joins);
    }

    void eachCriterionAloneJoinsPages_data()
    {
        QTest::addColumn<int>("which");
        QTest::newRow("scan date") << 0;
        QTest::newRow("date on document") << 1;
        QTest::newRow("amount") << 2;
        QTest::newRow("file size") << 3;
    }
    void eachCriterionAloneJoinsPages()
    {
        QFETCH(int, which);
        FindRecord r;
        if (which == 0)
            r.scanFrom = QDate(2020, 1, 1);
        else if (which == 1)
            r.docThru = QDate(2020, 1, 1);
        else if (which == 2)
            r.amountThru = 1;
        else
            r.fileSizeThru = 1;
        const QString sql = FindQuery::documentStatement(r, 2, 0);
        QVERIFY(sql.contains("INNER JOIN Page ON Document.DocumentId = Page.DocumentId"));
        QVERIFY(sql.endsWith(" AND  (Page.DocumentId = Document.DocumentId) "));
    }

    void folderClause()
    {
        QCOMPARE(FindQuery::buildFolderClause(0), QString());
        QCOMPARE(FindQuery::buildFolderClause(17), QString("(Folder.FolderId = 17)"));
    }

    void forStore_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("store");
        QTest::newRow("date") << "WHERE D BETWEEN #3/14/2026# AND #12/31/2099#"
                              << "WHERE D BETWEEN '2026-03-14 00:00:00' AND '2099-12-31 "
                                 "00:00:00'";
        QTest::newRow("date in a keyword stays")
            << "WHERE N LIKE '%#1/2/2003#%' AND D = #1/2/2003#"
            << "WHERE N LIKE '%#1/2/2003#%' AND D = '2003-01-02 00:00:00'";
        QTest::newRow("doubled quote keeps the text open")
            << "WHERE N LIKE '%O''Brien #1/2/2003#%' OR D = #1/2/2003#"
            << "WHERE N LIKE '%O''Brien #1/2/2003#%' OR D = '2003-01-02 00:00:00'";
        QTest::newRow("no such day") << "D = #2/30/2004#"
                                     << "D = #2/30/2004#";
        QTest::newRow("top") << "SELECT TOP 5 * FROM Page ORDER BY PageId"
                             << "SELECT * FROM Page ORDER BY PageId LIMIT 5";
        QTest::newRow("distinct top") << "select distinct top 10 Name FROM Cabinet"
                                      << "select distinct Name FROM Cabinet LIMIT 10";
        QTest::newRow("top in a text stays") << "SELECT Name FROM Cabinet WHERE Name = 'TOP 5 '"
                                             << "SELECT Name FROM Cabinet WHERE Name = 'TOP 5 '";
    }
    void forStore()
    {
        QFETCH(QString, text);
        QFETCH(QString, store);
        QCOMPARE(FindQuery::forStore(text), store);
    }

    void numbersAndDates()
    {
        QCOMPARE(FindQuery::numberText(10), QString("10"));
        QCOMPARE(FindQuery::numberText(0.1), QString("0.1"));
        QCOMPARE(FindQuery::numberText(1234567.89), QString("1234567.89"));
        QCOMPARE(FindQuery::dateLiteral(QDate(2004, 1, 1)), QString("#1/1/2004#"));
        QCOMPARE(FindQuery::dateLiteral(QDate(2099, 12, 31)), QString("#12/31/2099#"));
    }
};

QMR_TEST(TestFindQuery)
#include "testfindquery.moc"
