#include <QTest>

#include "filing/pageentry.h"
#include "filing/pagepaging.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// The block arithmetic of the page pane, driven as its buttons drive it.
class TestPagePaging : public QObject
{
    Q_OBJECT
private slots:
    void steps_data()
    {
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("presses"); // the buttons pressed, in order
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("back");    // First and Prev enabled
        QTest::addColumn<bool>("forward"); // Next and Last enabled

        QTest::newRow("first block")
            << 25 << 10 << "" << 1 << 10 << " Showing 10 images (page 1 of 3)" << false << true;
        QTest::newRow("next") << 25 << 10 << "next" << 11 << 20
                              << " Showing 10 images (page 2 of 3)" << true << true;
        QTest::newRow("next to the end") << 25 << 10 << "next,next" << 21 << 25
                                         << " Showing 10 images (page 3 of 3)" << true << false;
        QTest::newRow("next at the end stays")
            << 25 << 10 << "next,next,next" << 21 << 25 << " Showing 10 images (page 3 of 3)"
            << true << false;
        // 2.5 blocks round to 2, and one more for the five left over.
        QTest::newRow("last") << 25 << 10 << "last" << 16 << 25
                              << " Showing 10 images (page 2 of 3)" << true << false;
        // The step back is one short of a block: the old first entry stays in view.
        QTest::newRow("prev from 11") << 25 << 10 << "next,prev" << 2 << 11
                                      << " Showing 10 images (page 1 of 3)" << true << true;
        QTest::newRow("prev stops at the base")
            << 25 << 10 << "next,prev,prev" << 1 << 10 << " Showing 10 images (page 1 of 3)"
            << false << true;
        QTest::newRow("prev at the base stays")
            << 25 << 10 << "prev" << 1 << 10 << " Showing 10 images (page 1 of 3)" << false << true;
        QTest::newRow("first") << 25 << 10 << "last,first" << 1 << 10
                               << " Showing 10 images (page 1 of 3)" << false << true;
        QTest::newRow("last of fewer than a block")
            << 4 << 10 << "last" << 1 << 4 << " Showing 10 images (page 1 of 1)" << false << false;
        // A block of one still steps back.
        QTest::newRow("prev in blocks of one") << 5 << 1 << "next,next,prev" << 2 << 2
                                               << " Showing 1 images (page 2 of 5)" << true << true;
        // Show More and Show Less keep the first entry and move the end.
        QTest::newRow("show more") << 25 << 10 << "next,more" << 11 << 21
                                   << " Showing 11 images (page 1 of 3)" << true << true;
        QTest::newRow("show less")
            << 25 << 10 << "less" << 1 << 9 << " Showing 9 images (page 1 of 3)" << false << true;
        QTest::newRow("less stops at one") << 3 << 1 << "less,less" << 1 << 1
                                           << " Showing 1 images (page 1 of 3)" << false << true;
        QTest::newRow("more stops at 64") << 100 << 64 << "more" << 1 << 64
                                          << " Showing 64 images (page 1 of 2)" << false << true;
        // The count shown is the block size, not the entries in the block.
        QTest::newRow("short last block")
            << 3 << 16 << "" << 1 << 3 << " Showing 16 images (page 1 of 1)" << false << false;
        QTest::newRow("exact blocks") << 20 << 10 << "last" << 11 << 20
                                      << " Showing 10 images (page 2 of 2)" << true << false;
        QTest::newRow("no pages") << 0 << 16 << "" << 1 << 0 << "" << false << false;
        QTest::newRow("no pages, last") << 0 << 16 << "last" << 1 << 0 << "" << false << false;
    }
    void steps()
    {
        QFETCH(int, pages);
        QFETCH(int, count);
        QFETCH(QString, presses);
        PagePaging paging(count);
        paging.load(pages);
        for (const QString& press : presses.split(',', Qt::SkipEmptyParts)) {
            if (press == "next")
                paging.next();
            else if (press == "prev")
                paging.prev();
            else if (press == "first")
                paging.first();
            else if (press == "last")
                paging.last();
            else if (press == "more")
                paging.showMore();
            else if (press == "less")
                paging.showLess();
            else
                QFAIL(qPrintable("unknown press " + press));
        }
        QTEST(paging.viewFirst(), "first");
        QTEST(paging.viewLast(), "last");
        QTEST(paging.statusText(), "status");
        QTEST(paging.canGoBack(), "back");
        QTEST(paging.canGoForward(), "forward");
    }

    void blocks_data()
    {
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("blocks");
        QTest::newRow("1.5 rounds to 2") << 15 << 10 << 2;
        QTest::newRow("2.5 rounds to 2, then 3") << 25 << 10 << 3;
        QTest::newRow("3.5 rounds to 4") << 35 << 10 << 4;
        QTest::newRow("2.4 rounds to 2, then 3") << 24 << 10 << 3;
        QTest::newRow("exact") << 30 << 10 << 3;
        QTest::newRow("one page") << 1 << 64 << 1;
        QTest::newRow("500 by 64") << 500 << 64 << 8;
        QTest::newRow("none") << 0 << 10 << 0;
    }
    void blocks()
    {
        QFETCH(int, pages);
        QFETCH(int, count);
        PagePaging paging(count);
        paging.load(pages);
        QTEST(paging.blocks(), "blocks");
    }

    void displayCountIsClamped_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("used");
        QTest::newRow("500") << 500 << 64;
        QTest::newRow("65") << 65 << 64;
        QTest::newRow("64") << 64 << 64;
        QTest::newRow("1") << 1 << 1;
        QTest::newRow("0") << 0 << 1;
        QTest::newRow("-3") << -3 << 1;
    }
    void displayCountIsClamped()
    {
        QFETCH(int, stored);
        PagePaging paging(stored);
        QTEST(paging.displayCount(), "used");
        paging.setDisplayCount(stored);
        QTEST(paging.displayCount(), "used");
    }

    void showEntryFindsItsBlock()
    {
        PagePaging paging(10);
        paging.load(25);
        paging.showEntry(23);
        QCOMPARE(paging.viewFirst(), 21);
        paging.showEntry(10);
        QCOMPARE(paging.viewFirst(), 1);
        paging.showEntry(26); // no such entry: nothing moves
        QCOMPARE(paging.viewFirst(), 1);
    }

    void entryTexts_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("shortcut");
        QTest::addColumn<QString>("thumbnailText");
        QTest::addColumn<QString>("listText");
        QTest::addColumn<QString>("sortKey");
        QTest::newRow("page") << 3 << "" << false << "Page 3"
                              << "3"
                              << "03";
        QTest::newRow("three digits") << 100 << "" << false << "Page 100"
                                      << "100"
                                      << "100";
        QTest::newRow("number 0, stored file") << 0 << "/scans/june.jpg" << false << "june.jpg"
                                               << "0"
                                               << "00";
        // The computed path stands in for an empty Filename, so its name shows.
        QTest::newRow("number 0, computed") << 0 << "" << false << "7.jpg"
                                            << "0"
                                            << "00";
        QTest::newRow("shortcut") << 4 << "/home/me/letter.pdf" << true << "letter.pdf"
                                  << ""
                                  << "04";
        QTest::newRow("negative") << -1 << "" << false << "Page -1"
                                  << "-1"
                                  << "-01";
    }
    void entryTexts()
    {
        QFETCH(int, number);
        QFETCH(QString, stored);
        QFETCH(bool, shortcut);
        PageRow row;
        row.id = 7;
        row.pageNumber = number;
        row.filename = stored;
        row.shortcut = shortcut;
        const PagePaths paths(AppHome("/srv/qmr"));
        const PageEntry entry = PageEntry::fromRow(row, paths);
        QTEST(entry.thumbnailText(), "thumbnailText");
        QTEST(entry.listText(), "listText");
        QTEST(entry.sortKey(), "sortKey");
        QCOMPARE(entry.filename,
                 stored.isEmpty() ? QString("/srv/qmr/Pages/0000000/7.jpg") : stored);
        // A shortcut has no thumbnail file; its tile is the icon of its type.
        QCOMPARE(entry.thumbPath.isEmpty(), shortcut);
    }
};

QMR_TEST(TestPagePaging)
#include "testpagepaging.moc"
