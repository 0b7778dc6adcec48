#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QTreeView>
#include <functional>
#include <map>

#include "app/startup.h"
#include "core/settings.h"
#include "dialogs/passworddialog.h"
#include "filing/clipboardfiles.h"
#include "navigator/containerlist.h"
#include "navigator/navdragdrop.h"
#include "navigator/navigator.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "navigator/pagelistview.h"
#include "navigator/pagepane.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/modalwatch.h"
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

// A drop of `data` on a control's viewport, as a drag from a file manager or from the
// window itself ends.
bool dropOn(QWidget* viewport, const QPoint& at, const QMimeData* data)
{
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    QDragMoveEvent move(at, actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &move);
    QDropEvent dropped(QPointF(at), actions, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &dropped);
    return dropped.isAccepted();
}

// Whether anything but the background is drawn on a view's viewport.
bool drawsOn(QAbstractItemView* view)
{
    const QImage image = view->viewport()->grab().toImage();
    const QRgb background = image.pixel(1, 1);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != background)
                return true;
    return false;
}

// ---- access keys and focus ---------------------------------------------------------------

// Each access key ("&Find" takes F) and what takes it; a key taken twice is a clash.
using KeyOwners = std::map<QString, QStringList>;

void take(KeyOwners& owners, const QString& text, const QString& what)
{
    const QString key = QKeySequence::mnemonic(text).toString(QKeySequence::PortableText);
    if (!key.isEmpty())
        owners[key] << what + " \"" + text + "\"";
}

QStringList clashesOf(const KeyOwners& owners, const QString& where)
{
    QStringList clashes;
    for (const auto& [key, what] : owners)
        if (what.size() > 1)
            clashes << where + ": " + key + " is taken by " + what.join(", ");
    return clashes;
}

// The keys that a window's controls on show take: buttons, labels with a buddy, group boxes,
// tabs, and every entry its menu bar holds (a hidden one keeps its key).
KeyOwners windowKeys(QWidget* window)
{
    KeyOwners owners;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (w->window() != window || !w->isVisible())
            continue;
        if (auto* button = qobject_cast<QAbstractButton*>(w))
            take(owners, button->text(), button->objectName());
        else if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy())
            take(owners, label->text(), label->objectName());
        else if (auto* group = qobject_cast<QGroupBox*>(w))
            take(owners, group->title(), group->objectName());
        else if (auto* tabs = qobject_cast<QTabBar*>(w)) {
            for (int i = 0; i < tabs->count(); ++i)
                take(owners, tabs->tabText(i), "tab");
        } else if (auto* bar = qobject_cast<QMenuBar*>(w)) {
            for (QAction* a : bar->actions())
                take(owners, a->text(), a->objectName() + (a->isVisible() ? "" : " (hidden)"));
        }
    }
    return owners;
}

// The clashes of a window with each of its tabs on show, and those of each of its menus.
QStringList keyClashes(QWidget* window, const QString& where)
{
    QStringList clashes = clashesOf(windowKeys(window), where);
    for (QTabWidget* tabs : window->findChildren<QTabWidget*>()) {
        const int shown = tabs->currentIndex();
        for (int i = 0; tabs->isVisible() && i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            for (const QString& c :
                 clashesOf(windowKeys(window), where + " on " + tabs->tabText(i)))
                if (!clashes.contains(c))
                    clashes << c;
        }
        tabs->setCurrentIndex(shown);
    }
    for (QMenuBar* bar : window->findChildren<QMenuBar*>()) {
        for (QMenu* menu : bar->findChildren<QMenu*>()) {
            KeyOwners owners;
            for (QAction* a : menu->actions())
                take(owners, a->text(), a->objectName());
            clashes << clashesOf(owners, where + " menu " + menu->objectName());
        }
    }
    return clashes;
}

// Whether a control is one to type into or choose from.
bool isField(const QWidget* w)
{
    if (auto* line = qobject_cast<const QLineEdit*>(w))
        return !line->isReadOnly();
    if (auto* text = qobject_cast<const QPlainTextEdit*>(w))
        return !text->isReadOnly();
    if (auto* text = qobject_cast<const QTextEdit*>(w))
        return !text->isReadOnly();
    return qobject_cast<const QAbstractSpinBox*>(w) || qobject_cast<const QComboBox*>(w) ||
           qobject_cast<const QAbstractItemView*>(w);
}

// "" when a window that has fields opened with the focus in the first of them by Tab.
QString focusFault(QWidget* window, const QString& where)
{
    (void)QTest::qWaitFor(
        [&] {
            return QApplication::focusWidget() && QApplication::focusWidget()->window() == window;
        },
        2000);
    QWidget* first = nullptr;
    for (QWidget* w = window->nextInFocusChain(); w != window && !first; w = w->nextInFocusChain())
        if (w->window() == window && w->isVisible() && w->isEnabled() &&
            (w->focusPolicy() & Qt::TabFocus) && isField(w))
            first = w;
    QWidget* focus = QApplication::focusWidget();
    if (!first || (focus && (focus == first || first->isAncestorOf(focus))))
        return QString();
    return where + ": the focus is on " +
           (focus ? QString(focus->metaObject()->className()) + " " + focus->objectName()
                  : QString("nothing")) +
           ", not on " + first->objectName();
}

// The key clashes and the misplaced focus of the modal window that `open` brings up, which is
// then closed.
QStringList modalFaults(const QString& what, const std::function<void()>& open)
{
    return test::modalFaults(what, open, [](QWidget* w, const QString& where) {
        // The focus is read first: looking for clashes moves it.
        QStringList faults{focusFault(w, where)};
        return faults << keyClashes(w, where);
    });
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

    void pageListShowsLongDocuments_data()
    {
        QTest::addColumn<bool>("atStart");
        QTest::newRow("restored at start") << true;
        QTest::newRow("chosen after start") << false;
    }
    void pageListShowsLongDocuments()
    {
        QFETCH(bool, atStart);
        Run run;
        test::FixtureStore store(run.home.home());
        store.fillSample();
        const qint32 doc = store.document(1, QStringLiteral("Long report"));
        {
            Database::Transaction tx(store.db());
            for (int n = 120; n >= 1; --n)
                store.pageRow(doc, n);
            tx.commit();
        }
        store.close();
        const QString key = QString("DOC%1").arg(doc);
        run.home.settings().set(keys::ThumbView, "list");
        run.home.settings().set(keys::LastNavTreeNodeKey, atStart ? key : QString("FLD1"));
        QVERIFY(run.start());
        if (!atStart)
            run.click({key});
        QCOMPARE(run.pages()->count(), 120);
        // The numbers run as numbers: 9, 10, 11 ... 99, 100.
        QStringList numbers, shown;
        for (int n = 1; n <= 120; ++n)
            numbers << QString::number(n);
        for (int row = 0; row < run.pages()->count(); ++row)
            shown << run.pages()->textAt(row);
        QCOMPARE(shown, numbers);

        // No heading and no value is cut short: each column is as wide as the view needs to
        // draw them whole.
        auto* details = qobject_cast<QTreeView*>(run.pageView());
        QVERIFY(details && details->isVisible());
        const QAbstractItemModel* model = details->model();
        for (int column = 0; column < 5; ++column) {
            int needed = details->header()->sectionSizeHint(column);
            for (int row = 0; row < model->rowCount(); ++row)
                needed = qMax(needed, details->sizeHintForIndex(model->index(row, column)).width());
            QVERIFY2(details->columnWidth(column) >= needed,
                     qPrintable(QString("column %1: %2 wide, %3 needed")
                                    .arg(column)
                                    .arg(details->columnWidth(column))
                                    .arg(needed)));
        }
    }

    void emptyPlacesSayHowTheyFill_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("hint");
        QTest::newRow("document") << "CAB1,DRW1,DOC2"
                                  << "No pages yet. Scan one with Scan Page, drop image files "
                                     "here, or paste pages with Ctrl+V.";
        QTest::newRow("folder") << "CAB1,FLD2"
                                << "No documents yet. Add one with New Document in the Folder "
                                   "menu, or drop image files here.";
    }
    void emptyPlacesSayHowTheyFill()
    {
        QFETCH(QString, node);
        QFETCH(QString, hint);
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        run.click(node.split(','));
        const bool pages = node.endsWith("DOC2");
        QAbstractItemView* view =
            pages ? run.pageView() : static_cast<QAbstractItemView*>(run.window()->list());
        QVERIFY(view->isVisible());
        QCOMPARE(view->model()->rowCount(), 0);
        QCOMPARE(view->property("emptyHint").toString(), hint);
        QVERIFY(drawsOn(view));
        QCOMPARE(run.window()->findChild<QLabel*>("lblStatus")->text(), QString());

        // Files dropped on the empty place arrive there.
        QImage image(40, 50, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QTemporaryDir outside;
        const QString file = outside.filePath("dropped.jpg");
        QVERIFY(image.save(file));
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        QSignalSpy done(&run.window()->dragDrop(), &NavDragDrop::dropDone);
        QVERIFY(dropOn(view->viewport(), QPoint(20, 20), &data));
        QTRY_COMPARE(done.size(), 1);
        const qint32 document =
            pages ? 2 : run.session().items().children(Level::Document, 2).value(0).id;
        QCOMPARE(run.session().pages().pages(document).size(), 1);
        // The document that took them is on show with its page.
        QCOMPARE(run.window()->pageList()->documentId(), document);
        QCOMPARE(run.pages()->count(), 1);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }

    // Every captioned entry of the assembled window's menus runs a command, and each can be
    // chosen in some state of the window: a walk over the levels, their pop-ups and a
    // clipboard holding a copied file sees each one enabled at least once.
    void everyMenuEntryRunsACommandSomewhere()
    {
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        NavWindow* w = run.window();
        // A picture copied in a file manager, so that Paste has something to take.
        QImage picture(40, 50, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        const QString copied = run.home.file("copied.png");
        QVERIFY(picture.save(copied));
        auto* data = new QMimeData;
        data->setUrls({QUrl::fromLocalFile(copied)});
        QApplication::clipboard()->setMimeData(data);
        const auto emptied = qScopeGuard([] { QApplication::clipboard()->clear(); });

        QSet<QString> enabled;
        auto note = [&](QMenu* menu) {
            for (QAction* a : menu->actions())
                if (!a->isSeparator() && a->isVisible() && a->isEnabled()) {
                    enabled.insert(a->objectName());
                }
        };
        auto look = [&](QWidget* control) {
            for (QAction* top : w->menuBar()->actions()) {
                if (!top->isVisible() || !top->menu())
                    continue;
                QMenu* menu = top->menu();
                menu->popup(w->mapToGlobal(QPoint(40, 40)));
                if (QTest::qWaitForWindowExposed(menu))
                    note(menu);
                menu->close();
            }
            if (control) {
                control->setFocus();
                (void)withPopup([&] { QTest::keyClick(control, Qt::Key_Menu); }, note);
            }
        };
        for (const char* node : {"ROOT", "CAB1", "DRW1", "FLD1", "DOC1"}) {
            run.click({node});
            look(run.tree());
            if (ContainerList* list = w->list(); list->isVisible() && list->count() > 0) {
                list->setCurrentRow(0);
                look(list);
            }
        }
        // The pages of the document, none and then one selected.
        look(run.pageView());
        run.pages()->selectPage(1);
        look(run.pageView());
        // The branch of what Find found, and a document in it.
        test::whenModal(this, [&](QWidget* find) {
            find->findChild<QLineEdit*>("txtKeywords")->setText("statement");
            find->findChild<QPushButton*>("cmdFind")->click();
        });
        w->menus().run("mnuFileFind");
        QTRY_VERIFY(run.tree()->node("ROOTFOUND"));
        run.click({"ROOTFOUND"});
        look(run.tree());
        QStringList faults;
        // Every menu the window has, those of the levels not now in the bar too.
        for (QMenu* menu : w->menuBar()->findChildren<QMenu*>()) {
            for (QAction* a : menu->actions()) {
                if (a->isSeparator() || a->text().isEmpty() || a->menu())
                    continue; // a submenu's entries are walked as a menu of their own
                const QString name = a->objectName();
                if (!w->menus().hasCommand(name))
                    faults << name + " runs no command";
                else if (!enabled.contains(name))
                    faults << name + " is never enabled";
            }
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }

    void firstStartShowsTheSampleNamesWhole()
    {
        Run run;
        QVERIFY(run.start());
        NavTree* tree = run.tree();
        QVERIFY(tree->node("ROOT")->childCount() > 0);
        // The one column is as wide as the widest name in view; the tree shows it whole,
        // unless that would take more than a third of the window.
        const int names = tree->header()->sectionSize(0);
        const int third = run.window()->width() / 3;
        QVERIFY2(tree->viewport()->width() >= names || tree->width() >= third - 1,
                 qPrintable(QString("names %1 wide, the tree's view %2")
                                .arg(names)
                                .arg(tree->viewport()->width())));
        QVERIFY2(tree->width() <= third + 1,
                 qPrintable(QString("tree %1, a third %2").arg(tree->width()).arg(third)));
        // Made narrow, the window cuts the names; made wide again, it shows them whole.
        NavWindow* w = run.window();
        w->showNormal();
        w->resize(360, w->height());
        QTRY_VERIFY(tree->width() <= w->width() / 3 + 1);
        QVERIFY(tree->viewport()->width() < names);
        w->resize(1000, w->height());
        QTRY_VERIFY2(tree->viewport()->width() >= names,
                     qPrintable(QString("names %1 wide, the tree's view %2")
                                    .arg(names)
                                    .arg(tree->viewport()->width())));
        // Once the person has set the divider, the tree keeps the width they gave it.
        run.home.settings().set(keys::TreeWidth, QString::number(w->treeWidthTwips()));
        const int set = tree->width();
        w->resize(700, w->height());
        QTRY_COMPARE(w->width(), 700);
        QCOMPARE(tree->width(), set);
    }

    void altOpensTheMenuOfItsLetter_data()
    {
        QTest::addColumn<QString>("node");
        for (const char* path : {"ROOT", "CAB1", "CAB1,DRW1", "CAB1,FLD1", "CAB1,DRW1,DOC1"})
            QTest::newRow(path) << path;
    }
    void altOpensTheMenuOfItsLetter()
    {
        QFETCH(QString, node);
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        run.click(node.split(','));
        for (QAction* entry : run.window()->menuBar()->actions()) {
            if (!entry->isVisible())
                continue;
            const QKeySequence keys = QKeySequence::mnemonic(entry->text());
            QVERIFY2(!keys.isEmpty(), qPrintable(entry->text()));
            // The offscreen platform leaves no window active after a pop-up; a desktop does.
            QApplication::setActiveWindow(run.window());
            QVERIFY(QTest::qWaitForWindowActive(run.window()));
            QString opened;
            withPopup([&] { QTest::keyClick(run.window(), keys[0].key(), Qt::AltModifier); },
                      [&](QMenu* menu) { opened = menu->objectName(); });
            QVERIFY2(opened == entry->objectName(),
                     qPrintable(keys.toString() + " opened \"" + opened + "\", not " +
                                entry->objectName()));
        }
    }

    // Access keys are unique among what shows at once, and each dialog opens with the focus in
    // its first field.
    void dialogsOpenWithUniqueKeysAndTheFocusInTheirFirstField()
    {
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        // Mail is set up, so that the page viewer's Email shows its dialog.
        run.home.settings().set(keys::EmailSystem, "CDONTS");
        QVERIFY(run.start());
        NavWindow* w = run.window();
        QStringList faults;
        auto dialog = [&](const char* command) {
            faults << modalFaults(command, [&] { w->menus().run(command); });
        };
        for (const char* node : {"ROOT", "CAB1", "DRW1", "FLD1", "DOC1"}) {
            run.click({node});
            faults << keyClashes(w, QString("main window at ") + node);
        }
        run.click({"ROOT"});
        dialog("mnuPopupRootNewFileCabinet");
        run.click({"CAB1"});
        dialog("mnuPopupCabinetProperties");
        dialog("mnuPopupCabinetNewDrawer");
        run.click({"DRW1"});
        dialog("mnuPopupDrawerProperties");
        dialog("mnuPopupDrawerNewFolder");
        run.click({"FLD1"});
        dialog("mnuPopupFolderProperties");
        dialog("mnuPopupFolderNewDocument");
        run.choosers.queueDirectory(run.home.path());
        dialog("mnuPopupFolderImportFiles");
        run.click({"DOC1"});
        dialog("mnuPopupDocumentProperties");
        dialog("mnuPopupDocumentPrint");
        run.pages()->selectPage(1);
        for (const char* command :
             {"mnuPopupPageProperties", "mnuPopupPageRenumber", "mnuPopupPagePrint", "mnuFileFind",
              "mnuScanSettings", "mnuPrintSettings", "mnuEmailSettings", "mnuViewSettings",
              "mnuToolsImportFiles", "mnuToolsExportCabinet", "mnuToolsDrawerTemplates",
              "mnuToolsCreateSampleCabinet", "mnuHelpAbout"})
            dialog(command);

        // The page viewer and what it opens.
        w->menus().run("mnuPopupPageOpen");
        QWidget* viewer = nullptr;
        QTRY_VERIFY(viewer = w->findChild<QWidget*>("frmPageView"));
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
        faults << keyClashes(viewer, "page viewer");
        for (const char* button : {"cmdInfo", "cmdEmail"})
            faults << modalFaults(button,
                                  [&] { viewer->findChild<QPushButton*>(button)->click(); });
        viewer->close();

        // The password dialog that the desktop's choosers bring up.
        PasswordDialog password(w);
        faults << modalFaults("password", [&] { password.exec(); });
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
    }

    // Month, day and year are typed into Find's date boxes, entered by Tab as a person does.
    void findDatesTakeTypedMonths()
    {
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        QVERIFY(run.start());
        QDate typed;
        test::whenModal(this, [&](QWidget* find) {
            find->findChild<QTabWidget*>("tabFind")->setCurrentIndex(2);
            auto* from = find->findChild<QDateEdit*>("dtScanFrom");
            from->setFocus(Qt::TabFocusReason);
            if (QTest::qWaitFor([&] { return from->hasFocus(); }, 2000))
                QTest::keyClicks(from, "03152021");
            typed = from->date();
            qobject_cast<QDialog*>(find)->reject();
        });
        QTest::keyClick(run.window(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(typed, QDate(2021, 3, 15));
    }

    void droppingADrawerOnItsOwnCabinetChangesNothing()
    {
        Run run;
        test::FixtureStore(run.home.home()).fillSample();
        run.home.settings().set(keys::LastNavTreeNodeKey, "DRW1");
        QVERIFY(run.start());
        QTreeWidgetItem* drawer = run.tree()->node("DRW1");
        QVERIFY(drawer && drawer->isExpanded());
        QCOMPARE(run.tree()->selectedKey(), QString("DRW1"));
        const auto listed = [&] {
            QStringList texts;
            for (int i = 0; i < run.window()->list()->count(); ++i)
                texts << run.window()->list()->item(i)->text();
            return texts;
        };
        const QStringList before = listed();

        NavDragDrop& drags = run.window()->dragDrop();
        QVERIFY(drags.beginDrag(DropSource::Tree));
        std::unique_ptr<QMimeData> data(drags.dragData());
        QSignalSpy done(&drags, &NavDragDrop::dropDone);
        QVERIFY(dropOn(run.tree()->viewport(), run.nodePoint("CAB1"), data.get()));
        QTRY_COMPARE(done.size(), 1);

        // The same node, open as it was with its folders, and the list as it was.
        QCOMPARE(run.tree()->node("DRW1"), drawer);
        QVERIFY(drawer->isExpanded());
        QCOMPARE(drawer->childCount(), 2);
        QCOMPARE(listed(), before);
        QCOMPARE(run.session().items().parentOf(Level::Drawer, 1), 1);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
    }
};

QMR_TEST(TestMainWindow)
#include "testmainwindow.moc"
