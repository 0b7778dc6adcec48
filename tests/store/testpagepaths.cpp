#include <QFileInfo>
#include <QTest>

#include "store/pagepaths.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/support/datarow.h"

using qmr::test::row;
using namespace qmr;
using qmr::test::columns;

class TestPagePaths : public QObject
{
    Q_OBJECT
private slots:
    void computed_data()
    {
        columns<int, QString, QString>({"id", "page", "thumb"});
        row("7", 7, "Pages/0000000/7.jpg", "Thumbs/0000000/7.jpg");
        row("999", 999, "Pages/0000000/999.jpg", "Thumbs/0000000/999.jpg");
        row("1000", 1000, "Pages/0000001/1000.jpg", "Thumbs/0000001/1000.jpg");
        row("12345", 12345, "Pages/0000012/12345.jpg", "Thumbs/0000012/12345.jpg");
        row("max", 2147483647, "Pages/2147483/2147483647.jpg", "Thumbs/2147483/2147483647.jpg");
    }
    void computed()
    {
        const auto [id, page, thumb] = test::fetch<int, QString, QString>("id", "page", "thumb");
        test::TestHome home;
        PagePaths paths(home.home());
        // No stored file name: the computed scheme.
        QCOMPARE(paths.pagePath(id, QString()), home.file(page));
        QCOMPARE(paths.thumbPath(id, QString()), home.file(thumb));
        QCOMPARE(paths.computedPagePath(id), home.file(page));
        QCOMPARE(paths.computedThumbPath(id), home.file(thumb));
        QCOMPARE(paths.pageDirectory(id, QString()) + "/",
                 PagePaths::directoryPart(home.file(page)));
    }

    // A stored file name: used as it is, its thumbnail beside it, and its parts split at the
    // last separator.
    void storedFilename_data()
    {
        columns<QString, QString, QString, QString>({"filename", "pageDir", "thumbDir", "thumb"});
        columns<QString, QString>({"dir", "file"});
        row("scan", "/data/scans/june.tif", "/data/scans", "/data/scans/Thumbs",
            "/data/scans/Thumbs/june.tif", "/data/scans/", "june.tif");
        row("top level", "/x.jpg", "/", "/Thumbs", "/Thumbs/x.jpg", "/", "x.jpg");
        // A name with no separator at all: the thumbnail path ends in one.
        row("bare name", "x.jpg", "", "Thumbs", "Thumbs/", "", "");
        row("directory", "/a/b/", "/a/b", "/a/b/Thumbs", "/a/b/Thumbs/", "/a/b/", "");
    }
    void storedFilename()
    {
        const auto [filename, pageDir, thumbDir, thumb, dir, file] =
            test::fetch<QString, QString, QString, QString, QString, QString>(
                "filename", "pageDir", "thumbDir", "thumb", "dir", "file");
        test::TestHome home;
        PagePaths paths(home.home());
        QCOMPARE(paths.pagePath(7, filename), filename);
        QCOMPARE(paths.pageDirectory(7, filename), pageDir);
        QCOMPARE(paths.thumbDirectory(7, filename), thumbDir);
        QCOMPARE(paths.thumbPath(7, filename), thumb);
        QCOMPARE(PagePaths::directoryPart(filename), dir);
        QCOMPARE(PagePaths::filePart(filename), file);
    }

    void ensurePathExists_data()
    {
        QTest::addColumn<QString>("path");     // below the temporary directory
        QTest::addColumn<QStringList>("made"); // directories that must exist after
        QTest::addColumn<QStringList>("notMade");
        row("file path", "a/b/c.jpg", QStringList{"a", "a/b"}, QStringList{"a/b/c.jpg"});
        row("dotted directory", "a.b/c", QStringList{"a.b"}, QStringList{"a.b/c"});
        row("plain directory", "p/q/r", QStringList{"p", "p/q", "p/q/r"}, QStringList{});
        row("bucket", "Pages/0000012/12345.jpg", QStringList{"Pages/0000012"},
            QStringList{"Pages/0000012/12345.jpg"});
    }
    void ensurePathExists()
    {
        const auto [path, made, notMade] =
            test::fetch<QString, QStringList, QStringList>("path", "made", "notMade");
        test::TestHome home;
        QVERIFY(PagePaths::ensurePathExists(home.file(path)));
        for (const QString& d : made)
            QVERIFY2(QFileInfo(home.file(d)).isDir(), qPrintable(d));
        for (const QString& d : notMade)
            QVERIFY2(!QFileInfo::exists(home.file(d)), qPrintable(d));
        // Running it again changes nothing and still succeeds.
        QVERIFY(PagePaths::ensurePathExists(home.file(path)));
    }

    void ensurePathExistsBelowADottedHomeAndAtTheEdges()
    {
        test::TestHome outer;
        const AppHome home(outer.file(".local/share/Quillmere"));
        QVERIFY(home.ensureExists());
        PagePaths paths(home);
        // The home's dots do not make its directories file names.
        QVERIFY(paths.ensurePathInHome(home.file("Thumbs/0000012")));
        QVERIFY(QFileInfo(home.file("Thumbs/0000012")).isDir());
        QVERIFY(paths.ensurePathInHome(home.file("Pages/0000003/3456.jpg")));
        QVERIFY(QFileInfo(home.file("Pages/0000003")).isDir());
        QVERIFY(!QFileInfo::exists(home.file("Pages/0000003/3456.jpg")));
        // Below the home the rule stands: a dotted directory takes what follows for a file.
        QVERIFY(paths.ensurePathInHome(home.file("export.v2/inner")));
        QVERIFY(QFileInfo(home.file("export.v2")).isDir());
        QVERIFY(!QFileInfo::exists(home.file("export.v2/inner")));
        QVERIFY(PagePaths::ensurePathExists("/"));
        QVERIFY(PagePaths::ensurePathExists(QString()));
        // A file where a directory should be: the answer is false, not a crash.
        QVERIFY(outer.writeFile("blocker", {}));
        QVERIFY(!PagePaths::ensurePathExists(outer.file("blocker/sub/x.jpg")));
    }
};

QMR_TEST(TestPagePaths)
#include "testpagepaths.moc"
