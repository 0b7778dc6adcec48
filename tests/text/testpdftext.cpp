#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "core/pagewords.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testpdfs.h"
#include "tests/support/testrunner.h"
#include "text/pdftext.h"
#include "text/textreading.h"
#include "text/textworker.h"

using namespace qmr;
using namespace qmr::test;

namespace {

const QList<QStringList> kLetter = {{"Northwind heating invoice", "Account 4471"},
                                    {"Water meter reading"}};

QStringList wordsOf(const QList<QStringList>& pages)
{
    QStringList words;
    for (const QStringList& lines : pages)
        for (const QString& line : lines)
            words << line.split(' ');
    return words;
}

// A shortcut page in `document` that points at `file`.
qint32 shortcutTo(FixtureStore& store, qint32 document, int number, const QString& file)
{
    const qint32 id = store.pageRow(document, number);
    store.db().execute("UPDATE Page SET ShortcutYN = 'Y', Filename = ? WHERE PageId = ?",
                       {file, id});
    return id;
}

} // namespace

// A PDF kept as a shortcut gives its words from its own text layer; one that cannot be read
// gives none and no error.
class TestPdfText : public QObject
{
    Q_OBJECT
private slots:
    void wordsOfTheTextLayer_data()
    {
        columns<QString>({"kind"});
        row("printed", QString("printed"));
        for (const QString& kind : TestPdfs::refusedKinds())
            row(qPrintable(kind), kind);
    }
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
        QCOMPARE(texts, printed ? wordsOf(kLetter) : QStringList());
        if (!printed)
            return;
        // Boxes in points, the second page below the first: a word follows the one before it
        // on its line, and the next line is lower.
        const qreal a4Height = 842;
        for (const TextIndex::Word& word : words)
            QVERIFY2(!word.box.isEmpty(), qPrintable(word.text));
        QVERIFY(words.at(1).box.left() > words.at(0).box.right());
        QVERIFY2(words.at(1).box.top() < words.at(0).box.bottom() &&
                     words.at(0).box.top() < words.at(1).box.bottom(),
                 qPrintable(QString("%1 %2 %3 %4")
                                .arg(words.at(0).box.top())
                                .arg(words.at(0).box.bottom())
                                .arg(words.at(1).box.top())
                                .arg(words.at(1).box.bottom())));
        QVERIFY(words.at(3).box.top() > words.at(0).box.bottom());
        QVERIFY(words.at(3).box.bottom() < a4Height);
        QVERIFY(words.at(5).box.top() > a4Height);
    }

    // The reading of a store's pages takes a PDF shortcut's words from the file, keeps the
    // file's stamp, and reads it again once it changes; a file that gives no words has an
    // entry without any and is left alone until it changes.
    void shortcutsAreReadFromTheirPdf()
    {
        TestHome home;
        FixtureStore store(home.home());
        const qint32 document = store.document(
            store.folder(store.drawer(store.cabinet("Home"), "Bills"), "Gas"), "Winter");
        const QString letter = home.file("elsewhere/letter.pdf");
        QVERIFY(QDir().mkpath(home.file("elsewhere")));
        QVERIFY(TestPdfs::printed(letter, kLetter));
        const qint32 letterPage = shortcutTo(store, document, 1, letter);
        QList<qint32> refusedPages;
        for (const QString& kind : TestPdfs::refusedKinds()) {
            const QString file = home.file("elsewhere/" + kind + ".pdf");
            QVERIFY(TestPdfs::refused(kind, file));
            refusedPages << shortcutTo(store, document, int(refusedPages.size()) + 2, file);
        }
        const PagePaths paths(home.home());
        TextReading reading(store.db(), paths, "eng",
                            {QCoreApplication::applicationFilePath(), TextWorker::kOption});
        QVERIFY(reading.start().ok());
        QSignalSpy idle(reading.reader(), &TextReader::idle);
        QSignalSpy started(reading.reader(), &TextReader::pageStarted);
        QSignalSpy failed(reading.reader(), &TextReader::failed);
        QVERIFY(idle.wait(180000));
        const auto found = [&](const QString& typed) {
            return reading.index().pagesWith(PageWords::parse(typed));
        };
        QCOMPARE(found("northwind"), QList<qint32>{letterPage});
        QCOMPARE(found("\"meter reading\""), QList<qint32>{letterPage});
        QCOMPARE(found("4471"), QList<qint32>{letterPage});
        QCOMPARE(reading.index().entry(letterPage)->stamp, TextIndex::Stamp::of(letter));
        for (const qint32 page : refusedPages) {
            const std::optional<TextIndex::Entry> entry = reading.index().entry(page);
            QVERIFY(entry);
            QCOMPARE(entry->state, TextIndex::State::Read);
            QCOMPARE(reading.index().textOf(page), QString());
        }
        QCOMPARE(failed.size(), 0);

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
        QCOMPARE(found("receipt"), QList<qint32>{letterPage});
        QCOMPARE(failed.size(), 0);
    }
};

QMR_TEST(TestPdfText)
#include "testpdftext.moc"
