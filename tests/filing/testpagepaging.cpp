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
        // Tagged by the presses, and the pages and block size where they are not 25 and 10.
        const auto row = [](const char* presses, int first, int last, const char* status, bool back,
                            bool forward, int pages = 25, int count = 10) {
            QString tag = *presses ? presses : "start";
            if (pages != 25 || count != 10)
                tag += QString(" of %1 by %2").arg(pages).arg(count);
            QTest::newRow(qPrintable(tag))
                << pages << count << presses << first << last << status << back << forward;
        };
        row("", 1, 10, " Showing 10 images (page 1 of 3)", false, true);
        row("next", 11, 20, " Showing 10 images (page 2 of 3)", true, true);
        row("next,next", 21, 25, " Showing 10 images (page 3 of 3)", true, false);
        row("next,next,next", 21, 25, " Showing 10 images (page 3 of 3)", true, false);
        // 2.5 blocks round to 2, and one more for the five left over.
        row("last", 16, 25, " Showing 10 images (page 2 of 3)", true, false);
        // The step back is one short of a block: the old first entry stays in view.
        row("next,prev", 2, 11, " Showing 10 images (page 1 of 3)", true, true);
        row("next,prev,prev", 1, 10, " Showing 10 images (page 1 of 3)", false, true);
        row("prev", 1, 10, " Showing 10 images (page 1 of 3)", false, true);
        row("last,first", 1, 10, " Showing 10 images (page 1 of 3)", false, true);
        row("last", 1, 4, " Showing 10 images (page 1 of 1)", false, false, 4);
        // A block of one still steps back.
        row("next,next,prev", 2, 2, " Showing 1 images (page 2 of 5)", true, true, 5, 1);
        // Show More and Show Less keep the first entry and move the end, between 1 and 64.
        row("next,more", 11, 21, " Showing 11 images (page 1 of 3)", true, true);
        row("less", 1, 9, " Showing 9 images (page 1 of 3)", false, true);
        row("less,less", 1, 1, " Showing 1 images (page 1 of 3)", false, true, 3, 1);
        row("more", 1, 64, " Showing 64 images (page 1 of 2)", false, true, 100, 64);
        // The count shown is the block size, not the entries in the block.
        row("", 1, 3, " Showing 16 images (page 1 of 1)", false, false, 3, 16);
        row("last", 11, 20, " Showing 10 images (page 2 of 2)", true, false, 20);
        row("", 1, 0, "", false, false, 0, 16);
        row("last", 1, 0, "", false, false, 0, 16);
    }
    void steps()
    {
        QFETCH(int, pages);
        QFETCH(int, count);
        QFETCH(QString, presses);
        const QHash<QString, bool (PagePaging::*)()> buttons{
            {"next", &PagePaging::next},     {"prev", &PagePaging::prev},
            {"first", &PagePaging::first},   {"last", &PagePaging::last},
            {"more", &PagePaging::showMore}, {"less", &PagePaging::showLess}};
        PagePaging paging(count);
        paging.load(pages);
        for (const QString& press : presses.split(',', Qt::SkipEmptyParts)) {
            QVERIFY2(buttons.contains(press), qPrintable(press));
            (paging.*buttons.value(press))();
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
        for (const auto& [stored, used] :
             {std::pair{500, 64}, {65, 64}, {64, 64}, {1, 1}, {0, 1}, {-3, 1}})
            QTest::newRow(qPrintable(QString::number(stored))) << stored << used;
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
        QTest::addColumn<QStringList>("texts"); // thumbnail text, list text, sort key
        QTest::newRow("page") << 3 << "" << false << QStringList{"Page 3", "3", "03"};
        QTest::newRow("three digits")
            << 100 << "" << false << QStringList{"Page 100", "100", "100"};
        QTest::newRow("number 0, stored file")
            << 0 << "/scans/june.jpg" << false << QStringList{"june.jpg", "0", "00"};
        // The computed path stands in for an empty Filename, so its name shows.
        QTest::newRow("number 0, computed") << 0 << "" << false << QStringList{"7.jpg", "0", "00"};
        QTest::newRow("shortcut") << 4 << "/home/me/letter.pdf" << true
                                  << QStringList{"letter.pdf", "", "04"};
        QTest::newRow("negative") << -1 << "" << false << QStringList{"Page -1", "-1", "-01"};
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
        const PageEntry entry = PageEntry::fromRow(row, PagePaths(AppHome("/srv/qmr")));
        QTEST((QStringList{entry.thumbnailText(), entry.listText(), entry.sortKey()}), "texts");
        QCOMPARE(entry.filename,
                 stored.isEmpty() ? QString("/srv/qmr/Pages/0000000/7.jpg") : stored);
        // A shortcut has no thumbnail file; its tile is the icon of its type.
        QCOMPARE(entry.thumbPath.isEmpty(), shortcut);
    }
};

QMR_TEST(TestPagePaging)
#include "testpagepaging.moc"
