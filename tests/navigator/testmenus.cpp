#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTimer>

#include "filing/commandkeys.h"
#include "navharness.h"
#include "navigator/popupmenus.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

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

// Runs `act`, which may open a pop-up menu, and closes the menu once it is up.
Shown popupOf(const std::function<void()>& act)
{
    Shown shown;
    QTimer::singleShot(50, [&shown] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
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
        menu->close();
    });
    act();
    QTest::qWait(100);
    return shown;
}

QPoint centreOf(QTreeWidget* tree, const QString& key)
{
    return tree->visualItemRect(static_cast<NavTree*>(tree)->node(key)).center();
}

void rightClickTree(NavHarness& h, const QString& key)
{
    QTest::mouseClick(h.tree()->viewport(), Qt::RightButton, {}, centreOf(h.tree(), key));
}

void selectInList(NavHarness& h, const QString& text)
{
    QListWidgetItem* item = h.window->list()->findItems(text, Qt::MatchExactly).value(0);
    QVERIFY2(item, qPrintable(text));
    h.window->list()->setCurrentItem(item);
}

void rightClickList(NavHarness& h, const QString& text)
{
    selectInList(h, text);
    QListWidget* list = h.window->list();
    const QRect r = list->visualItemRect(list->findItems(text, Qt::MatchExactly).value(0));
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, r.center());
}

void addFoundBranch(NavHarness& h)
{
    h.tree()->addNode("", "ROOTFOUND", "Found", QIcon());
    h.tree()->addNode("ROOTFOUND", "FCB1", "Home Papers", QIcon());
}

} // namespace

class TestMenus : public QObject
{
    Q_OBJECT
private slots:
    void commandKeys_data()
    {
        QTest::addColumn<int>("control");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("insert");
        QTest::addColumn<QString>("remove");
        const int tree = int(ContextSource::Tree);
        const int list = int(ContextSource::List);
        QTest::newRow("tree root") << tree << "ROOT"
                                   << "mnuPopupCabinetNewCabinet"
                                   << "";
        QTest::newRow("tree found root") << tree << "ROOTFOUND"
                                         << ""
                                         << "";
        QTest::newRow("tree cabinet") << tree << "CAB1"
                                      << "mnuPopupDrawerNewDrawer"
                                      << "mnuPopupCabinetDelete";
        QTest::newRow("tree drawer") << tree << "DRW1"
                                     << "mnuPopupFolderNewFolder"
                                     << "mnuPopupDrawerDelete";
        QTest::newRow("tree folder") << tree << "FLD1"
                                     << "mnuPopupFolderNewDocument"
                                     << "mnuPopupFolderDelete";
        QTest::newRow("tree document") << tree << "DOC1"
                                       << "mnuPopupDocumentNewDocument"
                                       << "mnuPopupDocumentDelete";
        QTest::newRow("tree found document") << tree << "FDC1"
                                             << ""
                                             << "";
        QTest::newRow("list cabinet") << list << "CAB1"
                                      << "mnuPopupCabinetNewCabinet"
                                      << "mnuPopupCabinetDelete";
        QTest::newRow("list drawer") << list << "DRW1"
                                     << "mnuPopupDrawerNewDrawer"
                                     << "mnuPopupDrawerDelete";
        QTest::newRow("list folder") << list << "FLD1"
                                     << "mnuPopupFolderNewFolder"
                                     << "mnuPopupFolderDelete";
        QTest::newRow("list document") << list << "DOC1"
                                       << "mnuPopupDocumentScanPage"
                                       << "mnuPopupDocumentDelete";
        QTest::newRow("list found cabinet") << list << "FCB1"
                                            << ""
                                            << "";
        QTest::newRow("list nothing") << list << ""
                                      << ""
                                      << "";
        QTest::newRow("page list") << int(ContextSource::PageList) << "PAG1"
                                   << ""
                                   << "";
    }
    void commandKeys()
    {
        QFETCH(int, control);
        QFETCH(QString, key);
        QFETCH(QString, insert);
        QFETCH(QString, remove);
        QCOMPARE(CommandKeys::insertCommand(ContextSource(control), NodeKey::parse(key)), insert);
        QCOMPARE(CommandKeys::deleteCommand(ContextSource(control), NodeKey::parse(key)), remove);
    }

    void targetRule_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("rightClick"); // a tree node right-clicked ("" none)
        QTest::addColumn<QString>("listItem");   // selected in the list ("" none)
        QTest::addColumn<int>("source");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("id");
        const int tree = int(ContextSource::Tree);
        const int list = int(ContextSource::List);
        const int pages = int(ContextSource::PageList);
        QTest::newRow("tree click: the selected node") << QStringList{"CAB1", "DRW1"} << ""
                                                       << "" << tree << 1 << 1;
        QTest::newRow("tree click: another level has none") << QStringList{"CAB1", "DRW1"} << ""
                                                            << "" << tree << 0 << -1;
        QTest::newRow("list: its selected item") << QStringList{"CAB1"} << ""
                                                 << "Taxes" << list << 1 << 2;
        QTest::newRow("list: the tree's node is not the list's level")
            << QStringList{"CAB1"} << ""
            << "Taxes" << list << 0 << -1;
        QTest::newRow("page list reads the container list") << QStringList{"CAB1"} << ""
                                                            << "Taxes" << pages << 1 << 2;
        // After a right click the record names the menu's node, whatever spoke since.
        QTest::newRow("record first") << QStringList{"CAB1", "DRW1"} << "DRW1"
                                      << "Savings" << list << 1 << 1;
        QTest::newRow("record of another level") << QStringList{"CAB1", "DRW1"} << "DRW1"
                                                 << "Savings" << list << 2 << 2;
        QTest::newRow("right click on a cabinet") << QStringList{"CAB1", "DRW2"} << "CAB1"
                                                  << "" << tree << 0 << 1;
    }
    void targetRule()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, rightClick);
        QFETCH(QString, listItem);
        QFETCH(int, source);
        QFETCH(int, level);
        QFETCH(int, id);
        NavHarness h;
        h.loadSample();
        h.clickPath(clicks);
        if (!rightClick.isEmpty()) {
            // A right click menus the selected node, which the click path left selected.
            h.tree()->selectNode(rightClick);
            const Shown shown = popupOf([&] { rightClickTree(h, rightClick); });
            QVERIFY(!shown.menu.isEmpty());
        }
        if (!listItem.isEmpty())
            selectInList(h, listItem);
        h.setSource(ContextSource(source));
        QCOMPARE(h.navigator().target().targetId(Level(level)), id);
    }

    void treePopups_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QString>("record"); // the record's node afterwards
        QTest::newRow("root") << "ROOT"
                              << "mnuPopupRoot"
                              << "";
        QTest::newRow("found root") << "ROOTFOUND"
                                    << "mnuPopupFound"
                                    << "";
        QTest::newRow("found cabinet") << "FCB1"
                                       << ""
                                       << "";
        QTest::newRow("open cabinet") << "CAB1"
                                      << "mnuPopupCabinet"
                                      << "CAB1";
        QTest::newRow("locked cabinet") << "CAB2"
                                        << ""
                                        << "";
        QTest::newRow("drawer") << "DRW2"
                                << "mnuPopupDrawer"
                                << "DRW2";
        QTest::newRow("folder") << "FLD1"
                                << "mnuPopupFolder"
                                << "FLD1";
        QTest::newRow("document") << "DOC1"
                                  << "mnuPopupDocument"
                                  << "DOC1";
    }
    void treePopups()
    {
        QFETCH(QString, node);
        QFETCH(QString, menu);
        QFETCH(QString, record);
        NavHarness h;
        h.loadSample();
        addFoundBranch(h);
        h.clickPath({"CAB1", "DRW1", "FLD1"});
        h.tree()->selectNode(node);
        // A right click elsewhere still menus the selected node.
        const Shown shown = popupOf([&] { rightClickTree(h, "ROOT"); });
        QCOMPARE(shown.menu, menu);
        QCOMPARE(h.session->selection().node.text(), record);
        QCOMPARE(h.navigator().target().source(), ContextSource::Tree);
        if (menu == "mnuPopupDocument") {
            // Entries of features still to come are there, disabled; Paste waits for the
            // clipboard.
            QVERIFY(shown.visible.contains("mnuPopupDocumentScanPage"));
            QVERIFY(shown.visible.contains("mnuPopupDocumentPaste"));
            QVERIFY(!shown.enabled.contains("mnuPopupDocumentPaste"));
            QVERIFY(shown.enabled.contains("mnuPopupDocumentDelete"));
            QVERIFY(shown.enabled.contains("mnuPopupDocumentRename"));
        }
    }

    void listPopups_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("menu");
        QTest::newRow("cabinet") << QStringList{"ROOT"} << "Home Papers"
                                 << "mnuPopupCabinet";
        QTest::newRow("locked cabinet") << QStringList{"ROOT"} << "Private"
                                        << "";
        QTest::newRow("drawer") << QStringList{"CAB1"} << "Taxes"
                                << "mnuPopupDrawer";
        QTest::newRow("folder") << QStringList{"CAB1", "DRW1"} << "Savings"
                                << "mnuPopupFolder";
        QTest::newRow("document") << QStringList{"CAB1", "DRW1", "FLD1"} << "O'Brien's letter"
                                  << "mnuPopupDocument";
    }
    void listPopups()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, item);
        QFETCH(QString, menu);
        NavHarness h;
        h.loadSample();
        h.clickPath(clicks);
        const QString recordBefore = h.session->selection().node.text();
        const Shown shown = popupOf([&] { rightClickList(h, item); });
        QCOMPARE(shown.menu, menu);
        QCOMPARE(h.navigator().target().source(), ContextSource::List);
        // The list's right click leaves the record as it was.
        QCOMPARE(h.session->selection().node.text(), recordBefore);
        // While the list's menu is up, Insert shows beside the entry it runs there.
        if (menu == "mnuPopupDrawer") {
            const QAction* sibling = h.window->menus().action("mnuPopupDrawerNewDrawer");
            QCOMPARE(sibling->shortcut(), QKeySequence()); // back to the tree's after closing
        }
    }

    void pagePopup_data()
    {
        QTest::addColumn<QString>("document");
        QTest::addColumn<int>("row"); // the page selected, -1 none
        QTest::addColumn<QStringList>("visible");
        QTest::addColumn<QString>("deleteText");
        const QStringList all{"mnuPopupPageOpen",   "mnuPopupPagePrint",     "mnuPopupPageRenumber",
                              "mnuPopupPageDelete", "mnuPopupPageCut",       "mnuPopupPageCopy",
                              "mnuPopupPagePaste",  "mnuPopupPageProperties"};
        QTest::newRow("no pages") << "DOC2" << -1
                                  << QStringList{"mnuPopupPageCut", "mnuPopupPageCopy",
                                                 "mnuPopupPagePaste"}
                                  << "";
        QTest::newRow("a page") << "DOC1" << 0 << all << "Delete";
        QStringList shortcut = all;
        shortcut.removeAll("mnuPopupPagePrint");
        shortcut.removeAll("mnuPopupPageRenumber");
        QTest::newRow("a shortcut") << "DOC3" << 1 << shortcut << "Delete shortcut";
    }
    void pagePopup()
    {
        QFETCH(QString, document);
        QFETCH(int, row);
        QFETCH(QStringList, visible);
        QFETCH(QString, deleteText);
        NavHarness h;
        {
            test::FixtureStore store(h.home.home());
            store.fillSample();
            store.db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, "
                               "Filetype) VALUES (3, 2, '/srv/letters/reply.pdf', 'Y', 'pdf')");
        }
        h.load();
        h.clickPath({"CAB1", "DRW1", "FLD1"});
        if (document == "DOC3")
            h.clickPath({"DRW2", "FLD3"});
        h.click(document);
        QAbstractItemView* pane = h.pageView();
        // A right click on a page selects it; one on the empty list selects nothing.
        const QPoint at =
            row >= 0 ? pane->visualRect(pane->model()->index(row, 0)).center() : QPoint(5, 5);
        const Shown shown =
            popupOf([&] { QTest::mouseClick(pane->viewport(), Qt::RightButton, {}, at); });
        QCOMPARE(shown.menu, QStringLiteral("mnuPopupPage"));
        QCOMPARE(shown.visible, visible);
        QVERIFY(!shown.enabled.contains("mnuPopupPagePaste"));
        if (!deleteText.isEmpty())
            QCOMPARE(shown.texts.value("mnuPopupPageDelete"), deleteText);
        QCOMPARE(h.navigator().target().source(), ContextSource::PageList);
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

    void menuKeysOpenThePopup_data()
    {
        QTest::addColumn<int>("control");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("menu");
        QTest::newRow("tree, Menu key")
            << int(ContextSource::Tree) << int(Qt::Key_Menu) << 0 << "mnuPopupDrawer";
        QTest::newRow("tree, Shift+F10") << int(ContextSource::Tree) << int(Qt::Key_F10)
                                         << int(Qt::ShiftModifier) << "mnuPopupDrawer";
        QTest::newRow("list, Shift+F10") << int(ContextSource::List) << int(Qt::Key_F10)
                                         << int(Qt::ShiftModifier) << "mnuPopupFolder";
        QTest::newRow("pages, Menu key")
            << int(ContextSource::PageList) << int(Qt::Key_Menu) << 0 << "mnuPopupPage";
    }
    void menuKeysOpenThePopup()
    {
        QFETCH(int, control);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, menu);
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1"});
        QWidget* target = h.tree();
        if (control == int(ContextSource::List)) {
            selectInList(h, "Savings");
            target = h.window->list();
        } else if (control == int(ContextSource::PageList)) {
            h.clickPath({"FLD1", "DOC1"});
            target = h.pageView();
        }
        target->setFocus();
        const Shown shown = popupOf(
            [&] { QTest::keyClick(target, Qt::Key(key), Qt::KeyboardModifiers(modifiers)); });
        QCOMPARE(shown.menu, menu);
        QCOMPARE(h.navigator().target().source(), ContextSource(control));
        // The menu stands by the selected item, not wherever the mouse pointer is.
        QVERIFY(target->rect().contains(target->mapFromGlobal(shown.at)));
        if (control == int(ContextSource::Tree))
            QCOMPARE(h.session->selection().node.text(), QStringLiteral("DRW1"));
    }

    void insertAndDeleteKeys_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("listItem");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("shown"); // the question or the dialog's caption
        QTest::newRow("tree cabinet, Delete")
            << QStringList{"CAB1"} << "" << int(Qt::Key_Delete) << "Delete 'Home Papers'?";
        QTest::newRow("tree folder, Delete") << QStringList{"CAB1", "DRW1", "FLD1"} << ""
                                             << int(Qt::Key_Delete) << "Delete 'Checking'?";
        QTest::newRow("tree document, Delete")
            << QStringList{"CAB1", "DRW1", "FLD1", "DOC1"} << "" << int(Qt::Key_Delete)
            << "Delete 'March statement'?";
        QTest::newRow("tree root, Delete")
            << QStringList{"ROOT"} << "" << int(Qt::Key_Delete) << "";
        QTest::newRow("list drawer, Delete")
            << QStringList{"CAB1"} << "Taxes" << int(Qt::Key_Delete) << "Delete 'Taxes'?";
        QTest::newRow("list document, Delete")
            << QStringList{"CAB1", "DRW1", "FLD1"} << "O'Brien's letter" << int(Qt::Key_Delete)
            << "Delete 'O'Brien's letter'?";
        QTest::newRow("tree root, Insert")
            << QStringList{"ROOT"} << "" << int(Qt::Key_Insert) << "dialog:Add File Cabinet";
        QTest::newRow("tree folder, Insert") << QStringList{"CAB1", "DRW1", "FLD1"} << ""
                                             << int(Qt::Key_Insert) << "dialog:Add Document";
        QTest::newRow("list cabinet, Insert") << QStringList{"ROOT"} << "Home Papers"
                                              << int(Qt::Key_Insert) << "dialog:Add File Cabinet";
        QTest::newRow("list folder, Insert") << QStringList{"CAB1", "DRW1"} << "Savings"
                                             << int(Qt::Key_Insert) << "dialog:Add Folder";
    }
    void insertAndDeleteKeys()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, listItem);
        QFETCH(int, key);
        QFETCH(QString, shown);
        NavHarness h;
        h.loadSample();
        h.clickPath(clicks);
        QWidget* control = h.tree();
        if (!listItem.isEmpty()) {
            selectInList(h, listItem);
            control = h.window->list();
        }
        QString caption;
        if (shown.startsWith("dialog:")) {
            QTimer::singleShot(50, [&caption] {
                if (QWidget* d = QApplication::activeModalWidget()) {
                    caption = d->windowTitle();
                    d->close();
                }
            });
        } else if (!shown.isEmpty()) {
            h.prompter.expect(shown, Prompter::Answer::No);
        }
        control->setFocus();
        QTest::keyClick(control, Qt::Key(key));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        if (shown.startsWith("dialog:"))
            QCOMPARE(caption, shown.mid(7));
        // The key ends with the focus back on its control.
        QCOMPARE(h.window->focusWidget(), control);
    }

    void menusShowTheirKeys()
    {
        NavHarness h;
        h.loadSample();
        const NavMenus& menus = h.window->menus();
        auto keys = [&](const char* name) {
            return menus.action(QLatin1String(name))->shortcut().toString();
        };
        QCOMPARE(keys("mnuPopupCabinetDelete"), QStringLiteral("Del"));
        QCOMPARE(keys("mnuPopupPageDelete"), QStringLiteral("Del"));
        QCOMPARE(keys("mnuPopupDrawerRename"), QStringLiteral("F2"));
        QCOMPARE(keys("mnuPopupRootRefresh"), QStringLiteral("F5"));
        QCOMPARE(keys("mnuHelpHelpTopics"), QStringLiteral("F1"));
        QCOMPARE(keys("mnuFileExit"), QStringLiteral("Ctrl+Q"));
        QCOMPARE(menus.action("mnuFileFind")->shortcuts(),
                 (QList<QKeySequence>{QKeySequence("Ctrl+F"), QKeySequence("F3")}));
        // Insert, as the tree runs it, beside the entry that does the same in each menu.
        QCOMPARE(keys("mnuPopupCabinetNewDrawer"), QStringLiteral("Ins"));
        QCOMPARE(keys("mnuPopupDrawerNewFolder"), QStringLiteral("Ins"));
        QCOMPARE(keys("mnuPopupDocumentNewDocument"), QStringLiteral("Ins"));
        QCOMPARE(keys("mnuPopupDrawerNewDrawer"), QString());
        // The controls' keys are only shown by the menus: the control decides.
        QCOMPARE(menus.action("mnuPopupCabinetDelete")->shortcutContext(), Qt::WidgetShortcut);
        QCOMPARE(menus.action("mnuFileExit")->shortcutContext(), Qt::WindowShortcut);
    }

    void windowKeys()
    {
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1"});
        // Ctrl+Q asks the exit question, with No for Enter.
        h.prompter.expect("Exit the Quillmere?", Prompter::Answer::No);
        QTest::keyClick(h.tree(), Qt::Key_Q, Qt::ControlModifier);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.prompter.defaults(), QStringList{"No"});
        // Find's keys are tested with the found branch.
        // F1 asks for the help, which this test's home and build do not hold.
        if (!QFile::exists(QCoreApplication::applicationDirPath() + "/qmrhelp.txt")) {
            h.prompter.expect("Cannot find help file QMRHELP.TXT.");
            QTest::keyClick(h.tree(), Qt::Key_F1);
            QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        }
        QVERIFY(h.window->menus().action("mnuFileFind")->isEnabled());
    }

    void menusOnlyShowTheLevelOfTheClickedNode()
    {
        NavHarness h;
        h.loadSample();
        const QStringList path{"ROOT", "CAB1", "DRW1", "FLD1", "DOC1"};
        const QStringList menus{"mnuPopupRoot", "mnuPopupCabinet", "mnuPopupDrawer",
                                "mnuPopupFolder", "mnuPopupDocument"};
        for (int i = 0; i < path.size(); ++i) {
            h.click(path.at(i));
            QCOMPARE(h.visibleLevelMenu(), menus.at(i));
        }
        // The menus of the whole program stay.
        for (const char* name : {"mnuFile", "mnuTools", "mnuHelp"})
            QVERIFY(h.window->menus().menu(name)->menuAction()->isVisible());
        QVERIFY(!h.window->menus().menu("mnuPopupFound")->menuAction()->isVisible());
    }
};

QMR_TEST(TestMenus)
#include "testmenus.moc"
