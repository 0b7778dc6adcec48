#include <QCoreApplication>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

#include "core/pagewords.h"
#include "store/database.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/textreader.h"
#include "text/textworker.h"

using namespace qmr;
using namespace qmr::test;

// This executable becomes the reading worker when it is started as one.
QMR_TEST_PROGRAM_MODE(TextWorker, TextWorker::kOption, &TextWorker::run)

namespace {

// Reading a page takes a second or two; a run that has not ended after this has hung.
constexpr int kPatienceMs = 180000;

QStringList workerCommand(const QString& languages = "eng")
{
    return {QCoreApplication::applicationFilePath(), TextWorker::kOption, languages};
}

} // namespace

class TestTextReader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QList<TextReader::Page> m_pages;

    QList<int> pagesWith(TextIndex& index, const QString& typed)
    {
        return index.pagesWith(PageWords::parse(typed));
    }

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
    // gone is read as a page without words.
    void readsEveryPage()
    {
        QTemporaryDir home;
        TextIndex index(home.path());
        index.open();
        TextReader reader(index, workerCommand());
        QSignalSpy progress(&reader, &TextReader::progress);
        QSignalSpy idle(&reader, &TextReader::idle);
        reader.enqueue(m_pages);
        reader.enqueue(m_pages.mid(0, 1)); // already waiting
        QVERIFY(idle.wait(kPatienceMs));
        QCOMPARE(progress.last(), (QVariantList{5, 5}));
        QCOMPARE(pagesWith(index, "harbour"), QList<int>{5});
        QCOMPARE(pagesWith(index, "northwind invoice"), QList<int>{1});
        QCOMPARE(pagesWith(index, "\"meter reading\""), QList<int>{2});
        QCOMPARE(pagesWith(index, "receipt"), QList<int>{3});
        QCOMPARE(index.entry(2)->stamp, TextIndex::Stamp::of(m_pages.at(1).path));
        QCOMPARE(index.entry(4)->state, TextIndex::State::Read);
        QCOMPARE(index.textOf(4), QString());
        QVERIFY(reader.isIdle());
    }

    // A worker that ends on a page is started again for it; ended twice there, the page is
    // marked unreadable and the pages after it are still read.
    void aPageThatEndsTheWorkerTwiceIsSkipped()
    {
        QTemporaryDir home;
        TextIndex index(home.path());
        index.open();
        TextReader reader(index, workerCommand());
        int kills = 0;
        connect(&reader, &TextReader::pageStarted, this, [&](int pageId, qint64 worker) {
            if (pageId == 2) {
                ++kills;
                ::kill(pid_t(worker), SIGKILL);
            }
        });
        QSignalSpy unreadable(&reader, &TextReader::pageUnreadable);
        QSignalSpy idle(&reader, &TextReader::idle);
        for (int i = 0; i < 2; ++i)
            QTest::ignoreMessage(QtWarningMsg, "The text worker ended while reading page 2");
        reader.enqueue(m_pages.mid(0, 3));
        QVERIFY(idle.wait(kPatienceMs));
        QCOMPARE(kills, 2);
        QCOMPARE(unreadable.size(), 1);
        const TextIndex::Entry skipped = *index.entry(2);
        QCOMPARE(skipped.state, TextIndex::State::Unreadable);
        QCOMPARE(skipped.workerEnds, 2);
        QCOMPARE(pagesWith(index, "northwind"), QList<int>{1});
        QCOMPARE(pagesWith(index, "receipt"), QList<int>{3});
        QCOMPARE(pagesWith(index, "water"), QList<int>{});
    }

    // An index that refuses what was read stops the reading with a message, not the program.
    void anIndexThatRefusesStopsTheReading()
    {
        QTemporaryDir home;
        TextIndex index(home.path());
        index.open();
        {
            Database other;
            other.open(index.path());
            other.execute("DROP TABLE PageText");
        }
        TextReader reader(index, workerCommand());
        QSignalSpy failed(&reader, &TextReader::failed);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("page text could not be kept"));
        reader.enqueue(m_pages.mid(0, 1));
        QVERIFY(failed.wait(kPatienceMs));
        QVERIFY2(
            failed.first().first().toString().startsWith("The text on the pages cannot be kept: "),
            qPrintable(failed.first().first().toString()));
    }

    // A missing language pack is said once, and nothing is marked: the pages wait, and are
    // read once languages that are there are chosen.
    void aMissingPackIsSaidOnceAndAnotherChoiceReads()
    {
        QTemporaryDir home;
        TextIndex index(home.path());
        index.open();
        TextReader reader(index, workerCommand("xyz"));
        QSignalSpy failed(&reader, &TextReader::failed);
        reader.enqueue(m_pages.mid(0, 2));
        QVERIFY(failed.wait(kPatienceMs));
        QCOMPARE(failed.first().first().toString(),
                 QString("The language pack for xyz is not installed; text on the pages is not "
                         "read until it is."));
        QVERIFY(!reader.isIdle());
        QCOMPARE(index.pages(), QList<int>{});

        QSignalSpy idle(&reader, &TextReader::idle);
        reader.setWorker(workerCommand("eng"));
        QVERIFY(idle.wait(kPatienceMs));
        QCOMPARE(failed.size(), 1);
        QCOMPARE(pagesWith(index, "northwind"), QList<int>{1});
        QCOMPARE(pagesWith(index, "meter"), QList<int>{2});
    }
};

QMR_TEST(TestTextReader)
#include "testtextreader.moc"
