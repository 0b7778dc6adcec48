#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

#include "core/pagewords.h"
#include "store/database.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/textreader.h"
#include "text/textworker.h"
#include "text/unreadpages.h"

using namespace qmr;
using namespace qmr::test;

// This executable becomes the reading worker when it is started as one.
QMR_TEST_PROGRAM_MODE(TextWorker, TextWorker::kOption, &TextWorker::run)

namespace {

// Reading a page takes a second or two; a run that has not ended after this has hung.
constexpr int kPatienceMs = 180000;

} // namespace

// A text index of its own, with a reader on it that starts the worker for `languages`.
struct ReaderBench
{
    QTemporaryDir home;
    TextIndex index{home.path()};
    std::unique_ptr<TextReader> reader;

    explicit ReaderBench(const QString& languages = "eng",
                         std::chrono::milliseconds pageTimeLimit = TextReader::kPageTimeLimit)
    {
        index.open();
        reader =
            std::make_unique<TextReader>(index, workerCommand({languages}), nullptr, pageTimeLimit);
    }
    QList<int> pagesWith(const QString& typed) { return index.pagesWith(PageWords::parse(typed)); }
};

class TestTextReader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QList<TextReader::Page> m_pages;

private slots:
    void initTestCase()
    {
        const QStringList texts = {"Northwind heating invoice", "Water meter reading",
                                   "Garden tools receipt"};
        for (int i = 0; i < texts.size(); ++i) {
            const QString path = m_home.filePath(QString("%1.png").arg(i + 1));
            QVERIFY(printedPage({texts.at(i)}).save(path));
            m_pages << TextReader::Page{i + 1, path};
        }
        m_pages << TextReader::Page{4, m_home.filePath("gone.png")};
        // A name with a tab and a line break, which the worker's requests must carry whole.
        const QString odd = m_home.filePath("harbour\ttoll\nticket.png");
        QVERIFY(printedPage({"Harbour toll ticket"}).save(odd, "PNG"));
        m_pages << TextReader::Page{5, odd};
    }

    // Every page is read by the worker and kept with the stamp of its file; a file that is
    // gone is read as a page without words. A worker that ends on a page, or hangs there past
    // the page time limit, is started again for it; ended twice there, the page is marked
    // unreadable and the pages after it are still read.
    void readsEveryPage_data()
    {
        columns<bool, bool>({"hangs", "newLanguages"});
        row("the worker is killed on page 2", false, false);
        row("the worker hangs on page 2", true, false);
        // The worker that reads then is to end after its page: a hang still ends it.
        row("the worker hangs on page 2 as the languages change", true, true);
    }
    void readsEveryPage()
    {
        QFETCH(bool, hangs);
        QFETCH(bool, newLanguages);
        // Far above a page's reading time, even in a sanitized build on a busy machine.
        ReaderBench b("eng", hangs ? std::chrono::seconds(20) : TextReader::kPageTimeLimit);
        int kills = 0;
        connect(b.reader.get(), &TextReader::pageStarted, this, [&](int pageId, qint64 worker) {
            if (pageId == 2) {
                if (newLanguages && kills == 0)
                    b.reader->setWorker(workerCommand({"eng"}));
                ++kills;
                ::kill(pid_t(worker), hangs ? SIGSTOP : SIGKILL);
            }
        });
        for (int i = 0; hangs && i < 2; ++i)
            QTest::ignoreMessage(QtWarningMsg, "The text worker took too long over page 2");
        QSignalSpy unreadable(b.reader.get(), &TextReader::pageUnreadable);
        QSignalSpy progress(b.reader.get(), &TextReader::progress);
        QSignalSpy idle(b.reader.get(), &TextReader::idle);
        for (int i = 0; i < 2; ++i)
            QTest::ignoreMessage(QtWarningMsg, "The text worker ended while reading page 2");
        b.reader->enqueue(m_pages);
        b.reader->enqueue(m_pages.mid(0, 1)); // already waiting
        QVERIFY(idle.wait(kPatienceMs));
        QCOMPARE(progress.last(), (QVariantList{5, 5}));
        QCOMPARE(b.pagesWith("harbour"), QList<int>{5});
        QCOMPARE(b.pagesWith("northwind invoice"), QList<int>{1});
        QCOMPARE(b.pagesWith("receipt"), QList<int>{3});
        QCOMPARE(b.index.entry(3)->stamp, TextIndex::Stamp::of(m_pages.at(2).path));
        QCOMPARE(b.index.entry(4)->state, TextIndex::State::Read);
        QCOMPARE(b.index.textOf(4), QString());
        QVERIFY(b.reader->isIdle());
        QCOMPARE(kills, 2);
        QCOMPARE(unreadable.size(), 1);
        const TextIndex::Entry skipped = *b.index.entry(2);
        QCOMPARE(skipped.state, TextIndex::State::Unreadable);
        QCOMPARE(skipped.workerEnds, 2);
        QCOMPARE(b.pagesWith("water"), QList<int>{});
    }

    // An index that refuses what was read stops the reading with a message, not the program.
    void anIndexThatRefusesStopsTheReading()
    {
        ReaderBench b;
        {
            Database other;
            other.open(b.index.path());
            other.execute("DROP TABLE PageText");
        }
        QSignalSpy failed(b.reader.get(), &TextReader::failed);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("page text could not be kept"));
        b.reader->enqueue(m_pages.mid(0, 1));
        QVERIFY(failed.wait(kPatienceMs));
        QVERIFY2(
            failed.first().first().toString().startsWith("The text on the pages cannot be kept: "),
            qPrintable(failed.first().first().toString()));
    }

    // A missing language pack is said once, and nothing is marked: the pages wait, and are
    // read once languages that are there are chosen.
    void aMissingPackIsSaidOnceAndAnotherChoiceReads()
    {
        ReaderBench b("eng+xyz");
        QSignalSpy failed(b.reader.get(), &TextReader::failed);
        b.reader->enqueue(m_pages.mid(0, 2));
        QVERIFY(failed.wait(kPatienceMs));
        QCOMPARE(failed.first().first().toString(),
                 QString("The language pack for xyz is not installed; text on the pages is not "
                         "read until it is."));
        QVERIFY(!b.reader->isIdle());
        QCOMPARE(b.index.pages(), QList<int>{});

        QSignalSpy idle(b.reader.get(), &TextReader::idle);
        b.reader->setWorker(workerCommand({"eng"}));
        QVERIFY(idle.wait(kPatienceMs));
        QCOMPARE(failed.size(), 1);
        QCOMPARE(b.pagesWith("northwind"), QList<int>{1});
        QCOMPARE(b.pagesWith("\"meter reading\""), QList<int>{2});
    }

    // Which pages a sweep of the store sends to be read, and which entries it finds gone: those
    // of pages that the store no longer has.
    void sweep_data()
    {
        columns<QString, QString, QList<int>>({"entry", "file", "read"});
        row("no entry", "", "same", QList<int>{1});
        row("no entry, no file", "", "gone", QList<int>{1});
        row("read from this file", "read", "same", QList<int>{});
        row("read, the file changed since", "read", "changed", QList<int>{1});
        row("read, the file is gone", "read", "gone", QList<int>{1});
        row("unreadable, the file is the same", "unreadable", "same", QList<int>{});
        row("unreadable, the file changed since", "unreadable", "changed", QList<int>{1});
        row("a worker ended on it once", "ended", "same", QList<int>{1});
    }
    void sweep()
    {
        const auto [entry, file] = fetch<QString, QString>("entry", "file");
        QTemporaryDir dir;
        const QString path = dir.filePath("1.png");
        QFile page(path);
        QVERIFY(page.open(QIODevice::WriteOnly));
        page.write("picture");
        page.close();
        const TextIndex::Stamp stamp = TextIndex::Stamp::of(path);
        // Entries 9 and 2 are of pages the store no longer has.
        QHash<int, TextIndex::Entry> entries{{9, {}}, {2, {}}};
        const QHash<QString, TextIndex::Entry> kept{
            {"read", {stamp, TextIndex::State::Read, 0}},
            {"unreadable", {stamp, TextIndex::State::Unreadable, 2}},
            {"ended", {stamp, TextIndex::State::Interrupted, 1}}};
        if (kept.contains(entry))
            entries.insert(1, kept.value(entry));
        if (file == "changed") {
            QVERIFY(page.open(QIODevice::Append));
            page.write(" and more");
            page.close();
        } else if (file == "gone") {
            QVERIFY(QFile::remove(path));
        }
        const UnreadPages::Sweep sweep = UnreadPages::of({{1, path}}, entries);
        QList<int> ids;
        for (const TextReader::Page& p : sweep.toRead)
            ids << p.id;
        QTEST(ids, "read");
        QCOMPARE(sweep.gone, (QList<int>{2, 9}));
    }
};

QMR_TEST(TestTextReader)
#include "testtextreader.moc"
