#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "navharness.h"
#include "navigator/navdragdrop.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// The outcome of a drag over a point of a control, then maybe its drop.
struct DragOutcome
{
    bool enterAccepted = false;
    bool overAccepted = false;
    Qt::DropAction overAction = Qt::IgnoreAction;
    bool dropAccepted = false;
};

DragOutcome dragAndDrop(QWidget* viewport, const QPoint& at, const QMimeData* data,
                        bool drop = true, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction)
{
    DragOutcome outcome;
    QDragEnterEvent enter(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    outcome.enterAccepted = enter.isAccepted();
    if (!outcome.enterAccepted)
        return outcome;
    QDragMoveEvent move(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &move);
    outcome.overAccepted = move.isAccepted();
    outcome.overAction = move.dropAction();
    if (drop) {
        QDropEvent dropped(QPointF(at), actions, data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &dropped);
        outcome.dropAccepted = dropped.isAccepted();
    }
    return outcome;
}

QMimeData* filesData(const QStringList& files)
{
    auto* data = new QMimeData;
    QList<QUrl> urls;
    for (const QString& f : files)
        urls << QUrl::fromLocalFile(f);
    data->setUrls(urls);
    return data;
}

QString writeImage(const QTemporaryDir& dir, const QString& name, const char* format = nullptr)
{
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(QColor(200, 120, 40));
    const QString path = dir.filePath(name);
    image.save(path, format);
    return path;
}

NavDragDrop& dragDrop(NavHarness& h)
{
    return h.window->dragDrop();
}

// Drops `data` on a point of a control, which must take it, and waits for the drop's work.
void dropAndWait(NavHarness& h, QWidget* viewport, const QPoint& at, const QMimeData* data)
{
    QSignalSpy done(&dragDrop(h), &NavDragDrop::dropDone);
    QVERIFY(dragAndDrop(viewport, at, data).dropAccepted);
    QTRY_COMPARE(done.size(), 1);
}

} // namespace

class TestDragDrop : public QObject
{
    Q_OBJECT
private slots:
    void filesDropped()
    {
        SampleWindow h({"CAB1", "DRW1"});
        QTemporaryDir outside;
        const QString jpeg = writeImage(outside, QStringLiteral("Bob's \"first\" 100%.jpg"));
        const QString tif = outside.filePath(QStringLiteral("drawing.tif"));
        QFile(tif).open(QIODevice::WriteOnly);
        std::unique_ptr<QMimeData> data(filesData({jpeg, tif}));
        QSignalSpy done(&dragDrop(h), &NavDragDrop::dropDone);

        const DragOutcome o = dragAndDrop(h.tree()->viewport(), h.nodePoint("DOC2"), data.get());

        QVERIFY(o.overAccepted);
        QCOMPARE(o.overAction, Qt::CopyAction);
        QVERIFY(o.dropAccepted);
        // The selection followed the pointer onto the target.
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DOC2"));
        QTRY_COMPARE(done.size(), 1);
        // The pages are made as TestPageFiles::dropIntoADocument checks; they are on show.
        QCOMPARE(h.session->pages().count(2), 2);
        QVERIFY(h.window->pageList()->isVisible());
        QCOMPARE(h.window->pageList()->documentId(), 2);
        QCOMPARE(h.pageTexts(), (QStringList{"drawing.tif", "Page 1"}));
        QMR_VERIFY_PROMPTS(h);

        // Files dropped on a folder make one document of them there.
        data.reset(filesData({writeImage(outside, "a.jpg"), writeImage(outside, "b.bmp", "BMP"),
                              writeImage(outside, "c.jpeg", "JPG")}));
        dropAndWait(h, h.tree()->viewport(), h.nodePoint("FLD2"), data.get());
        const QVector<ItemRow> made = h.session->items().children(Level::Document, 2);
        QCOMPARE(made.size(), 1);
        const QString key = QStringLiteral("DOC%1").arg(made.first().id);
        QCOMPARE(h.tree()->parentKey(key), QStringLiteral("FLD2"));
        QCOMPARE(h.tree()->selectedKey(), key);
        QCOMPARE(h.pageTexts(), (QStringList{"Page 1", "Page 2", "Page 3"}));

        // Refused, from the pointer on: files on a drawer (which targets take files is
        // TestItemMover::rules'), files that can only be moved, and a path as text.
        const qint64 pages = h.session->pages().countAll();
        const auto refused = [&](const QMimeData* what, const char* key, Qt::DropActions how) {
            const DragOutcome o =
                dragAndDrop(h.tree()->viewport(), h.nodePoint(key), what, true, how);
            return !o.overAccepted && !o.dropAccepted;
        };
        data.reset(filesData({jpeg}));
        QVERIFY(refused(data.get(), "DRW1", Qt::CopyAction | Qt::MoveAction));
        QVERIFY(refused(data.get(), "DOC1", Qt::MoveAction));
        QMimeData text;
        text.setText(jpeg);
        QVERIFY(refused(&text, "DOC1", Qt::CopyAction));
        QVERIFY(!dragAndDrop(h.tree()->viewport(), h.nodePoint("DOC1"), &text).enterAccepted);
        QCoreApplication::processEvents(); // a drop's work runs queued
        QCOMPARE(h.session->pages().countAll(), pages);
    }

    void aDrawerMovedKeepsItsNodes()
    {
        SampleWindow h({"CAB1", "DRW1"});
        h.tree()->node("DRW1")->setExpanded(true);
        h.tree()->node("FLD1")->setExpanded(true);
        const QStringList folders = h.childKeys("DRW1");
        h.tree()->setCurrentItem(h.tree()->node("DRW1"));
        QVERIFY(dragDrop(h).beginDrag(DropSource::Tree));
        std::unique_ptr<QMimeData> data(dragDrop(h).dragData());
        h.choosers.queuePassword(QStringLiteral("secret"));
        QSignalSpy done(&dragDrop(h), &NavDragDrop::dropDone);
        const DragOutcome o = dragAndDrop(h.tree()->viewport(), h.nodePoint("CAB2"), data.get());

        QVERIFY(o.overAccepted);
        QCOMPARE(o.overAction, Qt::MoveAction);
        QVERIFY(o.dropAccepted);
        QVERIFY(!dragDrop(h).isDragging());
        QTRY_COMPARE(done.size(), 1);
        QCOMPARE(h.choosers.passwordAsks(), 1);
        QCOMPARE(h.session->items().cabinetOfDrawer(1), 2);
        QCOMPARE(h.tree()->parentKey("DRW1"), QStringLiteral("CAB2"));
        // Moved, not rebuilt: its folders, documents and open nodes are as they were.
        QCOMPARE(h.childKeys("DRW1"), folders);
        QVERIFY(h.tree()->node("DRW1")->isExpanded());
        QVERIFY(h.tree()->node("FLD1")->isExpanded());
        QCOMPARE(h.tree()->parentKey("DOC1"), QStringLiteral("FLD1"));
        QVERIFY(!h.childKeys("CAB1").contains("DRW1"));
        // The cabinet's own drawer is there beside it, sorted by name.
        QCOMPARE(h.childTexts("CAB2"), (QStringList{"Bank", "Health"}));

        // What never drags (the rule is TestItemMover::rules'): the roots, a cabinet, found
        // items, and the pages of a found document on show.
        h.addFoundBranch();
        for (const char* key : {"ROOT", "CAB1", "FDW1", "FDC1"}) {
            h.tree()->setCurrentItem(h.tree()->node(key));
            QVERIFY2(!dragDrop(h).beginDrag(DropSource::Tree), key);
            QVERIFY(!dragDrop(h).isDragging());
        }
        h.navigator().showPagesInListView(1, true);
        QVERIFY(h.window->pageList()->list()->selectPage(1));
        QVERIFY(!dragDrop(h).beginDrag(DropSource::PageList));
        QVERIFY(!dragDrop(h).isDragging());
    }

    void pagesAndDocumentsMoved()
    {
        SampleWindow h({"CAB1", "DRW2", "DRW1", "DOC1"});
        QCOMPARE(h.pageTexts(), (QStringList{"Page 1", "Page 2"}));
        PageListView* pages = h.window->pageList()->list();
        pages->selectPage(2);
        QVERIFY(dragDrop(h).beginDrag(DropSource::PageList));
        std::unique_ptr<QMimeData> data(dragDrop(h).dragData());
        // Not onto the page list itself.
        QWidget* pageViewport = pages->currentView()->viewport();
        QVERIFY(!dragAndDrop(pageViewport, QPoint(10, 10), data.get(), false).overAccepted);
        dropAndWait(h, h.tree()->viewport(), h.nodePoint("DOC3"), data.get());
        QCOMPARE(h.session->pages().documentOf(2), 3);
        QCOMPARE(h.session->pages().page(2)->pageNumber, 2);
        QCOMPARE(h.pageTexts(), QStringList{"Page 1"});
        // The tree is back on the document on show.
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DOC1"));

        // Over the list, the selection follows valid targets: the list shows Taxes' folders
        // and a document of the tree is dragged over them.
        h.click("DRW2");
        h.tree()->setCurrentItem(h.tree()->node("DOC1"));
        QVERIFY(dragDrop(h).beginDrag(DropSource::Tree));
        data.reset(dragDrop(h).dragData());
        ContainerList* list = h.window->list();
        QListWidgetItem* item = list->itemOf(NodeKey::parse("FLD3"));
        QVERIFY(item);
        list->setCurrentItem(nullptr);
        QSignalSpy done(&dragDrop(h), &NavDragDrop::dropDone);
        QVERIFY(dragAndDrop(list->viewport(), list->visualItemRect(item).center(), data.get())
                    .dropAccepted);
        QCOMPARE(list->selectedKey().text(), QStringLiteral("FLD3"));
        QTRY_COMPARE(done.size(), 1);
        QCOMPARE(h.session->items().folderOfDocument(1), 3);
        QCOMPARE(h.tree()->parentKey("DOC1"), QStringLiteral("FLD3"));
        // The list is not redrawn by a move.
        QCOMPARE(h.listTexts(), QStringList{"2025"});
    }
};

QMR_TEST(TestDragDrop)
#include "testdragdrop.moc"
