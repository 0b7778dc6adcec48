#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "filing/pageentry.h"
#include "filing/pagepaging.h"
#include "filing/thumbnailcache.h"
#include "filing/thumbnailmaker.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "tests/support/bigpictures.h"
#include "tests/support/datarow.h"
#include "tests/support/testpdfs.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

bool isWhite(QRgb pixel)
{
    return qGray(pixel) > 215;
}

// Left half dark, right half light: a reduction that loses its way shows.
QImage halfDark(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width() / 2; ++x)
            image.setPixel(x, y, qRgb(20, 40, 90));
    return image;
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// Moves the file's time on by `seconds`, as a later save would.
bool postdate(const QString& path, int seconds)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QFileInfo(path).lastModified().addSecs(seconds),
                            QFileDevice::FileModificationTime);
}

// A cache on a temporary home, with what it delivers recorded.
struct CacheBench
{
    QTemporaryDir dir;
    ThumbnailCache cache;
    QSignalSpy ready{&cache, &ThumbnailCache::ready};
    QSignalSpy done{&cache, &ThumbnailCache::blockDone};

    explicit CacheBench(ThumbnailPace pace = {}) : cache(dir.path(), pace) {}

    // A page file of `size`, black, and the request for its thumbnail below Thumbs/.
    ThumbnailCache::Request page(qint32 id, const QSize& size)
    {
        const QString path = dir.filePath(QString("Pages/%1.jpg").arg(id));
        QDir().mkpath(QFileInfo(path).path());
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::black);
        image.save(path, "JPG");
        return {id, path, dir.filePath(QString("Thumbs/%1.jpg").arg(id))};
    }
    // Waits until the cache has delivered everything it was asked for.
    bool waitForBlock()
    {
        return QTest::qWaitFor([&] { return cache.outstanding() == 0; }, 10000);
    }
    QHash<qint32, QImage> tiles() const
    {
        QHash<qint32, QImage> out;
        for (const QList<QVariant>& signal : ready)
            out.insert(signal.at(0).toInt(), signal.at(1).value<QImage>());
        return out;
    }
};

} // namespace

// The page pane's parts: thumbnails made as tiles, their cache, the blocks of pages and the
// texts of their entries.
class TestPageTiles : public QObject
{
    Q_OBJECT
private slots:
    // A block's missing thumbnails are made off the GUI thread; a page that cannot be made
    // (gone, with a thumbnail that cannot be read) leaves the rest of the block.
    void missingThumbnailsAreMadeOnFirstRequest()
    {
        CacheBench b;
        const auto landscape = b.page(1, QSize(400, 200));
        const auto portrait = b.page(3, QSize(200, 400));
        const ThumbnailCache::Request gone{2, b.dir.filePath("Pages/2.jpg"),
                                           b.dir.filePath("Thumbs/2.jpg")};
        QDir().mkpath(b.dir.filePath("Thumbs"));
        QVERIFY(writeBytes(gone.thumbPath, "half a file"));
        // Nothing is at hand: all come later.
        QVERIFY(b.cache.request({landscape, gone, portrait}).isEmpty());
        QCOMPARE(b.cache.outstanding(), 3);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 3);
        QCOMPARE(b.done.size(), 1);
        const QHash<qint32, QImage> tiles = b.tiles();
        QCOMPARE(tiles.value(1).size(), QSize(100, 100));
        QCOMPARE(tiles.value(3).size(), QSize(100, 100));
        // The page at the top left of a white tile: a wide page leaves the lower half white,
        // a tall one the right half.
        QVERIFY(!isWhite(tiles[1].pixel(2, 2)));
        QVERIFY(isWhite(tiles[1].pixel(50, 90)));
        QVERIFY(!isWhite(tiles[3].pixel(2, 90)));
        QVERIFY(isWhite(tiles[3].pixel(90, 50)));
        // The thumbnails are on disk from now on, as 100 by 100 JPEG tiles.
        for (const auto& r : {landscape, portrait})
            QCOMPARE(QImage(r.thumbPath).size(), QSize(100, 100));
        QVERIFY(tiles.contains(2) && tiles.value(2).isNull());
        QVERIFY(!QFile::exists(gone.thumbPath));
    }

    // A thumbnail on disk is served at once, and read again once it changes.
    void thumbnailsOnDiskComeAtOnce()
    {
        CacheBench b;
        const auto page = b.page(1, QSize(300, 300));
        QDir().mkpath(b.dir.filePath("Thumbs"));
        // A thumbnail the viewer saved: the page reduced alone, no tile.
        QImage saved(50, 100, QImage::Format_RGB32);
        saved.fill(Qt::red);
        QVERIFY(saved.save(page.thumbPath, "JPG"));
        const QDateTime written = QFileInfo(page.thumbPath).lastModified();
        const QHash<qint32, QImage> atHand = b.cache.request({page});
        QCOMPARE(atHand.size(), 1);
        QCOMPARE(b.cache.outstanding(), 0);
        QCOMPARE(b.ready.size(), 0);
        const QImage tile = atHand.value(1);
        QCOMPARE(tile.size(), QSize(100, 100));
        QVERIFY(qRed(tile.pixel(10, 50)) > 200 && qGreen(tile.pixel(10, 50)) < 60);
        QVERIFY(isWhite(tile.pixel(80, 50)));
        QCOMPARE(QFileInfo(page.thumbPath).lastModified(), written); // served, not made again
        // The viewer saves the page again: a new thumbnail with a new time.
        QImage green(100, 100, QImage::Format_RGB32);
        green.fill(Qt::green);
        QVERIFY(green.save(page.thumbPath, "JPG"));
        QVERIFY(postdate(page.thumbPath, 60));
        const QRgb now = b.cache.request({page}).value(1).pixel(50, 50);
        QVERIFY(qGreen(now) > 200 && qRed(now) < 60);
    }

    // A page asked for twice is made once; without a budget, a thumbnail on disk is read in
    // the pool too; and a shortcut asks for nothing, its block done at once.
    void madeOnceAndReadInThePool()
    {
        CacheBench b({2, 0});
        const auto page = b.page(1, QSize(1200, 1600));
        QVERIFY(b.cache.request({page}).isEmpty());
        QVERIFY(b.cache.request({page}).isEmpty()); // paged away and back while being made
        QVERIFY(b.waitForBlock());
        QTest::qWait(50);
        QCOMPARE(b.ready.size(), 1);
        QCOMPARE(QImage(page.thumbPath).size(), QSize(100, 100));
        b.cache.clearMemory();
        QVERIFY(b.cache.request({page}).isEmpty());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 2);
        // From memory, the second time, however small the budget.
        QCOMPARE(b.cache.request({page}).size(), 1);
        const qsizetype blocks = b.done.size();
        QVERIFY(b.cache.request({{2, b.dir.filePath("letter.pdf"), QString()}}).isEmpty());
        QCOMPARE(b.cache.outstanding(), 0);
        QCOMPARE(b.done.size(), blocks + 1);
    }

    void pagingAwayDropsWorkNoLongerShown()
    {
        CacheBench b({1});
        QVector<ThumbnailCache::Request> first;
        for (int id = 1; id <= 30; ++id)
            first << b.page(id, QSize(1200, 1600));
        QVector<ThumbnailCache::Request> second;
        for (int id = 101; id <= 103; ++id)
            second << b.page(id, QSize(1200, 1600));
        second << first.at(29); // shown in both blocks

        b.cache.request(first);
        b.cache.request(second);
        QVERIFY(b.waitForBlock());
        QTest::qWait(50); // anything late would show now
        QCOMPARE(QSet<qint32>(b.tiles().keyBegin(), b.tiles().keyEnd()),
                 (QSet<qint32>{101, 102, 103, 30}));
        QCOMPARE(b.ready.size(), 4);
        for (const auto& r : second)
            QVERIFY(QFile::exists(r.thumbPath));
        // At most the job already running for the first block went on.
        int made = 0;
        for (int i = 0; i < 29; ++i)
            made += QFile::exists(first.at(i).thumbPath);
        QVERIFY2(made <= 2, qPrintable(QString::number(made)));
    }

    void aThumbnailMadeElsewhereIsWaitedFor_data()
    {
        columns<bool>({"tileCame"});
        row("its maker hands the tile over", true);
        row("its maker made none", false);
    }
    void aThumbnailMadeElsewhereIsWaitedFor()
    {
        QFETCH(bool, tileCame);
        CacheBench b;
        const auto page = b.page(1, QSize(400, 600));
        // A file being added makes its own thumbnail: the pane's request waits for it.
        b.cache.expect(page.thumbPath);
        QVERIFY(b.cache.request({page}).isEmpty());
        QTest::qWait(100);
        QVERIFY(b.ready.isEmpty());
        QVERIFY(!QFile::exists(page.thumbPath));
        QCOMPARE(b.cache.outstanding(), 1);

        QImage handed(100, 100, QImage::Format_RGB32);
        handed.fill(Qt::red);
        b.cache.arrived(page.thumbPath, tileCame ? handed : QImage());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 1);
        QCOMPARE(b.done.size(), 1);
        const QImage tile = b.tiles().value(1);
        // Taken as it came, not read nor made again; or, when nothing came, made as any
        // missing one.
        if (tileCame)
            QCOMPARE(tile, handed);
        else
            QVERIFY(!isWhite(tile.pixel(2, 2)));
        QCOMPARE(QFile::exists(page.thumbPath), !tileCame);
        // Once arrived, the path is an ordinary one again.
        b.cache.arrived(page.thumbPath, handed);
        QTest::qWait(20);
        QCOMPARE(b.ready.size(), 1);
    }

    // A PDF kept as a shortcut shows its first page, drawn off the GUI thread and kept in
    // memory only; one that cannot be drawn delivers no tile, and the pane keeps its icon.
    void pdfShortcutsShowTheirFirstPage_data() { TestPdfs::addKindRows(); }
    void pdfShortcutsShowTheirFirstPage()
    {
        QFETCH(QString, kind);
        CacheBench b;
        const QString pdf = b.dir.filePath("letter.pdf");
        const bool printed = kind == "printed";
        QVERIFY(printed ? TestPdfs::printed(pdf, {{"Northwind", "heating"}, {"Second page"}})
                        : TestPdfs::refused(kind, pdf));
        const ThumbnailCache::Request request{1, pdf, QString(), true};
        QVERIFY(b.cache.request({request}).isEmpty());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 1);
        QCOMPARE(b.done.size(), 1);
        const QImage tile = b.tiles().value(1);
        QVERIFY(!QFileInfo::exists(b.dir.filePath("Thumbs")));
        QCOMPARE(!tile.isNull(), printed);
        if (!printed)
            return;
        // An A4 page is narrower than it is tall: white paper with grey to black print at the
        // left, the tile's right edge left white.
        QCOMPARE(tile.size(), QSize(100, 100));
        int dark = 0;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                dark += !isWhite(tile.pixel(x, y));
        QVERIFY2(dark > 10, qPrintable(QString::number(dark)));
        QVERIFY(dark < 2000);
        for (int y = 0; y < 100; ++y)
            QVERIFY(isWhite(tile.pixel(95, y)));
        // Asked again it is at hand, and the pool, having looked at the file, delivers it
        // again; once the file has changed, it is drawn anew, and once it cannot be drawn, no
        // tile comes and none is kept.
        const auto change = [&](bool toGarbage, int seconds) {
            return (toGarbage
                        ? TestPdfs::garbage(pdf)
                        : TestPdfs::printed(pdf, {{"Another", "letter", "much", "longer"}})) &&
                   postdate(pdf, seconds);
        };
        QCOMPARE(b.cache.request({request}).value(1), tile);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 2);
        QCOMPARE(b.tiles().value(1), tile);
        QVERIFY(change(false, 5));
        QCOMPARE(b.cache.request({request}).value(1), tile);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 3);
        const QImage redrawn = b.tiles().value(1);
        QVERIFY(!redrawn.isNull());
        QVERIFY(redrawn != tile);
        QVERIFY(change(true, 10));
        QCOMPARE(b.cache.request({request}).value(1), redrawn);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 4);
        QVERIFY(b.tiles().value(1).isNull());
        QVERIFY(b.cache.request({request}).isEmpty());
        QVERIFY(b.waitForBlock());
    }

    // A page that is gone: missingThumbnailsAreMadeOnFirstRequest. A thumbnail that cannot be
    // put in place is made again when it is missed; the reason goes to the log, and nothing is
    // left aside.
    void aThumbnailThatCannotBeMadeLeavesNone_data()
    {
        columns<QByteArray, bool>({"content", "blocked"}); // `blocked`: a folder in the way
        row("not an image", QByteArray("this is no picture"), false);
        // Which stated sizes are too large to open is the image loader's rule.
        row("JPEG too large to open", BigPictures::bomb(), false);
        QBuffer page;
        page.open(QIODevice::WriteOnly);
        halfDark(QSize(300, 200)).save(&page, "JPG");
        row("cannot be put in place", page.data(), true);
    }
    void aThumbnailThatCannotBeMadeLeavesNone()
    {
        auto [content, blocked] = fetch<QByteArray, bool>("content", "blocked");
        QTemporaryDir dir;
        const QString src = dir.filePath("page.jpg");
        QVERIFY(writeBytes(src, content));
        const QString dst = dir.filePath("Thumbs/1.jpg");
        QVERIFY(QDir().mkpath(blocked ? dst + "/in the way" : dir.filePath("Thumbs")));
        if (blocked)
            QTest::ignoreMessage(
                QtWarningMsg, QRegularExpression("^No thumbnail written to .*/Thumbs/1\\.jpg: "));
        else
            QImage(10, 10, QImage::Format_RGB32).save(dst, "JPG"); // a stale one
        QVERIFY(!ThumbnailMaker::makeThumbnail(src, dst, dir.path()));
        QVERIFY(!QFileInfo(dst).isFile());
        QCOMPARE(QDir(dir.filePath("Thumbs")).entryList(QDir::Files | QDir::Hidden).size(), 0);
    }

    // The tiles as the maker draws them, from a file and from its contents alike.
    void everyWayToTheSameTile_data()
    {
        columns<QString, QSize, QSize>({"format", "page", "reduced"});
        row("JPEG scan", QString("JPG"), QSize(1275, 1650), QSize(77, 100));
        row("landscape", QString("JPG"), QSize(2000, 1000), QSize(100, 50));
        row("square", QString("JPG"), QSize(500, 500), QSize(100, 100));
        row("tiny", QString("JPG"), QSize(10, 20), QSize(50, 100));
        row("a sliver", QString("JPG"), QSize(3000, 2), QSize(100, 1));
        row("BMP", QString("BMP"), QSize(300, 200), QSize(100, 67));
        // Larger than is read whole: the decoder reads the file itself.
        row("BMP beyond the whole read", QString("BMP"), QSize(2400, 2400), QSize(100, 100));
    }
    void everyWayToTheSameTile()
    {
        auto [format, page, reduced] = fetch<QString, QSize, QSize>("format", "page", "reduced");
        QTemporaryDir dir;
        const QString src = dir.filePath("page." + format.toLower());
        QVERIFY(halfDark(page).save(src, qPrintable(format)));
        QCOMPARE(QFileInfo(src).size() > ThumbnailMaker::kReadWhole,
                 QByteArray(QTest::currentDataTag()).contains("beyond"));
        QFile file(src);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray contents = file.readAll();

        QImage fromFile;
        QImage fromData;
        const QString dst = dir.filePath("Thumbs/0000000/1.jpg");
        QVERIFY(ThumbnailMaker::makeThumbnail(src, dst, dir.path(), &fromFile));
        QVERIFY(ThumbnailMaker::makeThumbnailFromData(contents, dir.filePath("b.jpg"), dir.path(),
                                                      &fromData));
        QCOMPARE(fromFile, fromData);
        QCOMPARE(ThumbnailMaker::reducedSize(page), reduced);
        QCOMPARE(ThumbnailMaker::reducedImage(src).size(), reduced);
        // The tile handed back is the one written: the page in the top left corner of a
        // white 100 by 100 tile.
        QCOMPARE(QImage(dst).size(), QSize(100, 100));
        QCOMPARE(fromFile.size(), QSize(100, 100));
        QVERIFY(qGray(fromFile.pixel(reduced.width() / 4, reduced.height() / 2)) < 80);
        QVERIFY(qGray(fromFile.pixel(reduced.width() * 3 / 4, reduced.height() / 2)) > 200);
        if (reduced.width() < 96)
            QVERIFY(isWhite(fromFile.pixel(99, 0)));
        if (reduced.height() < 96)
            QVERIFY(isWhite(fromFile.pixel(0, 99)));
        // Contents that are no picture make nothing.
        QVERIFY(!ThumbnailMaker::makeThumbnailFromData("not a picture", dir.filePath("c.jpg")));
        QVERIFY(!QFile::exists(dir.filePath("c.jpg")));
    }

    // A photo whose camera notes that it was taken turned: its tile has the turned shape
    // and the picture the right way up, not squeezed into the stored shape.
    void turnedByItsCameraKeepsItsShape()
    {
        QTemporaryDir dir;
        // Stored 400x200, left half dark; turned a quarter clockwise, the dark half is on top.
        QBuffer plain;
        plain.open(QIODevice::WriteOnly);
        QVERIFY(halfDark(QSize(400, 200)).save(&plain, "JPG"));
        // An APP1 segment with one orientation entry (6: turn a quarter clockwise) after SOI.
        const QByteArray exif = QByteArray::fromHex("FFE10022"
                                                    "457869660000"
                                                    "4D4D002A00000008"
                                                    "0001"
                                                    "011200030000000100060000"
                                                    "00000000");
        const QByteArray turned = plain.data().left(2) + exif + plain.data().mid(2);
        const QString src = dir.filePath("photo.jpg");
        QVERIFY(writeBytes(src, turned));
        QCOMPARE(QImageReader(src).transformation(), QImageIOHandler::TransformationRotate90);

        const QImage reduced = ThumbnailMaker::reducedImage(src);
        QCOMPARE(reduced.size(), QSize(50, 100));
        QVERIFY(qGray(reduced.pixel(25, 20)) < 80);
        QVERIFY(qGray(reduced.pixel(25, 80)) > 200);
    }

    void qualityScale()
    {
        for (const auto& [stored, qt] :
             {std::pair{10, 90}, {50, 50}, {0, 100}, {100, 1}, {-5, 100}})
            QCOMPARE(qtJpegQuality(stored), qt);
    }

    // The block arithmetic of the page pane, driven as its buttons drive it.
    void steps_data()
    {
        // `presses`: the buttons pressed, in order; `back`: First and Prev enabled; `forward`:
        // Next and Last enabled.
        columns<int, int, QString, int, int, QString, bool, bool>(
            {"pages", "count", "presses", "first", "last", "status", "back", "forward"});
        // Tagged by the presses, and the pages and block size where they are not 25 and 10.
        const auto row = [](const char* presses, int first, int last, const char* status, bool back,
                            bool forward, int pages = 25, int count = 10) {
            QString tag = *presses ? presses : "start";
            if (pages != 25 || count != 10)
                tag += QString(" of %1 by %2").arg(pages).arg(count);
            test::row(qPrintable(tag), pages, count, QString(presses), first, last, QString(status),
                      back, forward);
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
        row("show23", 21, 25, " Showing 10 images (page 3 of 3)", true, false);
        row("show23,show10", 1, 10, " Showing 10 images (page 1 of 3)", false, true);
        // No such entry: nothing moves.
        row("next,show26", 11, 20, " Showing 10 images (page 2 of 3)", true, true);
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
        // The blocks: 1.5 rounds to 2, 3.5 to 4, and 2.4 to 2, then one more for what is left.
        row("", 1, 10, " Showing 10 images (page 1 of 2)", false, true, 15);
        row("", 1, 10, " Showing 10 images (page 1 of 4)", false, true, 35);
        row("", 1, 10, " Showing 10 images (page 1 of 3)", false, true, 24);
        row("", 1, 10, " Showing 10 images (page 1 of 3)", false, true, 30);
        row("", 1, 1, " Showing 64 images (page 1 of 1)", false, false, 1, 64);
        row("", 1, 64, " Showing 64 images (page 1 of 8)", false, true, 500, 64);
    }
    void steps()
    {
        auto [pages, count, presses] = fetch<int, int, QString>("pages", "count", "presses");
        const QHash<QString, bool (PagePaging::*)()> buttons{
            {"next", &PagePaging::next},     {"prev", &PagePaging::prev},
            {"first", &PagePaging::first},   {"last", &PagePaging::last},
            {"more", &PagePaging::showMore}, {"less", &PagePaging::showLess}};
        PagePaging paging(count);
        paging.load(pages);
        for (const QString& press : presses.split(',', Qt::SkipEmptyParts)) {
            if (press.startsWith("show")) { // the block of an entry, as a search shows it
                paging.showEntry(press.mid(4).toInt());
                continue;
            }
            QVERIFY2(buttons.contains(press), qPrintable(press));
            (paging.*buttons.value(press))();
        }
        QTEST(paging.viewFirst(), "first");
        QTEST(paging.viewLast(), "last");
        QTEST(paging.statusText(), "status");
        QTEST(paging.canGoBack(), "back");
        QTEST(paging.canGoForward(), "forward");
    }

    void displayCountIsClamped_data()
    {
        columns<int, int>({"stored", "used"});
        for (const auto& [stored, used] :
             {std::pair{500, 64}, {65, 64}, {64, 64}, {1, 1}, {0, 1}, {-3, 1}})
            row(qPrintable(QString::number(stored)), stored, used);
    }
    void displayCountIsClamped()
    {
        QFETCH(int, stored);
        PagePaging paging(stored);
        QTEST(paging.displayCount(), "used");
        paging.setDisplayCount(stored);
        QTEST(paging.displayCount(), "used");
    }

    void entryTexts_data()
    {
        // `texts`: thumbnail text, list text, sort key.
        columns<int, QString, bool, QStringList>({"number", "stored", "shortcut", "texts"});
        row("page", 3, QString(), false, QStringList{"Page 3", "3", "03"});
        row("three digits", 100, QString(), false, QStringList{"Page 100", "100", "100"});
        row("number 0, stored file", 0, QString("/scans/june.jpg"), false,
            QStringList{"june.jpg", "0", "00"});
        // The computed path stands in for an empty Filename, so its name shows.
        row("number 0, computed", 0, QString(), false, QStringList{"7.jpg", "0", "00"});
        row("shortcut", 4, QString("/home/me/letter.pdf"), true,
            QStringList{"letter.pdf", "", "04"});
        row("negative", -1, QString(), false, QStringList{"Page -1", "-1", "-01"});
    }
    void entryTexts()
    {
        auto [number, stored, shortcut] = fetch<int, QString, bool>("number", "stored", "shortcut");
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

QMR_TEST(TestPageTiles)
#include "testthumbnailcache.moc"
