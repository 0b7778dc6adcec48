#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include "core/pagewords.h"
#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/textreading.h"
#include "text/textworker.h"

using namespace qmr;
using namespace qmr::test;

// The pages of a store are read, and read again when their files change or they go.
class TestTextReading : public QObject
{
    Q_OBJECT
private slots:
    void followsTheStore()
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
        TextReading reading(store.db(), paths, "eng",
                            {QCoreApplication::applicationFilePath(), TextWorker::kOption});
        QVERIFY(reading.start().ok());
        QSignalSpy idle(reading.reader(), &TextReader::idle);
        QVERIFY(idle.wait(180000));
        const auto found = [&](const QString& typed) {
            return reading.index().pagesWith(PageWords::parse(typed));
        };
        QCOMPARE(found("northwind"), QList<qint32>{pages.at(0)});
        QCOMPARE(found("meter"), QList<qint32>{pages.at(1)});

        // The second page is scanned anew, the first taken out; a page that comes in has the
        // pages looked over again.
        QVERIFY(printedPage({"Garden tools receipt"}).save(paths.pagePath(pages.at(1), ""), "JPG"));
        PageStore(store.db()).removeRow(pages.at(0));
        reading.pageAdded(pages.at(1));
        QVERIFY(idle.wait(180000));
        QCOMPARE(found("northwind"), QList<qint32>{});
        QCOMPARE(found("meter"), QList<qint32>{});
        QCOMPARE(found("receipt"), QList<qint32>{pages.at(1)});
        QCOMPARE(reading.index().pages(), QList<qint32>{pages.at(1)});
    }
};

QMR_TEST(TestTextReading)
#include "testtextreading.moc"
