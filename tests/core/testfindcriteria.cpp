#include <QTest>

#include "core/findcriteria.h"
#include "core/findrecord.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::columns;
using test::row;

class TestFindCriteria : public QObject
{
    Q_OBJECT
private slots:
    // Which ranges of the dialog's record count. A range is set on a fresh record; the others
    // keep their defaults and must not count.
    void ranges_data()
    {
        columns<QString, QString, QString, bool>({"range", "from", "thru", "counts"});
        row("the defaults", QString(), QString(), QString(), false);
        row("amount", "amount", "5", "10.5", true);
        row("amount of one value", "amount", "7", "7", true);
        row("amount from 0", "amount", "0", "10", true);
        row("amount 0 to 0", "amount", "0", "0", false);
        row("amount the wrong way", "amount", "10", "5", false);
        row("size", "size", "100", "2000", true);
        row("size 0 to 0", "size", "0", "0", false);
        row("size the wrong way", "size", "2000", "100", false);
        row("document date", "doc", "2021-03-01", "2021-03-31", true);
        row("document date of one day", "doc", "2021-03-15", "2021-03-15", true);
        row("document date the wrong way", "doc", "2021-03-31", "2021-03-01", false);
        row("document date not a date", "doc", "2021-02-30", "2021-03-01", false);
        row("document date from the default on", "doc", "1901-01-01", "2021-03-01", true);
        row("scan date of one day", "scan", "2021-03-15", "2021-03-15", true);
        row("scan date the default pair", "scan", "1901-01-01", "2099-12-31", false);
        row("scan date the wrong way", "scan", "2021-03-31", "2021-03-01", false);
    }
    void ranges()
    {
        auto [range, from, thru, counts] =
            test::fetch<QString, QString, QString, bool>("range", "from", "thru", "counts");
        FindRecord record;
        record.initFindDefaults();
        QCOMPARE(record.scanFrom, record.defaultFrom);
        QCOMPARE(record.docThru, record.defaultThru);
        const QDate dateFrom = QDate::fromString(from, Qt::ISODate);
        const QDate dateThru = QDate::fromString(thru, Qt::ISODate);
        if (range == "amount") {
            record.amountFrom = from.toDouble();
            record.amountThru = thru.toDouble();
        } else if (range == "size") {
            record.fileSizeFrom = from.toInt();
            record.fileSizeThru = thru.toInt();
        } else if (range == "doc") {
            record.docFrom = dateFrom;
            record.docThru = dateThru;
        } else if (range == "scan") {
            record.scanFrom = dateFrom;
            record.scanThru = dateThru;
        }
        const FindCriteria c = FindCriteria::fromRecord(record, 12);
        QCOMPARE(c.folderId, 12);
        QCOMPARE(c.needsPages(), counts);
        QCOMPARE(bool(c.amount), counts && range == "amount");
        QCOMPARE(bool(c.pages.fileSize), counts && range == "size");
        QCOMPARE(bool(c.documentDate), counts && range == "doc");
        QCOMPARE(bool(c.pages.scanDate), counts && range == "scan");
        if (c.amount)
            QCOMPARE(*c.amount, (ValueRange<double>{from.toDouble(), thru.toDouble()}));
        if (c.pages.fileSize)
            QCOMPARE(*c.pages.fileSize, (ValueRange<qint64>{from.toLongLong(), thru.toLongLong()}));
        if (c.documentDate)
            QCOMPARE(*c.documentDate, (ValueRange<QDate>{dateFrom, dateThru}));
        if (c.pages.scanDate)
            QCOMPARE(*c.pages.scanDate, (ValueRange<QDate>{dateFrom, dateThru}));
    }

    // How the keywords are cut into the pieces a name is searched for.
    void keywordPieces_data()
    {
        columns<QString, int, QStringList>({"keywords", "matchAny", "pieces"});
        row("words", "gas  bill ", 1, QStringList{"gas", "bill"});
        row("blanks only", "   ", 1, QStringList{});
        row("all words as one piece", "gas  bill", 0, QStringList{"gas  bill"});
        row("nothing as one piece", QString(), 0, QStringList{});
    }
    void keywordPieces()
    {
        auto [keywords, matchAny, pieces] =
            test::fetch<QString, int, QStringList>("keywords", "matchAny", "pieces");
        FindRecord record;
        record.initFindDefaults();
        record.keywords = keywords;
        record.matchAny = matchAny;
        const FindCriteria c = FindCriteria::fromRecord(record, 0);
        QCOMPARE(c.match, matchAny ? KeywordMatch::AnyWord : KeywordMatch::AllWords);
        QCOMPARE(c.keywordPieces(), pieces);
        QVERIFY(!c.needsPages());
    }
};

QMR_TEST(TestFindCriteria)
#include "testfindcriteria.moc"
