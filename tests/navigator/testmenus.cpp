#include <QMenuBar>

#include "filing/commandkeys.h"
#include "navharness.h"
#include "navigator/popupmenus.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// What a pop-up showed: its name ("" when none opened), its visible entries, and of those the
// enabled ones; texts of entries by name.
struct Shown
{
    QString menu;
    QStringList visible;
    QStringList enabled;
    QHash<QString, QString> texts;
    QPoint at;
};

// What the pop-up that `act` may open showed.
Shown popupOf(const std::function<void()>& act)
{
    Shown shown;
    withPopup(act, [&shown](QMenu* menu) {
        shown.menu = menu->objectName();
        shown.at = menu->pos();
        for (QAction* a : menu->actions()) {
            if (!a->isVisible() || a->isSeparator())
                continue;
            shown.visible << a->objectName();
            shown.texts.insert(a->objectName(), a->text());
            if (a->isEnabled())
                shown.enabled << a->objectName();
        }
    });
    return shown;
}

void rightClickTree(NavHarness& h, const QString& key)
{
    QTest::mouseClick(h.tree()->viewport(), Qt::RightButton, {},
                      h.tree()->visualItemRect(h.tree()->node(key)).center());
}

void rightClickList(NavHarness& h, const QString& text)
{
    h.selectInList(text);
    QListWidget* list = h.window->list();
    const QRect r = list->visualItemRect(list->currentItem());
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, r.center());
}

const int tree = int(ContextSource::Tree);
const int list = int(ContextSource::List);
const int pages = int(ContextSource::PageList);

} // namespace

class TestMenus : public QObject
{
    Q_OBJECT
private slots:
    void commandKeys_data()
    {
        // Entries without their "mnuPopup".
        columns<int, QString, QString, QString>({"control", "key", "insert", "remove"});
        row("tree root", tree, "ROOT", "CabinetNewCabinet", "");
        row("tree found root", tree, "ROOTFOUND", "", "");
        row("tree cabinet", tree, "CAB1", "DrawerNewDrawer", "CabinetDelete");
        row("tree drawer", tree, "DRW1", "FolderNewFolder", "DrawerDelete");
        row("tree folder", tree, "FLD1", "FolderNewDocument", "FolderDelete");
        row("tree document", tree, "DOC1", "DocumentNewDocument", "DocumentDelete");
        row("list cabinet", list, "CAB1", "CabinetNewCabinet", "CabinetDelete");
        row("list drawer", list, "DRW1", "DrawerNewDrawer", "DrawerDelete");
        row("list folder", list, "FLD1", "FolderNewFolder", "FolderDelete");
        row("list document", list, "DOC1", "DocumentScanPage", "DocumentDelete");
        row("list found cabinet", list, "FCB1", "", "");
        row("list nothing", list, "", "", "");
        row("page list", pages, "PAG1", "", "");
    }
    void commandKeys()
    {
        const auto [control, key, insert, remove] =
            fetch<int, QString, QString, QString>("control", "key", "insert", "remove");
        const auto named = [](const QString& e) { return e.isEmpty() ? e : "mnuPopup" + e; };
        QCOMPARE(CommandKeys::insertCommand(ContextSource(control), NodeKey::parse(key)),
                 named(insert));
        QCOMPARE(CommandKeys::deleteCommand(ContextSource(control), NodeKey::parse(key)),
                 named(remove));
    }

    void targetRule_data()
    {
        columns<QStringList, QString, QString, int, int, int>(
            {"clicks", "rightClick", "listItem", "source", "level", "id"});
        const QStringList drawer{"CAB1", "DRW1"};
        // What a click on the tree names is TestNavTree::clicksFillTheNextLevelAndTheRecord's.
        row("list: its selected item", QStringList{"CAB1"}, "", "Taxes", list, 1, 2);
        row("list: the tree's node is not the list's level", QStringList{"CAB1"}, "", "Taxes", list,
            0, -1);
        row("page list reads the container list", QStringList{"CAB1"}, "", "Taxes", pages, 1, 2);
        // After a right click the record names the menu's node, whatever spoke since.
        row("record first", drawer, "DRW1", "Savings", list, 1, 1);
        row("record of another level", drawer, "DRW1", "Savings", list, 2, 2);
        row("right click on a cabinet", QStringList{"CAB1", "DRW2"}, "CAB1", "", tree, 0, 1);
    }
    void targetRule()
    {
        const auto [clicks, rightClick, listItem, source, level] =
            fetch<QStringList, QString, QString, int, int>("clicks", "rightClick", "listItem",
                                                           "source", "level");
        SampleWindow h(clicks);
        if (!rightClick.isEmpty()) {
            // A right click menus the selected node, which the click path left selected.
            h.tree()->selectNode(rightClick);
            QVERIFY(!popupOf([&] { rightClickTree(h, rightClick); }).menu.isEmpty());
        }
        if (!listItem.isEmpty())
            h.selectInList(listItem);
        h.setSource(ContextSource(source));
        QTEST(h.navigator().target().targetId(Level(level)), "id");
    }

    // A right click, or the menu key, on each control: the tree's menus its selected node
    // wherever the pointer is and fills the record; the list's leaves the record as it was.
    void popups_data()
    {
        columns<QStringList, QString, int, int, QString, QString>(
            {"clicks", "target", "key", "modifiers", "menu", "record"});
        const QStringList folder{"CAB1", "DRW1", "FLD1"};
        row("tree root", folder, "ROOT", 0, 0, "mnuPopupRoot", "");
        row("tree found root", folder, "ROOTFOUND", 0, 0, "mnuPopupFound", "");
        row("tree found cabinet", folder, "FCB1", 0, 0, "", "");
        row("tree open cabinet", folder, "CAB1", 0, 0, "mnuPopupCabinet", "CAB1");
        row("tree locked cabinet", folder, "CAB2", 0, 0, "", "");
        row("tree drawer", folder, "DRW2", 0, 0, "mnuPopupDrawer", "DRW2");
        row("tree folder", folder, "FLD1", 0, 0, "mnuPopupFolder", "FLD1");
        row("tree document", folder, "DOC1", 0, 0, "mnuPopupDocument", "DOC1");
        row("list cabinet", QStringList{"ROOT"}, "list:Home Papers", 0, 0, "mnuPopupCabinet", "");
        row("list locked cabinet", QStringList{"ROOT"}, "list:Private", 0, 0, "", "");
        row("list drawer", QStringList{"CAB1"}, "list:Taxes", 0, 0, "mnuPopupDrawer", "");
        row("list document", folder, "list:O'Brien's letter", 0, 0, "mnuPopupDocument", "");
        const QStringList drawer{"CAB1", "DRW1"};
        const int shift = int(Qt::ShiftModifier);
        row("tree, Menu key", drawer, "DRW1", int(Qt::Key_Menu), 0, "mnuPopupDrawer", "DRW1");
        row("tree, Shift+F10", drawer, "DRW1", int(Qt::Key_F10), shift, "mnuPopupDrawer", "DRW1");
        row("list, Shift+F10", drawer, "list:Savings", int(Qt::Key_F10), shift, "mnuPopupFolder",
            "");
        row("pages, Menu key", QStringList{"CAB1", "DRW1", "FLD1", "DOC1"}, "pages",
            int(Qt::Key_Menu), 0, "mnuPopupPage", "");
    }
    void popups()
    {
        const auto [clicks, target, key, modifiers, menu] =
            fetch<QStringList, QString, int, int, QString>("clicks", "target", "key", "modifiers",
                                                           "menu");
        SampleWindow h;
        h.addFoundBranch();
        h.clickPath(clicks);
        QWidget* control = target == "pages" ? h.pageView() : h.select(target);
        const ContextSource source = control == h.tree()           ? ContextSource::Tree
                                     : control == h.window->list() ? ContextSource::List
                                                                   : ContextSource::PageList;
        control->setFocus();
        QSignalSpy treeClicks(h.tree(), &NavTree::nodeClicked);
        const Shown shown = popupOf([&] {
            if (key)
                QTest::keyClick(control, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            else if (source == ContextSource::List)
                rightClickList(h, target.mid(5));
            else
                rightClickTree(h, "ROOT"); // elsewhere than the selected node
        });
        QCOMPARE(shown.menu, menu);
        // A right click selects nothing and drives nothing: the tree keeps its node.
        QCOMPARE(treeClicks.count(), 0);
        if (source == ContextSource::Tree)
            QCOMPARE(h.tree()->selectedKey(), target);
        QTEST(h.state.selection().node.text(), "record");
        QCOMPARE(h.navigator().target().source(), source);
        // The menu of a key stands by the selected item, not wherever the mouse pointer is.
        if (key)
            QVERIFY(control->rect().contains(control->mapFromGlobal(shown.at)));
        if (menu == "mnuPopupDocument") {
            // Entries of features still to come are there, disabled; Paste waits for the
            // clipboard.
            QVERIFY(shown.visible.contains("mnuPopupDocumentScanPage"));
            QVERIFY(shown.visible.contains("mnuPopupDocumentPaste"));
            QVERIFY(!shown.enabled.contains("mnuPopupDocumentPaste"));
            QVERIFY(shown.enabled.contains("mnuPopupDocumentDelete"));
            QVERIFY(shown.enabled.contains("mnuPopupDocumentRename"));
        }
        // While the list's menu is up, Insert shows beside the entry it runs there; the tree's
        // key comes back when it closes.
        if (menu == "mnuPopupDrawer") {
            QCOMPARE(h.window->menus().action("mnuPopupDrawerNewDrawer")->shortcut(),
                     QKeySequence());
            QCOMPARE(h.window->menus().action("mnuPopupDrawerNewFolder")->shortcut(),
                     QKeySequence(Qt::Key_Insert));
        }
    }

    // A right click on a page selects it, one on the empty list nothing; the entries follow
    // what is selected.
    void pagePopup()
    {
        NavHarness h;
        h.loadWith([](FixtureStore& store) {
            store.db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, "
                               "Filetype) VALUES (3, 2, '/srv/letters/reply.pdf', 'Y', 'pdf')");
        });
        const QStringList all{"Open", "Print", "Renumber", "Delete",
                              "Cut",  "Copy",  "Paste",    "Properties"};
        QStringList shortcut = all;
        shortcut.removeAll("Print");
        shortcut.removeAll("Renumber");
        for (const auto& [clicks, row, visible, deleteText] :
             {std::tuple{"CAB1,DRW1,FLD1,DOC2", -1, QStringList{"Cut", "Copy", "Paste"}, ""},
              std::tuple{"DOC1", 0, all, "Delete"},
              std::tuple{"DRW2,FLD3,DOC3", 1, shortcut, "Delete shortcut"}}) {
            h.clickPath(QString(clicks).split(','));
            QAbstractItemView* pane = h.pageView();
            const QPoint at =
                row >= 0 ? pane->visualRect(pane->model()->index(row, 0)).center() : QPoint(5, 5);
            const Shown shown =
                popupOf([&] { QTest::mouseClick(pane->viewport(), Qt::RightButton, {}, at); });
            QCOMPARE(shown.menu, QStringLiteral("mnuPopupPage"));
            QStringList names;
            for (const QString& entry : visible)
                names << "mnuPopupPage" + entry;
            QCOMPARE(shown.visible, names);
            QVERIFY(!shown.enabled.contains("mnuPopupPagePaste"));
            if (*deleteText)
                QCOMPARE(shown.texts.value("mnuPopupPageDelete"), QString(deleteText));
            QCOMPARE(h.navigator().target().source(), ContextSource::PageList);
        }
    }

    void pasteFollowsTheClipboard()
    {
        // Paste stands enabled only when there is something to paste and a command for it.
        QMenuBar bar;
        NavMenus menus;
        bool filesWaiting = false;
        menus.build(&bar, {{"mnuPopupPagePaste", [] {}}});
        PopupMenus popups(menus);
        popups.setPasteQuery([&filesWaiting] { return filesWaiting; });
        popups.preparePages(true, false);
        QVERIFY(!menus.action("mnuPopupPagePaste")->isEnabled());
        filesWaiting = true;
        popups.preparePages(false, std::nullopt);
        QVERIFY(menus.action("mnuPopupPagePaste")->isEnabled());
        QVERIFY(menus.action("mnuPopupPagePaste")->isVisible());
        // The document's Paste has no command yet: it stays disabled.
        popups.prepareTree(NodeKey::parse("DOC1"), true);
        QVERIFY(!menus.action("mnuPopupDocumentPaste")->isEnabled());
    }

    // Insert and Delete run the entry of the control's item (the table is CommandKeys'):
    // a question, answered No, or a dialog, closed; the focus is then back on the control.
    void insertAndDeleteKeys()
    {
        SampleWindow h;
        // The nodes clicked (by ','), the list's item (else the tree's node), the key, and the
        // question, or "dialog:" and the dialog's caption.
        for (const auto& [clicks, listItem, key, shown] :
             {std::tuple{"CAB1,DRW1,FLD1,DOC1", "", Qt::Key_Delete, "Delete 'March statement'?"},
              std::tuple{"ROOT", "", Qt::Key_Delete, ""},
              std::tuple{"CAB1,DRW1,FLD1", "O'Brien's letter", Qt::Key_Delete,
                         "Delete 'O'Brien's letter'?"},
              std::tuple{"CAB1,DRW1,FLD1", "", Qt::Key_Insert, "dialog:Add Document"},
              std::tuple{"CAB1,DRW1", "Savings", Qt::Key_Insert, "dialog:Add Folder"}}) {
            h.clickPath(QString(clicks).split(','));
            QWidget* control = h.tree();
            if (*listItem) {
                h.selectInList(listItem);
                control = h.window->list();
            }
            const QString expected(shown);
            QString caption;
            if (expected.startsWith("dialog:"))
                whenModal(h.window.get(), [&caption](QWidget* d) {
                    caption = d->windowTitle();
                    d->close();
                });
            else if (!expected.isEmpty())
                h.prompter.expect(expected, Prompter::Answer::No);
            control->setFocus();
            QTest::keyClick(control, key);
            QMR_VERIFY_PROMPTS(h);
            if (expected.startsWith("dialog:"))
                QCOMPARE(caption, expected.mid(7));
            QCOMPARE(h.window->focusWidget(), control);
        }
    }
};

QMR_TEST(TestMenus)
#include "testmenus.moc"
