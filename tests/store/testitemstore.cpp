#include <QTest>

#include "core/progress.h"
#include "store/itemstatistics.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "store/storeerror.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::row;

namespace {

// Counts what a long operation reports.
class CountingProgress : public Progress
{
public:
    void start(const QString& t, int minimum, int maximum) override
    {
        title = t;
        min = minimum;
        max = maximum;
        ++starts;
    }
    void step(const QString&) override { ++steps; }
    void end() override { ++ends; }
    void showCancel() override {}
    bool stopped() const override { return false; }
    QString title;
    int min = 0, max = 0, starts = 0, steps = 0, ends = 0;
};

QList<int> numbersInIdOrder(Database& db, qint32 documentId)
{
    const Recordset rs = db.openRecordset(
        "SELECT PageNumber FROM Page WHERE DocumentId = ? ORDER BY PageId", {documentId});
    QList<int> numbers;
    for (int i = 0; i < rs.recordCount(); ++i)
        numbers << rs.integer(i, "PageNumber");
    return numbers;
}

} // namespace

class TestItemStore : public QObject
{
    Q_OBJECT
private slots:
    void repaginate_data()
    {
        QTest::addColumn<QVariantList>("numbers"); // in PageId order; invalid means Null
        QTest::addColumn<QList<int>>("expected");  // in PageId order
        row("2 5 5 9", QVariantList{2, 5, 5, 9}, QList<int>{1, 2, 3, 4});
        row("reversed", QVariantList{9, 5, 2}, QList<int>{3, 2, 1});
        row("ties by id", QVariantList{4, 4, 4}, QList<int>{1, 2, 3});
        row("null first", QVariantList{1, QVariant(), 2}, QList<int>{2, 1, 3});
        row("one", QVariantList{7}, QList<int>{1});
    }
    void repaginate()
    {
        const auto [numbers, expected] =
            test::fetch<QVariantList, QList<int>>("numbers", "expected");
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 doc = store.document(1, "Doc");
        const qint32 other = store.document(1, "Other");
        store.pageRow(other, 5);
        for (const QVariant& n : numbers)
            store.pageRow(doc, n);
        CountingProgress progress;
        PageStore(store.db()).repaginateDocument(doc, "Doc", progress);
        QCOMPARE(numbersInIdOrder(store.db(), doc), expected);
        QCOMPARE(numbersInIdOrder(store.db(), other), QList<int>{5}); // untouched
        QCOMPARE(progress.title, QStringLiteral("Repaginate Doc"));
        QCOMPARE(progress.max, 2 * int(numbers.size()));
        QCOMPARE(progress.steps, 2 * int(numbers.size()));
        QCOMPARE(progress.ends, 1);
    }

    void parentsAndChildren()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 cab = store.cabinet("C");
        const qint32 drw = store.drawer(cab, "D");
        const qint32 fld = store.folder(drw, "F");
        const qint32 doc = store.document(fld, "Doc", QDate(2026, 1, 2));
        const qint32 pag = store.pageRow(doc, 1);
        ItemStore items(store.db());
        QCOMPARE((QList<qint32>{items.cabinetOfDrawer(drw), items.drawerOfFolder(fld),
                                items.folderOfDocument(doc), items.documentOfPage(pag)}),
                 (QList<qint32>{cab, drw, fld, doc}));
        // A dangling id answers -1 instead of failing.
        QCOMPARE(items.folderOfDocument(9999), -1);
        QCOMPARE(items.parentOf(Level::Cabinet, cab), -1);

        const qint32 second = store.drawer(cab, "b second");
        const qint32 first = store.drawer(cab, "A first");
        const QVector<ItemRow> drawers = items.children(Level::Drawer, cab);
        QCOMPARE(drawers.size(), 3);
        QCOMPARE((QStringList{drawers.at(0).name, drawers.at(1).name}),
                 (QStringList{"A first", "b second"}));
        QCOMPARE((QList<qint32>{drawers.at(0).id, drawers.at(1).id}),
                 (QList<qint32>{first, second}));
        QCOMPARE(items.children(Level::Document, fld).at(0).date, QDate(2026, 1, 2));
        QCOMPARE(items.item(Level::Folder, 777).id, -1);

        // Each level's own fields, and no other level's.
        QCOMPARE(items.fields(Level::Document, doc)->dateOnDocument, QDate(2026, 1, 2));
        QCOMPARE(items.fields(Level::Drawer, drw)->name, QStringLiteral("D"));
        store.db().execute("UPDATE Cabinet SET Storage = 1 WHERE CabinetId = ?", {cab});
        QCOMPARE(items.fields(Level::Cabinet, cab)->storage, 1);
        QCOMPARE(items.manifest(Level::Cabinet, cab).name, QStringLiteral("C"));
        QCOMPARE(items.manifest(Level::Folder, 777).id, -1);
        // A document's manifest holds its date and amount when it has them, and only then.
        const qint32 undated = store.document(fld, "Undated");
        items.setDocumentManifest(doc, QDate(2026, 1, 3), "Gas", 12.5);
        const ItemManifest dated = items.manifest(Level::Document, doc);
        QCOMPARE(dated.dateOnDocument, std::optional<QDate>(QDate(2026, 1, 3)));
        QCOMPARE(dated.amount, std::optional<double>(12.5));
        QCOMPARE(dated.description, std::optional<QString>("Gas"));
        store.db().execute("UPDATE Document SET DateOnDocument = NULL, Amount = NULL WHERE "
                           "DocumentId = ?",
                           {undated});
        QVERIFY(!items.manifest(Level::Document, undated).dateOnDocument);
        QVERIFY(!items.manifest(Level::Document, undated).amount);
        const PageStore pages(store.db());
        QVERIFY(!pages.page(pag)->hasFileSize);
        store.db().execute("UPDATE Page SET FileSize = 0 WHERE PageId = ?", {pag});
        QVERIFY(pages.page(pag)->hasFileSize);
        QVERIFY(!pages.page(9999));
        QCOMPARE(pages.page(pag)->fileType, QStringLiteral("JPG"));
        QCOMPARE(pages.page(pag)->scanDate, QDate(2026, 3, 14));
        // Neighbours in page order: by number, then by id among equal numbers.
        const qint32 twin = store.pageRow(doc, 1), last = store.pageRow(doc, 2);
        QCOMPARE(pages.previousPageId(doc, 2, last), twin);
        QCOMPARE(pages.previousPageId(doc, 1, twin), pag);
        QCOMPARE(pages.previousPageId(doc, 1, pag), -1);
        QCOMPARE(pages.nextPageId(doc, 1, pag), last);
        QCOMPARE(pages.nextPageId(doc, 2, last), -1);
        PageStore(store.db()).deletePage(twin);
        PageStore(store.db()).deletePage(last);
        QCOMPARE(pages.pagesInRange(doc, 1, 1).size(), 1);
        // What lies below the cabinet: every level counted, the amount summed.
        const Statistics below = ItemStatistics(store.db()).of(Level::Cabinet, cab);
        QCOMPARE(below.count(Level::Drawer), 3);
        QCOMPARE(below.count(Level::Document), 2);
        QCOMPARE(below.count(Level::Page), 1);
        QCOMPARE(below.amount, 12.5);
        const Recordset rs = store.db().openRecordset("SELECT Name FROM Cabinet", {});
        QVERIFY_THROWS_EXCEPTION(StoreError, rs.value(rs.recordCount(), 0));
        QVERIFY_THROWS_EXCEPTION(StoreError, rs.value(0, 1)); // one column: 0 only
        // A document with no pages is not repaginated at all.
        CountingProgress progress;
        PageStore(store.db()).repaginateDocument(42, "None", progress);
        QCOMPARE(progress.starts, 0);
    }
};

QMR_TEST(TestItemStore)
#include "testitemstore.moc"
