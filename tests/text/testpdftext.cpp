#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "core/pagewords.h"
#include "store/cabinetlock.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testpdfs.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/pdftext.h"
#include "text/textfind.h"
#include "text/textreading.h"

using namespace qmr;
using namespace qmr::test;

namespace {

const QList<QStringList> kLetter = {{"Northwind heating invoice", "Account 4471"},
                                    {"Water meter reading"}};
const QStringList kLetterWords = {"Northwind", "heating", "invoice", "Account",
                                  "4471",      "Water",   "meter",   "reading"};

// A shortcut page in `document` that points at `file`.
qint32 shortcutTo(FixtureStore& store, qint32 document, int number, const QString& file)
{
    const qint32 id = store.pageRow(document, number);
    store.db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                       {file, id});
    return id;
}

QList<TextIndex::Word> boxed(const QString& text)
{
    QList<TextIndex::Word> list;
    for (const QString& word : text.split(' '))
        list << TextIndex::Word{word, QRect(0, 0, 10, 10)};
    return list;
}

QStringList shown(const QList<TextFind::Document>& documents)
{
    QStringList lines;
    for (const TextFind::Document& d : documents) {
        QStringList numbers;
        for (const qint32 n : d.pageNumbers)
            numbers << QString::number(n);
        lines << d.names.join('/') + ": " + numbers.join(',');
    }
    return lines;
}

} // namespace

// The words of pages: a PDF shortcut's from its own text layer (one that cannot be read gives
// none and no error), the store's pages as its reading follows them, and the documents found.
class TestPdfText : public QObject
{
    Q_OBJECT
private slots:
    void wordsOfTheTextLayer_data() { TestPdfs::addKindRows(); }
    void wordsOfTheTextLayer()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString pdf = dir.filePath("letter.pdf");
        const bool printed = kind == "printed";
        QVERIFY(printed ? TestPdfs::printed(pdf, kLetter) : TestPdfs::refused(kind, pdf));
        QCOMPARE(PdfText::isPdf(pdf), kind != "empty file");
        const QList<TextIndex::Word> words = PdfText::words(pdf);
        QStringList texts;
        for (const TextIndex::Word& word : words)
            texts << word.text;
        QCOMPARE(texts, printed ? kLetterWords : QStringList());
        if (!printed)
            return;
        // Boxes in points, the second page below the first: a word follows the one before it
        // on its line, and the next line is lower.
        const qreal a4Height = 842;
        for (const TextIndex::Word& word : words)
            QVERIFY2(!word.box.isEmpty(), qPrintable(word.text));
        QVERIFY(words.at(1).box.left() > words.at(0).box.right());
        QString boxes;
        QDebug(&boxes) << words.at(0).box << words.at(1).box;
        QVERIFY2(words.at(1).box.top() < words.at(0).box.bottom() &&
                     words.at(0).box.top() < words.at(1).box.bottom(),
                 qPrintable(boxes));
        QVERIFY(words.at(3).box.top() > words.at(0).box.bottom());
        QVERIFY(words.at(3).box.bottom() < a4Height);
        QVERIFY(words.at(5).box.top() > a4Height);
    }

    // The pages of a store are read, and read again when their files change or they go. A PDF
    // shortcut's words come from the file, with the file's stamp; a file that gives no words
    // has an entry without any and is left alone until it changes.
    void readingFollowsTheStore()
    {
        TestHome home;
        FixtureStore store(home.home());
        const qint32 document = store.document(
            store.folder(store.drawer(store.cabinet("Home"), "Bills"), "Gas"), "Winter");
        const PagePaths paths(home.home());
        QList<qint32> pages;
        const QStringList texts = {"Northwind heating invoice", "Water meter reading"};
        for (int i = 0; i < texts.size(); ++i) {
            pages << store.page(document, i + 1);
            QVERIFY(printedPage({texts.at(i)}).save(paths.pagePath(pages.last(), ""), "JPG"));
        }
        const QString letter = home.file("elsewhere/letter.pdf");
        QVERIFY(QDir().mkpath(home.file("elsewhere")));
        QVERIFY(TestPdfs::printed(letter, kLetter));
        const qint32 letterPage = shortcutTo(store, document, 3, letter);
        QList<qint32> refusedPages;
        for (const QString& kind : TestPdfs::refusedKinds()) {
            const QString file = home.file("elsewhere/" + kind + ".pdf");
            QVERIFY(TestPdfs::refused(kind, file));
            refusedPages << shortcutTo(store, document, int(refusedPages.size()) + 4, file);
        }
        TextReading reading(store.db(), paths, "eng", workerCommand());
        QVERIFY(reading.start().ok());
        QSignalSpy idle(reading.reader(), &TextReader::idle);
        QSignalSpy started(reading.reader(), &TextReader::pageStarted);
        QSignalSpy failed(reading.reader(), &TextReader::failed);
        QVERIFY(idle.wait(180000));
        const auto found = [&](const QString& typed) {
            return reading.index().pagesWith(PageWords::parse(typed));
        };
        QCOMPARE(found("northwind"), (QList<qint32>{pages.at(0), letterPage}));
        QCOMPARE(found("meter"), (QList<qint32>{pages.at(1), letterPage}));
        QCOMPARE(found("\"meter reading\""), (QList<qint32>{pages.at(1), letterPage}));
        QCOMPARE(found("4471"), QList<qint32>{letterPage});
        QCOMPARE(reading.index().entry(letterPage)->stamp, TextIndex::Stamp::of(letter));
        for (const qint32 page : refusedPages) {
            const std::optional<TextIndex::Entry> entry = reading.index().entry(page);
            QVERIFY(entry);
            QCOMPARE(entry->state, TextIndex::State::Read);
            QCOMPARE(reading.index().textOf(page), QString());
        }

        // The second page is scanned anew, the first taken out; a page that comes in has the
        // pages looked over again.
        QVERIFY(printedPage({"Garden tools receipt"}).save(paths.pagePath(pages.at(1), ""), "JPG"));
        PageStore(store.db()).removeRow(pages.at(0));
        reading.pageAdded(pages.at(1));
        QVERIFY(idle.wait(180000));
        QCOMPARE(found("northwind"), QList<qint32>{letterPage});
        QCOMPARE(found("meter"), QList<qint32>{letterPage});
        QCOMPARE(found("receipt"), QList<qint32>{pages.at(1)});
        // The removed page's entry is gone, and no other (the ids were given in this order).
        QCOMPARE(reading.index().pages(), (QList<qint32>{pages.at(1), letterPage} + refusedPages));

        // The letter is replaced; looked over again, only it is read.
        QVERIFY(TestPdfs::printed(letter, {{"Garden tools receipt"}}));
        QFile changed(letter);
        QVERIFY(changed.open(QIODevice::ReadWrite));
        QVERIFY(changed.setFileTime(QFileInfo(letter).lastModified().addSecs(5),
                                    QFileDevice::FileModificationTime));
        changed.close();
        started.clear();
        reading.refresh();
        QVERIFY(idle.wait(180000));
        QCOMPARE(started.size(), 1);
        QCOMPARE(started.first().first().toInt(), letterPage);
        QCOMPARE(found("northwind"), QList<qint32>{});
        QCOMPARE(found("receipt"), (QList<qint32>{pages.at(1), letterPage}));
        QCOMPARE(failed.size(), 0);
    }

    // The run ends during a look over many pages: the look stops at once instead of looking at
    // every page's file first (on a slow disk that is as long as the disk takes).
    void endingDuringALook()
    {
        TestHome home;
        FixtureStore store(home.home());
        const qint32 document = store.document(
            store.folder(store.drawer(store.cabinet("Home"), "Bills"), "Gas"), "Winter");
        store.db().execute(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) "
            "INSERT INTO Page (DocumentId, Name, PageNumber, ScanDate, Filetype) "
            "SELECT ?, '', i, '2026-03-14 09:30:00', 'JPG' FROM n",
            {document});
        const PagePaths paths(home.home());
        const QString indexPath = [&] {
            TextIndex index(home.path());
            index.open();
            return index.path();
        }();
        QElapsedTimer clock;
        clock.start();
        const auto whole = TextReading::lookOver(store.db().path(), indexPath, paths);
        const qint64 wholeLook = clock.elapsed();
        QVERIFY(whole.ok());
        QCOMPARE(whole.value().toRead.size(), 300000);

        auto reading = std::make_unique<TextReading>(store.db(), paths, "eng", workerCommand());
        QVERIFY(reading->start().ok());
        reading->refresh();
        clock.restart();
        reading.reset();
        const qint64 ending = clock.elapsed();
        // Stopped, the look has read one block of pages at most: far less than all of them.
        QVERIFY2(
            ending * 4 < wholeLook,
            qPrintable(
                QString("ended in %1 ms, a whole look takes %2 ms").arg(ending).arg(wholeLook)));
    }

    // Pages found by their text come back as their documents, in the order of their names; a
    // locked cabinet's only once it is open.
    void documentsOfThePages()
    {
        TestHome home;
        FixtureStore store(home.home());
        const qint32 open = store.cabinet("Home");
        const qint32 locked = store.cabinet("Private", "secret");
        const qint32 gas = store.folder(store.drawer(open, "Bills"), "Gas");
        const qint32 winter = store.document(gas, "Winter");
        const qint32 autumn = store.document(gas, "Autumn");
        const qint32 bank =
            store.document(store.folder(store.drawer(locked, "Bank"), "Loans"), "Mortgage");
        TextIndex index(home.path());
        index.open();
        const TextIndex::Stamp stamp{1, 1};
        index.put(store.page(winter, 1), stamp, boxed("Northwind invoice"));
        index.put(store.page(winter, 2), stamp, boxed("terms"));
        index.put(store.page(winter, 3), stamp, boxed("invoice total"));
        index.put(store.page(autumn, 1), stamp, boxed("invoice"));
        index.put(store.page(bank, 1), stamp, boxed("invoice for the loan"));
        const qint32 gone = store.page(autumn, 2);
        index.put(gone, stamp, boxed("invoice"));
        store.db().execute("DELETE FROM Page WHERE PageId = ?", {gone});

        CabinetLock locks(store.db());
        const PageWords invoice = PageWords::parse("invoice");
        QCOMPARE(shown(TextFind::documents(store.db(), index, invoice, locks)),
                 (QStringList{"Home/Bills/Gas/Autumn: 1", "Home/Bills/Gas/Winter: 1,3"}));
        QCOMPARE(shown(TextFind::documents(store.db(), index, PageWords::parse("nothing"), locks)),
                 QStringList{});
        locks.recordOpen(locked);
        QCOMPARE(shown(TextFind::documents(store.db(), index, invoice, locks)),
                 (QStringList{"Home/Bills/Gas/Autumn: 1", "Home/Bills/Gas/Winter: 1,3",
                              "Private/Bank/Loans/Mortgage: 1"}));
    }
};

QMR_TEST(TestPdfText)
#include "testpdftext.moc"
