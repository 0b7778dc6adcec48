#include <QDir>
#include <QImage>
#include <QToolButton>
#include <QTreeView>

#include "core/pageopener.h"
#include "filing/defaultpageopener.h"
#include "navharness.h"
#include "navigator/shortcuticons.h"
#include "resources/navicons.h"
#include "tests/support/testpdfs.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// A page row whose picture is a dark JPEG of `size` at its computed path, with no thumbnail.
qint32 darkPage(NavHarness& h, FixtureStore& store, qint32 doc, int number,
                const QSize& size = QSize(850, 1100))
{
    const qint32 id = store.pageRow(doc, number);
    const QString file = PagePaths(h.home.home()).computedPagePath(id);
    QDir().mkpath(QFileInfo(file).path());
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(20, 20, 90));
    image.save(file, "JPG");
    return id;
}

// Shows a document of `pages` page rows numbered 1.., without files, in a folder of the
// sample, `perBlock` (the setting's text) at a time.
qint32 showBig(NavHarness& h, int pages, const QString& perBlock = QString())
{
    if (!perBlock.isEmpty())
        h.home.settings().set(keys::DisplayCount, perBlock);
    qint32 doc = -1;
    h.loadWith([&](FixtureStore& store) {
        doc = store.document(1, "Big");
        Database::Transaction tx(store.db());
        for (int n = 1; n <= pages; ++n)
            store.pageRow(doc, n);
        tx.commit();
    });
    h.clickPath({"CAB1", "DRW1", "FLD1", QString("DOC%1").arg(doc)});
    return doc;
}

QPushButton* button(NavHarness& h, const char* name)
{
    return h.window->findChild<QPushButton*>(name);
}

QString enabledButtons(NavHarness& h)
{
    QStringList on;
    for (const char* name : {"cmdFirst", "cmdPrev", "cmdNext", "cmdLast"})
        if (button(h, name)->isEnabled())
            on << name;
    return on.join(',');
}

QString status(NavHarness& h)
{
    return h.window->findChild<QLabel*>("lblStatus")->text();
}

QStringList pageRange(int from, int to)
{
    QStringList texts;
    for (int n = from; n <= to; ++n)
        texts << QString("Page %1").arg(n);
    return texts;
}

QImage iconImage(const PageListView* list, int row)
{
    return list->iconAt(row)
        .pixmap(QSize(100, 100))
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

// The share of pixels that are not fully transparent.
double coverage(const QImage& image)
{
    int painted = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            painted += qAlpha(image.pixel(x, y)) > 0;
    return double(painted) / (image.width() * image.height());
}

bool isWhite(QRgb pixel)
{
    return qGray(pixel) > 215;
}

class RecordingOpener : public PageOpener
{
public:
    void openPage(qint32 pageId) override { opened << pageId; }
    QVector<qint32> opened;
};

} // namespace

class TestPagePane : public QObject
{
    Q_OBJECT
private slots:
    void paging()
    {
        NavHarness h;
        const QString key = QString("DOC%1").arg(showBig(h, 25, "10"));
        QCOMPARE(status(h), QString(" Showing 10 images (page 1 of 3)"));
        QCOMPARE(h.pageTexts(), pageRange(1, 10));
        QCOMPARE(enabledButtons(h), QString("cmdNext,cmdLast"));
        // The blocks' arithmetic is TestPageTiles::steps'; here the buttons and keys reach it.
        button(h, "cmdNext")->click();
        QCOMPARE(h.pageTexts(), pageRange(11, 20));
        // The keys of the list act as the buttons do.
        for (const auto& [key, from, to] :
             {std::tuple{Qt::Key_End, 16, 25}, std::tuple{Qt::Key_PageUp, 7, 16},
              std::tuple{Qt::Key_PageDown, 17, 25}, std::tuple{Qt::Key_Home, 1, 10}}) {
            QTest::keyClick(h.pageView(), key);
            QCOMPARE(h.pageTexts(), pageRange(from, to));
            if (key == Qt::Key_End) {
                QCOMPARE(status(h), QString(" Showing 10 images (page 2 of 3)"));
                QCOMPARE(enabledButtons(h), QString("cmdFirst,cmdPrev"));
                QCOMPARE(h.navigator().target().source(), ContextSource::PageList);
            }
        }
        // Missing pictures leave blank tiles and say nothing.
        QVERIFY(thumbnailsDone(h));
        QMR_VERIFY_PROMPTS(h);
        // A document without pages leaves the buttons as they were.
        button(h, "cmdNext")->click();
        h.click("DOC2");
        QCOMPARE(status(h), QString());
        QVERIFY(h.pageTexts().isEmpty());
        QCOMPARE(enabledButtons(h), QString("cmdFirst,cmdPrev,cmdNext,cmdLast"));
        // Paging does not read the store again.
        h.click(key);
        h.session->db().execute("DELETE FROM Page");
        button(h, "cmdLast")->click();
        QCOMPARE(h.pageTexts(), pageRange(16, 25));
        button(h, "cmdShowMore")->click();
        QCOMPARE(h.pageTexts(), pageRange(16, 25));
        QCOMPARE(status(h), QString(" Showing 11 images (page 2 of 3)"));
        // The block's size is kept for the next start; its limits are TestPageTiles'.
        button(h, "cmdShowLess")->click();
        button(h, "cmdShowLess")->click();
        QCOMPARE(h.view->displayCount(), 9);
        QCOMPARE(h.home.settings().get(keys::DisplayCount), QString("9"));
    }

    void theListViewShowsTheWholeDocument()
    {
        NavHarness h;
        const qint32 doc = showBig(h, 120);
        button(h, "cmdNext")->click();
        QCOMPARE(status(h), QString(" Showing 20 images (page 2 of 6)"));

        h.window->findChild<QToolButton*>("imgList")->click();
        QCOMPARE(h.home.settings().get(keys::ThumbView), QString("list"));
        // The document is read again and the block is the first.
        QCOMPARE(status(h), QString(" Showing 20 images (page 1 of 6)"));
        const PageListView* list = h.window->pageList()->list();
        QCOMPARE(list->mode(), PageListView::Mode::List);
        QCOMPARE(list->count(), 120);
        // Sorted by number: 11 comes before 100.
        const QStringList texts = h.pageTexts();
        QCOMPARE(texts.mid(8, 4), QStringList({"9", "10", "11", "12"}));
        QCOMPARE(texts.last(), QString("120"));
        const qint32 first = list->pageIdAt(0);
        QCOMPARE(list->columnText(0, 1), PagePaths(h.home.home()).computedPagePath(first));
        QCOMPARE(list->columnText(0, 4), QString::number(first));
        QCOMPARE(list->columnText(0, 5), QString("01"));
        auto* details = h.window->findChild<QTreeView*>("lvwThumbDetails");
        QVERIFY(details->isVisible());
        QVERIFY(details->isColumnHidden(5));
        QCOMPARE(details->model()->headerData(0, Qt::Horizontal).toString(), QString("Page #"));
        // The buttons move the numbers only.
        button(h, "cmdNext")->click();
        QCOMPARE(status(h), QString(" Showing 20 images (page 2 of 6)"));
        QCOMPARE(list->count(), 120);

        auto* arrow = h.window->findChild<QLabel*>("imgArrowDown");
        auto* imgList = h.window->findChild<QToolButton*>("imgList");
        auto* imgThumbnail = h.window->findChild<QToolButton*>("imgThumbnail");
        QTRY_COMPARE(arrow->geometry().center().x(), imgList->geometry().center().x());
        imgThumbnail->click();
        QCOMPARE(h.home.settings().get(keys::ThumbView), QString("thumbnail"));
        QCOMPARE(list->mode(), PageListView::Mode::Thumbnails);
        QCOMPARE(h.pageTexts(), pageRange(1, 20));
        QTRY_COMPARE(arrow->geometry().center().x(), imgThumbnail->geometry().center().x());
        // A refresh shows the block of the page it names.
        const qint32 last = FixtureStore(h.home.home()).pageRow(doc, 121);
        h.navigator().refreshPages(doc, last);
        QCOMPARE(status(h), QString(" Showing 20 images (page 7 of 7)"));
        QCOMPARE(h.pageTexts(), QStringList{"Page 121"});
        QCOMPARE(h.window->pageList()->selectedPageIds(), QVector<qint32>{last});
    }

    // Thumbnails are made when the pane first shows their pages, without a message: a page
    // whose file has gone shows as missing; a PDF shortcut shows its first page, or its
    // type's icon when it cannot be drawn (which PDFs cannot is TestPageTiles').
    void tilesOnFirstDisplay()
    {
        NavHarness h;
        FixtureStore store(h.home.home());
        store.fillSample();
        const qint32 doc = store.document(1, "Scans");
        const qint32 wide = darkPage(h, store, doc, 1, QSize(1100, 550));
        const qint32 gone = store.pageRow(doc, 2);
        const qint32 tall = darkPage(h, store, doc, 3);
        const QStringList pdfs{h.home.file("printed.pdf"), h.home.file("garbage.pdf")};
        QVERIFY(TestPdfs::printed(pdfs[0], {{"Northwind", "heating"}, {"Second"}}));
        QVERIFY(TestPdfs::refused("garbage", pdfs[1]));
        shortcutPage(store, doc, 4, pdfs[0]);
        shortcutPage(store, doc, 5, pdfs[1]);
        h.load();
        h.clickPath({"CAB1", "DRW1", "FLD1", QString("DOC%1").arg(doc)});
        QVERIFY(thumbnailsDone(h));
        QCoreApplication::processEvents();
        QCOMPARE(h.pageTexts(),
                 QStringList({"Page 1", "Page 2", "Page 3", "printed.pdf", "garbage.pdf"}));
        const PagePaths paths(h.home.home());
        const PageListView* list = h.window->pageList()->list();
        for (const auto& [id, row] : {std::pair{wide, 0}, std::pair{tall, 2}}) {
            QCOMPARE(QImage(paths.computedThumbPath(id)).size(), QSize(100, 100));
            QVERIFY(!isWhite(iconImage(list, row).pixel(30, 30)));
        }
        QVERIFY(!QFile::exists(paths.computedThumbPath(gone)));
        QVERIFY(!isWhite(iconImage(list, 1).pixel(50, 50)));
        const QString tip =
            list->currentView()->model()->index(1, 0).data(Qt::ToolTipRole).toString();
        QVERIFY2(tip.contains("missing: " + paths.computedPagePath(gone)), qPrintable(tip));
        NavIcons icons;
        for (int i = 0; i < 2; ++i) {
            const QImage tile = iconImage(list, 3 + i);
            // Outside the middle, where an icon stands, a drawn page has its print.
            int darkOutside = 0;
            for (int y = 2; y < 98; ++y)
                for (int x = 2; x < 98; ++x)
                    darkOutside +=
                        (x < 30 || x >= 70 || y < 30 || y >= 70) && !isWhite(tile.pixel(x, y));
            QCOMPARE(darkOutside > 0, i == 0);
            const QImage generic = ShortcutIcons(icons.icon("page"))
                                       .tile(pdfs[i])
                                       .convertToFormat(QImage::Format_RGB32)
                                       .copy(1, 1, 98, 98);
            QCOMPARE(tile.copy(1, 1, 98, 98) == generic, i == 1);
        }
        QMR_VERIFY_PROMPTS(h);
    }

    void thePaneOnItsOwn_data()
    {
        columns<int, int, QString>({"key", "modifiers", "command"});
        const int ctrl = int(Qt::ControlModifier);
        row("I", int(Qt::Key_I), 0, "mnuPopupPageProperties");
        row("Ctrl+I", int(Qt::Key_I), ctrl, "mnuPopupPageProperties");
        row("R", int(Qt::Key_R), 0, "mnuPopupPageRenumber");
        row("Ctrl+X", int(Qt::Key_X), ctrl, "mnuPopupPageCut");
        row("X", int(Qt::Key_X), 0, "");
        row("Ctrl+C", int(Qt::Key_C), ctrl, "mnuPopupPageCopy");
        row("Ctrl+V", int(Qt::Key_V), ctrl, "mnuPopupPagePaste");
        row("V", int(Qt::Key_V), 0, "");
        row("Alt+R", int(Qt::Key_R), int(Qt::AltModifier), "");
    }
    void thePaneOnItsOwn()
    {
        const auto [key, modifiers] = fetch<int, int>("key", "modifiers");
        TestHome home;
        ViewSettings view(home.settings());
        view.read();
        NavIcons icons;
        const PagePaths paths(home.home());
        PagePane pane(icons, view, paths);
        QVector<PageRow> rows(3);
        for (int n = 1; n <= 3; ++n) {
            rows[n - 1].id = 10 + n;
            rows[n - 1].pageNumber = n;
        }
        pane.showPages(5, rows);
        pane.show();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        QSignalSpy commands(&pane, &PagePane::commandRequested);
        QTest::keyClick(pane.list()->currentView(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTEST(commands.isEmpty() ? QString() : commands.first().first().toString(), "command");
        QVERIFY(commands.size() <= 1);
        // Ctrl+A takes every page; A alone does not.
        QTest::keyClick(pane.list()->currentView(), Qt::Key_A);
        QVERIFY(pane.selectedPageIds().size() < 3);
        QTest::keyClick(pane.list()->currentView(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(pane.selectedPageIds(), (QVector<qint32>{11, 12, 13}));
    }

    void openingGoesThroughTheOpener()
    {
        SampleWindow h;
        RecordingOpener opener;
        h.navigator().setPageOpener(&opener);
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        PageListView* list = h.window->pageList()->list();
        QAbstractItemView* view = list->currentView();
        const QRect second = view->visualRect(view->model()->index(1, 0));
        // A person's double click: a click, then the second press.
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, second.center());
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, second.center());
        QCOMPARE(opener.opened, QVector<qint32>({2}));
        QVERIFY(list->selectPage(1));
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(opener.opened, QVector<qint32>({2, 1}));
        QAction* open = h.window->menus().action("mnuPopupPageOpen");
        QVERIFY(open->isEnabled());
        open->trigger();
        QCOMPARE(opener.opened, QVector<qint32>({2, 1, 1}));
        // A double click beside the pages opens nothing.
        const QPoint beside(view->viewport()->width() - 5, view->viewport()->height() - 5);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, beside);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, beside);
        QCOMPARE(opener.opened.size(), 3);
        h.navigator().setPageOpener(nullptr);
    }

    void theDefaultOpener_data()
    {
        columns<QString, QString, bool>({"kind", "message", "opened"}); // %1: the page's path
        row("page image", "image", "", true);
        row("page image gone", "image gone", "Missing file '%1'.", false);
        row("shortcut", "shortcut", "", true);
        row("shortcut gone", "shortcut gone", "Missing file '%1'.", false);
        row("shortcut without a name", "shortcut empty", "This shortcut has no filename.", false);
        row("no program", "no program", "No program for '%1'.", true);
    }
    void theDefaultOpener()
    {
        const auto [kind, message, opened] =
            fetch<QString, QString, bool>("kind", "message", "opened");
        NavHarness h;
        FixtureStore store(h.home.home());
        store.fillSample();
        h.openSession();
        const PagePaths paths(h.home.home());
        qint32 id = 1;
        QString path = paths.computedPagePath(1);
        if (kind.startsWith("shortcut")) {
            path = kind == "shortcut empty" ? QString() : h.home.file("elsewhere/letter.pdf");
            QDir().mkpath(h.home.file("elsewhere"));
            if (kind == "shortcut")
                QVERIFY(h.home.writeFile("elsewhere/letter.pdf", "%PDF-1.4"));
            id = shortcutPage(store, 1, 9, path);
        }
        if (kind == "image gone")
            QVERIFY(QFile::remove(path));
        if (kind == "no program")
            h.choosers.failEditor(QString("No program for '%1'.").arg(path));
        if (!message.isEmpty())
            h.prompter.expect(message.arg(path));
        DefaultPageOpener opener(*h.session, h.prompter, h.choosers);
        opener.openPage(id);
        opener.openPage(999); // a page that is gone from the store says nothing
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(h.choosers.edited(), opened ? QStringList{path} : QStringList());
    }

    void everyKeyDrawsAtEverySize_data()
    {
        columns<QString>({"key"});
        for (const char* key :
             {"root", "rootb", "rootc", "cabinet", "locked", "drawer", "folder", "document", "page",
              "found", "thumbnails", "clock", "viewlist", "viewthumbnails", "arrowdown"})
            row(key, QString(key));
    }
    void everyKeyDrawsAtEverySize()
    {
        QFETCH(QString, key);
        // Drawn from the outline at each size, not scaled from one bitmap: a large picture
        // is as full as a small one, and its edges are sharp.
        for (const int side : {16, 32, 48, 128}) {
            const QImage image = NavIcons::pixmap(key, side).toImage();
            QCOMPARE(image.size(), QSize(side, side));
            const double share = coverage(image);
            QVERIFY2(share > 0.05 && share < 0.95,
                     qPrintable(QString("%1 at %2: %3").arg(key).arg(side).arg(share)));
        }
        NavIcons icons;
        QVERIFY(!icons.icon(key).isNull());
        QCOMPARE(&icons.icon(key), &icons.icon(key)); // made once
    }
};

QMR_TEST(TestPagePane)
#include "testpagepane.moc"
