#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <functional>

#include "app/startup.h"
#include "core/settings.h"
#include "navigator/clipboardfiles.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// A run of the program on a temporary home, started as main() starts it.
struct Run
{
    test::TestHome home;
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    std::unique_ptr<Startup> startup;

    bool start()
    {
        startup = std::make_unique<Startup>(home.home(), home.settings(), prompter, choosers);
        if (!startup->start())
            return false;
        QApplication::setActiveWindow(window());
        return QTest::qWaitForWindowExposed(window()) && QTest::qWaitForWindowActive(window());
    }
    NavWindow* window() const { return startup->window(); }
    Session& session() const { return startup->session(); }
    NavTree* tree() const { return window()->tree(); }
    PageListView* pages() const { return window()->pageList()->list(); }
    QAbstractItemView* pageView() const { return pages()->currentView(); }
    QAction* action(const char* name) const { return window()->menus().action(name); }

    // Where a node stands in the tree, its parents opened.
    QPoint nodePoint(const QString& key) const
    {
        QTreeWidgetItem* item = tree()->node(key);
        if (!item)
            return QPoint(-1, -1);
        for (QTreeWidgetItem* p = item->parent(); p; p = p->parent())
            p->setExpanded(true);
        tree()->scrollToItem(item);
        const QRect r = tree()->visualItemRect(item);
        return QPoint(qMin(r.left() + 12, tree()->viewport()->width() - 2), r.center().y());
    }
    // Left clicks on nodes, as a person makes them, each node in view after the one before.
    void click(const QStringList& keys) const
    {
        for (const QString& key : keys)
            QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, nodePoint(key));
    }
};

// A document of `count` pages (small pictures with thumbnails) in the sample's first folder.
qint32 documentOfPages(test::FixtureStore& store, int count)
{
    const qint32 doc = store.document(1, QStringLiteral("Long report"));
    Database::Transaction tx(store.db());
    for (int n = 1; n <= count; ++n)
        store.page(doc, n, QSize(60, 80));
    tx.commit();
    return doc;
}

// Runs `open`, which brings up a pop-up menu, and hands that menu to `look` before closing it.
bool withPopup(const std::function<void()>& open, const std::function<void(QMenu*)>& look)
{
    bool seen = false;
    QTimer::singleShot(0, [&] {
        if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }))
            return; // no menu came up: `seen` says so
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            seen = true;
            look(menu);
            menu->close();
        }
    });
    open();
    const bool closed =
        QTest::qWaitFor([] { return QApplication::activePopupWidget() == nullptr; });
    return seen && closed;
}

} // namespace

// The main window that main() assembles, as a new user meets it.
class TestMainWindow : public QObject
{
    Q_OBJECT
    QTemporaryDir m_sane;

private slots:
    void initTestCase()
    {
        // The scanner settings list devices: SANE's test device alone, no real one probed.
        QFile conf(m_sane.filePath("dll.conf"));
        QVERIFY(conf.open(QIODevice::WriteOnly) && conf.write("test\n") > 0);
        conf.close();
        qputenv("SANE_CONFIG_DIR", m_sane.path().toLocal8Bit());
    }

    void copiedAndCutPagesArePasted()
    {
        Run run;
        test::FixtureStore store(run.home.home());
        store.fillSample();
        const qint32 report = documentOfPages(store, 30);
        store.close();
        run.home.settings().set(keys::LastNavTreeNodeKey, QString("DOC%1").arg(report));
        run.home.settings().set(keys::ThumbView, "list");
        QVERIFY(run.start());
        QCOMPARE(run.pages()->count(), 30);
        QGuiApplication::clipboard()->clear();

        // All pages copied in the page list.
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(run.pageView(), Qt::Key_C, Qt::ControlModifier);
        const QStringList copied = ClipboardFiles::getClipboardFiles();
        QCOMPARE(copied.size(), 30);

        // Into the Return, whose one page stays first.
        run.click({"DRW2", "DOC3"});
        QCOMPARE(run.window()->pageList()->documentId(), 3);
        QMenu* documentMenu = run.window()->menus().menu("mnuPopupDocument");
        documentMenu->popup(run.window()->mapToGlobal(QPoint(40, 40)));
        QVERIFY(QTest::qWaitForWindowExposed(documentMenu));
        QVERIFY(run.action("mnuPopupDocumentPaste")->isEnabled());
        documentMenu->close();
        const QPoint onPage =
            run.pageView()->visualRect(run.pageView()->model()->index(0, 0)).center();
        QVERIFY(withPopup(
            [&] { QTest::mouseClick(run.pageView()->viewport(), Qt::RightButton, {}, onPage); },
            [&](QMenu* menu) {
                QCOMPARE(menu->objectName(), QString("mnuPopupPage"));
                QVERIFY(run.action("mnuPopupPagePaste")->isEnabled());
            }));
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_V, Qt::ControlModifier);
        const QVector<PageRow> rows = run.session().pages().pages(3);
        QCOMPARE(rows.size(), 31);
        for (int i = 0; i < 30; ++i) {
            const PageRow& row = rows.at(i + 1);
            QCOMPARE(row.pageNumber, i + 2);
            QFile made(run.session().paths().pagePath(row.id, row.filename));
            QFile source(copied.at(i));
            QVERIFY(made.open(QIODevice::ReadOnly) && source.open(QIODevice::ReadOnly));
            QCOMPARE(made.readAll(), source.readAll());
        }
        QCOMPARE(run.pages()->count(), 31);

        // A page cut goes at the next Ctrl+V, also into a document that has none.
        run.pages()->selectPage(rows.first().id);
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_X, Qt::ControlModifier);
        run.click({"DRW1", "DOC2"});
        QCOMPARE(run.pages()->count(), 0);
        QVERIFY(withPopup(
            [&] {
                QTest::mouseClick(run.pageView()->viewport(), Qt::RightButton, {}, QPoint(30, 30));
            },
            [&](QMenu*) { QVERIFY(run.action("mnuPopupPagePaste")->isEnabled()); }));
        run.pageView()->setFocus();
        QTest::keyClick(run.pageView(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(run.session().pages().documentOf(rows.first().id), 2);
        QCOMPARE(run.pages()->count(), 1);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }
};

QMR_TEST(TestMainWindow)
#include "testmainwindow.moc"
