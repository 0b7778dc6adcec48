#include <cerrno>
#include <cstring>
#include <sys/stat.h>

#include "exchange/consoleprogress.h"
#include "exchange/exchangebatch.h"
#include "exchangefixture.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::fetch;
using test::row;
using test::TestFileSystem;

namespace {

struct Run
{
    int status = -1;
    QString out;
    QString err;
};

// Export (cabinet, directory) or import (directory, cabinet) as the command line does.
template <auto Method> struct Batch
{
    Run operator()(ExchangeFixture& f, const QString& from, const QString& to,
                   ExchangeFileSystem* fs = nullptr) const
    {
        Run run;
        QTextStream out(&run.out), err(&run.err);
        ExchangeBatch batch(*f.session, out, err, false, fs);
        run.status = (batch.*Method)(from, to);
        return run;
    }
};
constexpr Batch<&ExchangeBatch::exportCabinet> exportCabinet;
constexpr Batch<&ExchangeBatch::importCabinet> importCabinet;

} // namespace

// The window-less export and import: refusals, reports and exit statuses. Nothing is ever
// asked: the scripted prompter fails the test if anything is.
class TestExchangeBatch : public QObject
{
    Q_OBJECT
private slots:
    void refusals_data()
    {
        // dir: "@home" the home, "@out" an empty directory, "@ex" an exchange directory
        test::columns<bool, QString, QString, QString>({"import", "cabinet", "dir", "error"});
        row("export: no such cabinet", false, "Nope", "@out",
            "There is no file cabinet named 'Nope'.");
        row("export: locked", false, "Locked", "@out",
            "The file cabinet 'Locked' has a password; it can be exported only in the "
            "program's window.");
        row("export: inside the home", false, "Papers", "@home/x",
            "You cannot export a cabinet to a path within the Quillmere system.\nPlease select "
            "another location that is not within the application path of:\n'@home'.");
        row("export: no path", false, "Papers", "  ", "No output path was given.");
        row("import: missing", true, "Target", "@out/none", "'@out/none' does not exist.");
        row("import: no marker", true, "Target", "@out",
            "Missing QMR.TXT. This file designates the starting point of a previously "
            "exported file cabinet.");
        row("import: no cabinet", true, "Nope", "@ex", "There is no file cabinet named 'Nope'.");
        row("import: locked", true, "Locked", "@ex",
            "The file cabinet 'Locked' has a password; it can be imported into only in the "
            "program's window.");
    }
    void refusals()
    {
        const auto [import, cabinet, dir, error] =
            fetch<bool, QString, QString, QString>("import", "cabinet", "dir", "error");
        ExchangeFixture f;
        f.filledCabinet("Papers", 1, 1);
        f.store->cabinet("Target");
        f.store->cabinet("Locked", "pw");
        QTemporaryDir exchange;
        const QString ex = exchange.filePath("ex");
        ExchangeFixture::writeBytes(ex + "/QMR.txt", "");
        ExchangeFixture::writeImage(ex + "/D/F/Doc/Page 1.jpg");
        const QString path = f.placed(dir, {{"@ex", ex}});
        const Run run = import ? importCabinet(f, path, cabinet) : exportCabinet(f, cabinet, path);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.err, "quillmere: " + f.placed(error, {{"@ex", ex}}) + "\n");
        QVERIFY(run.out.isEmpty());
        // Nothing written, nothing made.
        QCOMPARE(QDir(f.outside.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList());
        QCOMPARE(f.count("Drawer"), 1);
        QVERIFY(f.prompter.verify());
    }

    // Pages that share a number each keep a file of their own, and come back with it.
    void exportAndImport()
    {
        ExchangeFixture f;
        const qint32 doc = f.store->document(
            f.store->folder(f.store->drawer(f.store->cabinet("Papers"), "D"), "F"), "Doc");
        QSet<QByteArray> files;
        int width = 100;
        for (const int number : {3, 1, 3, 3})
            files << f.storedBytes(f.store->page(doc, number, QSize(width += 10, 100)));
        const qint32 empty = f.store->cabinet("Empty");
        f.store->drawer(empty, "Only a drawer");
        const qint32 target = f.store->cabinet("Target");
        // An empty cabinet exports its tree without asking; a missing directory is made.
        Run run = exportCabinet(f, "empty", f.outsidePath("new/dir"));
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, "Export complete. 0 pages copied.\n");
        QVERIFY(QFileInfo(f.outsidePath("new/dir/Empty/Only a drawer")).isDir());

        run = exportCabinet(f, "Papers", f.outside.path());
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, "Export complete. 4 pages copied.\n");
        // The progress lines go to the error stream: a line at each tenth of the way (the
        // bar of an export has one step more than pages, so it never quite fills).
        QVERIFY2(run.err.contains("[ 80%] 4/5 Copy file 4.jpg\n"), qPrintable(run.err));
        QCOMPARE(QDir(f.outsidePath("Papers/D/F/Doc")).entryList(QDir::Files),
                 QStringList({"Page 1.jpg", "Page 3 (2).jpg", "Page 3 (3).jpg", "Page 3.jpg"}));

        run = importCabinet(f, f.outsidePath("Papers"), "TARGET");
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, "4 files imported.\r\n0 shortcuts created.\n");
        QCOMPARE(f.count("Page"), 8);
        QList<int> numbers;
        QSet<QByteArray> imported;
        for (const PageRow& page : f.session->pages().pages(f.itemAt(target, {"D", "F", "Doc"}))) {
            numbers << page.pageNumber;
            imported << f.storedBytes(page.id);
        }
        std::sort(numbers.begin(), numbers.end());
        QCOMPARE(numbers, QList<int>({1, 3, 3, 3}));
        QCOMPARE(imported, files);
        // Again: nothing new, and that is no failure.
        run = importCabinet(f, f.outsidePath("Papers"), "Target");
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, "0 files imported.\r\n0 shortcuts created.\n");
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
    }

    void failuresAreNamed()
    {
        ExchangeFixture f;
        f.filledCabinet("Papers", 1, 3);
        f.store->cabinet("Target");
        // A full target stops the export: no disk can be asked for.
        TestFileSystem full;
        full.failCopy.insert(2, FileOutcome::Kind::DiskFull);
        Run run = exportCabinet(f, "Papers", f.outsidePath("a"), &full);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, "Export not complete. 1 pages copied before it ended.\n");
        QVERIFY2(run.err.contains("No space left on device"), qPrintable(run.err));
        QVERIFY(run.err.contains("The output path is full."));
        // Nor does an export that a failure ended call itself complete.
        TestFileSystem failing;
        failing.failCopy.insert(3, FileOutcome::Kind::WriteFailed);
        run = exportCabinet(f, "Papers", f.outsidePath("c"), &failing);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, "Export not complete. 2 pages copied before it ended.\n");
        QVERIFY2(run.err.endsWith("quillmere: Cannot write " +
                                  f.outsidePath("c/Papers/Drawer/Folder/Document 1/Page 3.jpg") +
                                  ": No space left on device\n"),
                 qPrintable(run.err));

        // An unreadable file is named and left out; the rest comes in.
        run = exportCabinet(f, "Papers", f.outsidePath("b"));
        QCOMPARE(run.status, 0);
        const QString doc = f.outsidePath("b/Papers/Drawer/Folder/Document 1");
        TestFileSystem unreadable;
        unreadable.unreadable.insert(doc + "/Page 2.jpg");
        // So is one gone between the listing and its turn.
        unreadable.afterCopy = [&](int) { QFile::remove(doc + "/Page 3.jpg"); };
        run = importCabinet(f, f.outsidePath("b/Papers"), "Target", &unreadable);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, "1 files imported.\r\n0 shortcuts created.\n");
        QVERIFY2(run.err.contains("quillmere: Cannot read " + doc + "/Page 2.jpg"),
                 qPrintable(run.err));
        QVERIFY2(run.err.contains("quillmere: Cannot read " + doc + "/Page 3.jpg\n"),
                 qPrintable(run.err));
        QVERIFY(f.prompter.verify());
    }

    // A link in the exchange directory, to a file or a directory, is never followed: it is
    // named and the import fails. A name that is not UTF-8 comes in by its bytes and is shown
    // as Windows-1252, unless a shortcut would have to keep it in its path.
    void importPassesOverLinksAndReadsOldNames()
    {
        ExchangeFixture f;
        const qint32 target = f.store->cabinet("Target");
        const QString ex = f.outsidePath("ex"), doc = ex + "/D/F/Doc";
        const QString secret = f.outsidePath("secret");
        QVERIFY(ExchangeFixture::writeImage(secret + "/shadow.jpg", Qt::red));
        QVERIFY(ExchangeFixture::writeImage(secret + "/F/Doc/Page 7.jpg", Qt::red));
        ExchangeFixture::writeBytes(ex + "/QMR.txt", "");
        QVERIFY(ExchangeFixture::writeImage(doc + "/Page 1.jpg"));
        // A UTF-8 name whose second half of a pair lies in the range of kept bytes.
        const QString emoji = QString::fromUtf8("Page \xF0\x9F\x92\xA9.jpg");
        QVERIFY(ExchangeFixture::writeImage(doc + "/" + emoji));
        QVERIFY(QFile::link(secret + "/shadow.jpg", doc + "/Page 2.jpg"));
        QVERIFY(QFile::link(secret, ex + "/Linked"));
        const QByteArray old = QFile::encodeName(ex) + "/D/Geb\xfchren";
        QVERIFY(::mkdir(old.constData(), 0755) == 0 && ::mkdir(old + "/Doc", 0755) == 0);
        const QByteArray picture = ExchangeFixture::readBytes(doc + "/Page 1.jpg") + "old";
        QVERIFY(ExchangeFixture::writeRaw(old + "/Doc/Rechnung M\xe4rz.jpg", picture));
        QVERIFY(ExchangeFixture::writeRaw(old + "/Doc/notes.pdf", "text"));

        const Run run = importCabinet(f, ex, "Target");
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, "3 files imported.\r\n0 shortcuts created.\n");
        for (const QString& line :
             {"'" + ex + "/Linked' is a link; it was not followed.",
              "'" + doc + "/Page 2.jpg' is a link; it was not followed.",
              "'" + ex +
                  QString::fromUtf8("/D/Gebühren/Doc/notes.pdf' has a path that is not "
                                    "UTF-8, which a shortcut cannot keep; it was not "
                                    "imported.")})
            QVERIFY2(run.err.contains("quillmere: " + line + "\n"), qPrintable(run.err));
        // Nothing from outside: no drawer of the linked directory, no page of the linked file.
        QCOMPARE(f.count("Drawer"), 1);
        QCOMPARE(f.count("Page"), 3);
        QVERIFY(f.session->pages().pageNamed(f.itemAt(target, {"D", "F", "Doc"}), emoji) >= 0);
        const qint32 page = f.session->pages().pageNamed(
            f.itemAt(target, {"D", QString::fromUtf8("Gebühren"), "Doc"}),
            QString::fromUtf8("Rechnung März.jpg"));
        QVERIFY(page >= 0);
        QCOMPARE(f.storedBytes(page), picture);
    }

    // Nothing outside the output path changes, whatever links stand in it or in the store.
    void exportWritesThroughNoLink()
    {
        ExchangeFixture f;
        f.filledCabinet("Papers", 1, 2);
        f.setText("Document", "Description", f.field("SELECT DocumentId FROM Document").toInt(),
                  "Described");
        const QString victim = f.outsidePath("victim.txt");
        QVERIFY(ExchangeFixture::writeBytes(victim, "outside the output path"));
        // A link planted in the store where page 2's file belongs.
        const PagePaths& paths = f.session->paths();
        const QString page1 =
            paths.computedPagePath(f.field("SELECT PageId FROM Page WHERE PageNumber = 1").toInt());
        const QString page2 =
            paths.computedPagePath(f.field("SELECT PageId FROM Page WHERE PageNumber = 2").toInt());
        QVERIFY(QFile::remove(page2) && QFile::link(victim, page2));
        // Links at the names the export writes, and at the fixed name aside of older versions.
        const QString out = f.outsidePath("out"), docDir = out + "/Papers/Drawer/Folder/Document 1";
        QVERIFY(QDir().mkpath(docDir));
        const QStringList written = {out + "/Papers/QMR.txt", docDir + "/Document.txt",
                                     docDir + "/Page 1.jpg"};
        for (const QString& name : written + QStringList{docDir + "/Page 1.jpg.qmrpart"})
            QVERIFY(QFile::link(victim, name));

        const Run run = exportCabinet(f, "Papers", out);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, "Export complete. 1 pages copied.\n");
        QVERIFY2(run.err.contains("quillmere: '" + page2 + "' is a link; it was not followed.\n"),
                 qPrintable(run.err));
        QCOMPARE(ExchangeFixture::readBytes(victim), QByteArray("outside the output path"));
        for (const QString& name : written)
            QVERIFY2(!QFileInfo(name).isSymLink() && QFileInfo(name).isFile(), qPrintable(name));
        QCOMPARE(ExchangeFixture::readBytes(docDir + "/Page 1.jpg"),
                 ExchangeFixture::readBytes(page1));
        QVERIFY(!QFileInfo::exists(docDir + "/Page 2.jpg"));
    }

    void progressLines()
    {
        QString terminal, file;
        {
            QTextStream out(&terminal);
            ConsoleProgress progress(out, true);
            progress.start("Count", 1, 3);
            for (int i = 0; i < 3; ++i)
                progress.step(QString("Copy file Page %1.jpg").arg(i + 1));
            progress.end();
        }
        // Rewritten in place on a terminal, ending with a new line.
        QVERIFY(terminal.startsWith("\r[  0%] 0/3 Count"));
        QVERIFY(terminal.contains("\r[100%] 3/3 Copy file Page 3.jpg"));
        QVERIFY(terminal.endsWith("\n"));
        QCOMPARE(terminal.count('\n'), 1);
        {
            QTextStream out(&file);
            ConsoleProgress progress(out, false);
            progress.start("Preparing", 1, 100);
            for (int i = 0; i < 100; ++i)
                progress.step("Copy");
        }
        // Into a file: one line at the start and one at each tenth of the way.
        const QStringList lines = file.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 11);
        QCOMPARE(lines.first(), "[  0%] 0/100 Preparing");
        QCOMPARE(lines.last(), "[100%] 100/100 Copy");
    }

    void copiesAreWholeOrNothing()
    {
        QTemporaryDir dir;
        DiskFileSystem fs;
        const QString source = dir.filePath("source.bin");
        QByteArray big(3 * 1024 * 1024 + 17, 'x');
        for (int i = 0; i < big.size(); i += 4096)
            big[i] = char(i / 4096);
        QVERIFY(ExchangeFixture::writeBytes(source, big));
        const QString target = dir.filePath("target.bin");
        QVERIFY(ExchangeFixture::writeBytes(target, "an older file"));
        // Over what stands there, byte for byte.
        QVERIFY(fs.copyFile(source, target, LinkRule::Refuse).ok());
        QCOMPARE(ExchangeFixture::readBytes(target), big);
        // A source that cannot be read leaves the target as it was and nothing else.
        const FileOutcome gone = fs.copyFile(dir.filePath("gone.bin"), target, LinkRule::Refuse);
        QCOMPARE(gone.kind, FileOutcome::Kind::ReadFailed);
        QVERIFY(gone.message.contains("gone.bin"));
        QVERIFY2(gone.message.endsWith(QString::fromLocal8Bit(std::strerror(ENOENT))),
                 qPrintable(gone.message));
        QCOMPARE(ExchangeFixture::readBytes(target), big);
        // A target directory that is not there is a write failure, not a crash.
        const FileOutcome nowhere =
            fs.copyFile(source, dir.filePath("no/such/dir/t.bin"), LinkRule::Refuse);
        QCOMPARE(nowhere.kind, FileOutcome::Kind::WriteFailed);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files),
                 QStringList({"source.bin", "target.bin"}));
        // Into the store: through memory with the bytes handed back, or copied when no place
        // for them is given; a file standing there is left alone; no handle stays open.
        const auto openHandles = [] {
            return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
        };
        const int handles = openHandles();
        QTemporaryDir store;
        const QString pages = store.path();
        QByteArray held;
        QVERIFY(fs.copyIntoStore(source, pages + "/1.jpg", &held).ok());
        QCOMPARE(held, big);
        QVERIFY(fs.copyIntoStore(source, pages + "/2.jpg").ok());
        QCOMPARE(ExchangeFixture::readBytes(pages + "/2.jpg"), big);
        QCOMPARE(fs.copyIntoStore(target, pages + "/1.jpg", &held).kind,
                 FileOutcome::Kind::TargetExists);
        QCOMPARE(ExchangeFixture::readBytes(pages + "/1.jpg"), big);
        QCOMPARE(openHandles(), handles);
        // Names come sorted without regard to case; hidden files and copies left unfinished
        // by a crash are no files of the directory.
        ExchangeFixture::writeBytes(dir.filePath("B.txt"), "");
        ExchangeFixture::writeBytes(dir.filePath(".hidden"), "");
        ExchangeFixture::writeBytes(dir.filePath("c.jpg.qmrpart"), "half");
        QDir().mkpath(dir.filePath(".config"));
        QDir().mkpath(dir.filePath("a"));
        QCOMPARE(fs.fileNames(dir.path()), QStringList({"B.txt", "source.bin", "target.bin"}));
        QCOMPARE(fs.directoryNames(dir.path()), QStringList({"a"}));
    }
};

QMR_TEST(TestExchangeBatch)
#include "testexchangebatch.moc"
