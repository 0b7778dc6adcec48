#include <QHeaderView>
#include <QScrollBar>
#include <QSplitter>
#include <QSplitterHandle>

#include "navharness.h"

using namespace qmr;
using namespace qmr::test;

class TestNavTree : public QObject
{
    Q_OBJECT
private slots:
    void keyedTree()
    {
        NavTree tree;
        QSignalSpy expanding(&tree, &NavTree::expanding);
        QVERIFY(tree.addNode({}, "ROOT", "File Cabinets", {}));
        QVERIFY(tree.addNode("ROOT", "CAB1", "beta", {}));
        QVERIFY(tree.addNode("ROOT", "CAB12", "Alpha", {}));
        QVERIFY(tree.addNode("ROOT", "CAB2", "gamma", {}));
        QVERIFY(tree.addNode("CAB1", "DRW5", "inner", {}));
        // A second node with a key that is there, or under a missing parent, is refused.
        QVERIFY(!tree.addNode("ROOT", "CAB1", "again", {}));
        QVERIFY(!tree.addNode("CAB99", "DRW1", "orphan", {}));
        QCOMPARE(tree.nodeCount(), 5);
        // Children stay sorted by text without regard to case.
        QCOMPARE(itemTexts(tree.node("ROOT")), (QStringList{"Alpha", "beta", "gamma"}));
        // Expanding from code is reported, with or without children.
        QVERIFY(tree.expandNode("CAB1"));
        QVERIFY(tree.expandNode("CAB2"));
        QVERIFY(!tree.expandNode("CAB3"));
        QCOMPARE(expanding.count(), 2);
        QCOMPARE(expanding.at(0).at(0).toString(), QStringLiteral("CAB1"));
        QCOMPARE(expanding.at(1).at(0).toString(), QStringLiteral("CAB2"));
        expanding.clear();
        // Many nodes at once: those asked open are opened, each reported.
        const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        const QVector<NavTree::NewNode> nodes = {
            {"", "ROOTFOUND", "Found", {}, false, fixed},
            {"ROOTFOUND", "FCB1", "Home", {}, true, fixed},
            {"FCB1", "FDW2", "Taxes", {}, true, fixed},
            {"FCB1", "FDW1", "bank", {}, true, fixed},
            {"FDW1", "FFD1", "Checking", {}, true, fixed},
            {"FFD1", "FDC7", "{zeta}", {}, false, fixed},
            {"FFD1", "FDC5", "Alpha", {}, false, fixed},
            {"FFD1", "FDC5", "twice", {}, false, fixed},     // key taken: left out
            {"FFD9", "FDC6", "orphan", {}, false, fixed},    // no such parent
            {"FFD3", "FDC8", "too early", {}, false, fixed}, // its parent comes later
            {"FDW2", "FFD3", "2025", {}, true, fixed},
            {"FFD3", "FDC8", "Return", {}, false, fixed},
            {"CAB1", "DRW1", "Bank", {}, false, {}}, // below a node that was there
            {"ROOT", "CAB1", "again", {}, false, {}},
        };
        QCOMPARE(tree.addNodes(nodes), 10);
        QCOMPARE(tree.nodeCount(), 15);
        QCOMPARE(tree.node("FDC8")->text(0), QString("Return"));
        QCOMPARE(tree.parentKey("DRW1"), QString("CAB1"));
        QCOMPARE(tree.node("CAB1")->text(0), QString("beta"));
        QCOMPARE(tree.node("FDC7")->flags(), fixed);
        for (const char* key : {"FCB1", "FDW1", "FDW2", "FFD1", "FFD3"})
            QVERIFY2(tree.node(key)->isExpanded(), key);
        QVERIFY(!tree.node("ROOTFOUND")->isExpanded());
        QCOMPARE(expanding.count(), 5);
        // Sorted like every other node once events have run.
        QCoreApplication::processEvents();
        QCOMPARE(itemTexts(tree.node("FFD1")), (QStringList{"{zeta}", "Alpha"}));
        QCOMPARE(tree.node("FCB1")->child(0)->text(0), QString("bank"));
        QCOMPARE(tree.topLevelItem(1)->text(0), QString("Found"));
        // Gone with their parent, and the key free again.
        tree.removeNode("ROOTFOUND");
        tree.removeNode("CAB1");
        QCOMPARE(tree.nodeCount(), 3);
        QVERIFY(!tree.node("DRW5") && !tree.node("FDC8"));
        QVERIFY(tree.addNode("ROOT", "CAB1", "back", {}));
        // A rename, from code or in place, takes the node to its new place among its siblings
        // (a bracket stands before letters, whatever its code point).
        QVERIFY(tree.setNodeText("CAB2", "aardvark"));
        tree.node("CAB12")->setData(0, Qt::EditRole, "{zulu}");
        QCoreApplication::processEvents();
        QCOMPARE(itemTexts(tree.node("ROOT")), (QStringList{"{zulu}", "aardvark", "back"}));
        // A node's flags changed in the tree are reported, as any other change (the nodes keep
        // no value in the toolkit's own store, which a later toolkit may want for this).
        QSignalSpy changed(&tree, &QTreeWidget::itemChanged);
        tree.node("CAB2")->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable);
        QCOMPARE(changed.count(), 1);
        // One node of many goes alone; its siblings stay found by their keys.
        for (int i = 100; i < 140; ++i)
            tree.addNode("CAB2", QString("DRW%1").arg(i), QString("d%1").arg(i), {});
        tree.addNode("DRW120", "FLD1", "inside", {});
        tree.removeNode("DRW120");
        QCOMPARE(tree.nodeCount(), 43);
        QVERIFY(!tree.node("DRW120") && !tree.node("FLD1"));
        QCOMPARE(NavTree::keyOf(tree.node("DRW121")), QStringLiteral("DRW121"));
        QCOMPARE(tree.parentKey("DRW119"), QStringLiteral("CAB2"));
        // Most of the tree goes: the nodes that stay keep their keys, wherever they stand.
        QVERIFY(tree.addNode({}, "ROOTFOUND", "Found", {}));
        QVERIFY(tree.addNode("ROOTFOUND", "FDC1", "kept", {}));
        tree.removeNode("ROOT");
        QCOMPARE(tree.nodeCount(), 2);
        QCOMPARE(tree.parentKey("FDC1"), QStringLiteral("ROOTFOUND"));
        // The calls by key reach the node, and refuse a key the tree does not hold without
        // changing anything: the current node stays.
        QVERIFY(tree.hasNode("FDC1") && !tree.hasNode("DOC9"));
        QCOMPARE(tree.nodeText("FDC1"), QStringLiteral("kept"));
        QVERIFY(tree.nodeText("DOC9").isEmpty());
        QVERIFY(tree.setCurrentNode("FDC1"));
        QCOMPARE(tree.selectedKey(), QStringLiteral("FDC1"));
        QVERIFY(!tree.setCurrentNode("DOC9") && !tree.setNodeEditable("DOC9", true) &&
                !tree.editNode("DOC9"));
        QCOMPARE(tree.selectedKey(), QStringLiteral("FDC1"));
        for (const bool editable : {true, false}) {
            QVERIFY(tree.setNodeEditable("FDC1", editable));
            QCOMPARE(bool(tree.node("FDC1")->flags() & Qt::ItemIsEditable), editable);
        }
        QVERIFY(tree.node("FDC1")->flags() & Qt::ItemIsSelectable);
    }

    // The column fits the names in view, and widens for a longer one scrolled into view.
    void longNameScrolledIntoView()
    {
        NavTree tree;
        tree.resize(220, 160);
        tree.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        tree.addNode({}, "ROOT", "File Cabinets", {});
        for (int i = 0; i < 300; ++i)
            tree.addNode("ROOT", QString("CAB%1").arg(i), QString("c%1").arg(i, 3, 10, QChar('0')),
                         {});
        const QString longName = "zz " + QString("a rather long name of a cabinet ").repeated(3);
        tree.addNode("ROOT", "CAB999", longName, {});
        tree.expandNode("ROOT");
        QCoreApplication::processEvents();
        QHeaderView* header = tree.header();
        const int needed = tree.fontMetrics().horizontalAdvance(longName);
        QVERIFY2(header->sectionSize(0) < needed, "the long name is out of view, its width too");
        tree.verticalScrollBar()->setValue(tree.verticalScrollBar()->maximum());
        QVERIFY(tree.visualItemRect(tree.node("CAB999")).intersects(tree.viewport()->rect()));
        QTRY_VERIFY(header->sectionSize(0) >= needed);
    }

    void firstStartAndEmptyStoreMakeTheSampleCabinet()
    {
        NavHarness h;
        h.load();
        // The sample's contents are TestTemplates::defaultSample's; here the tree shows it.
        QCOMPARE(h.childTexts("ROOT"), QStringList{"Generic File Cabinet"});
        QCOMPARE(h.tree()->node("ROOT")->text(0), QStringLiteral("File Cabinets"));
        QVERIFY(h.tree()->node("ROOT")->isExpanded());
        const QString cab = h.childKeys("ROOT").first();
        QCOMPARE(h.tree()->selectedKey(), cab);
        QCOMPARE(h.listTexts(), h.childTexts(cab));
        QCOMPARE(h.childKeys(cab).size(), 6);
        // Folders arrive under their drawers.
        QVERIFY(!h.childKeys(h.childKeys(cab).at(1)).isEmpty());
        // A refresh on an emptied store brings the sample back.
        for (const char* table : {"Folder", "Drawer", "Cabinet"})
            h.session->db().execute(QString("DELETE FROM %1").arg(table));
        QTest::keyClick(h.tree(), Qt::Key_F5);
        QCOMPARE(h.childKeys("ROOT"), QStringList{"CAB2"}); // ids are never reused
        QCOMPARE(h.childTexts("ROOT"), QStringList{"Generic File Cabinet"});
        QVERIFY(h.window->list()->isVisible());
        QMR_VERIFY_PROMPTS(h);
    }

    void clicksFillTheNextLevelAndTheRecord_data()
    {
        // `path` by ','; the record's parent and name, and what the window lists.
        columns<QString, int, QString, QStringList>({"path", "parent", "name", "list"});
        row("root", "ROOT", -1, "", QStringList{"Home Papers", "Private"});
        row("cabinet", "CAB1", -1, "Home Papers", QStringList{"Bank", "Taxes"});
        row("drawer", "CAB1,DRW1", 1, "Bank", QStringList{"Checking", "Savings"});
        // Bare names in the list: a document's date shows in the tree only.
        row("folder", "CAB1,DRW1,FLD1", 1, "Checking",
            QStringList{"March statement", "O'Brien's letter"});
        row("empty folder", "CAB1,DRW1,FLD2", 1, "Savings", QStringList{});
        row("document", "CAB1,DRW1,FLD1,DOC1", 1, "March statement (03/31/2026)",
            QStringList{"Page 1", "Page 2"});
    }
    void clicksFillTheNextLevelAndTheRecord()
    {
        const auto [clicks, list] = fetch<QString, QStringList>("path", "list");
        const QStringList path = clicks.split(',');
        const NodeKey key = NodeKey::parse(path.last());
        const int level = key.level() ? int(*key.level()) : -1;
        const int id = level < 0 ? -1 : key.id();
        const QString menu =
            QString("mnuPopup") + (level < 0 ? "Root" : levelInfo(*key.level()).word);
        SampleWindow h;
        // Before any click only drawers are loaded: no folders yet.
        QCOMPARE(h.childKeys("DRW1"), QStringList{});
        // From a document's pages the window turns to a container list, and back.
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.clickPath(path);
        const char* const paneControls[] = {
            "cmdShowMore", "cmdShowLess",  "cmdNext", "cmdPrev",      "cmdFirst", "cmdLast",
            "lblStatus",   "imgThumbnail", "imgList", "imgArrowDown", "lvwThumb"};
        for (const char* name : paneControls)
            QVERIFY2(h.window->findChild<QWidget*>(name)->isVisible() == (level == 3), name);
        QCOMPARE(h.window->list()->isVisible(), level < 3);
        QCOMPARE(h.visibleLevelMenu(), menu);
        // A mouse click leaves the record empty again when the button comes up; a command
        // then finds the clicked node as the tree's selection.
        for (int l = 0; l < 4; ++l) {
            QCOMPARE(h.state.selection().idOf(Level(l)), -1);
            QCOMPARE(h.navigator().target().targetId(Level(l)), l == level ? id : -1);
        }
        // Enter drives the window as a click does, and the record it fills stays.
        h.click("ROOT");
        h.tree()->selectNode(path.last());
        QTest::keyClick(h.tree(), Qt::Key_Return);
        const SelectionRecord& r = h.state.selection();
        QCOMPARE(r.lastNodeKey, path.last());
        QCOMPARE(h.visibleLevelMenu(), menu);
        QTEST(r.parentId, "parent");
        for (int l = 0; l < 4; ++l)
            QCOMPARE(r.idOf(Level(l)), l == level ? id : -1);
        QTEST(r.name, "name");
        QCOMPARE(level == 3 ? h.pageTexts() : h.listTexts(), list);
        QMR_VERIFY_PROMPTS(h);
        // The menus of the whole program stay; the found branch's is not there.
        for (const char* name : {"mnuFile", "mnuTools", "mnuHelp"})
            QVERIFY(h.window->menus().menu(name)->menuAction()->isVisible());
        QVERIFY(!h.window->menus().menu("mnuPopupFound")->menuAction()->isVisible());
        if (level == 3)
            return;
        // Enter with nothing selected in the list does nothing.
        h.window->list()->clearSelection();
        QTest::keyClick(h.window->list(), Qt::Key_Return);
        QCOMPARE(h.tree()->selectedKey(), path.last());
    }

    void lockedCabinetsLevelsAndStoreFailures()
    {
        SampleWindow h;
        QCOMPARE(h.childKeys("CAB2"), QStringList{}); // a bare node
        const QStringList listBefore = h.listTexts();

        h.choosers.queuePassword(std::nullopt); // Cancel, or the window closed
        h.click("CAB2");
        QCOMPARE(h.childKeys("CAB2"), QStringList{});
        QVERIFY(!h.tree()->node("CAB2")->isExpanded());
        QCOMPARE(h.state.selection().lastNodeKey, QStringLiteral("CAB2"));
        QCOMPARE(h.listTexts(), listBefore);

        // The right password opens it and its rebuilt node is filled; the node was the one
        // handled last, so the list stays until another node has been clicked.
        h.choosers.queuePassword(QStringLiteral("secret"));
        h.click("CAB2");
        QVERIFY(h.session->locks().isCabinetOpen(2));
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.listTexts(), listBefore);
        h.clickPath({"ROOT", "CAB2"});
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.childTexts("DRW3"), QStringList{"Doctor"});
        QCOMPARE(h.listTexts(), QStringList{"Health"});
        QCOMPARE(h.navigator().target().targetId(Level::Cabinet), 2);
        QCOMPARE(h.choosers.passwordAsks(), 2);
        QMR_VERIFY_PROMPTS(h);

        h.click("CAB1");
        // A cabinet click brings its folders; documents wait for the drawer.
        QCOMPARE(h.childTexts("DRW1"), (QStringList{"Checking", "Savings"}));
        QCOMPARE(h.childKeys("FLD1"), QStringList{});
        const int before = h.tree()->nodeCount();
        h.clickPath({"ROOT", "CAB1"});
        QCOMPARE(h.tree()->nodeCount(), before);
        h.click("DRW1");
        QCOMPARE(h.childTexts("FLD1"),
                 (QStringList{"March statement (03/31/2026)", "O'Brien's letter"}));
        // Expanding a drawer by hand loads the documents of its folders as well.
        h.tree()->node("DRW2")->setExpanded(true);
        QCOMPARE(h.childTexts("FLD3"), QStringList{"Return (04/15/2026)"});

        // A failure of the store is a message, and the window goes on working.
        h.session->db().execute("DROP TABLE Folder");
        h.prompter.expect("The store could not carry out the command: no such table: Folder");
        h.click("CAB1");
        QMR_VERIFY_PROMPTS(h);
        h.click("ROOT");
        QCOMPARE(h.listTexts(), (QStringList{"Home Papers", "Private"}));
    }

    void restoreWalk_data()
    {
        // `list`: what the window lists, or where the walk stopped short, the nodes clicked then.
        columns<QString, QString, QString, int, int, QStringList>(
            {"saved", "selected", "menu", "level", "parent", "list"});
        row("cabinet", "CAB1", "CAB1", "mnuPopupCabinet", 0, -1, QStringList{"Bank", "Taxes"});
        row("drawer", "DRW2", "DRW2", "mnuPopupDrawer", 1, 1, QStringList{"2025"});
        row("folder", "FLD1", "FLD1", "mnuPopupFolder", 2, 1,
            QStringList{"March statement", "O'Brien's letter"});
        row("document", "DOC3", "DOC3", "mnuPopupDocument", 3, 3, QStringList{});
        row("gone", "FLD77", "", "mnuPopupFolder", -1, -1, QStringList{});
        row("locked", "FLD4", "", "mnuPopupFolder", -1, -1, QStringList{});
        row("locked, then a click on the root", "FLD4", "", "mnuPopupFolder", -1, -1,
            QStringList{"ROOT"});
        row("page key", "PAG1", "", "", -1, -1, QStringList{});
        row("garbage", "XYZ", "", "", -1, -1, QStringList{});
    }
    void restoreWalk()
    {
        const auto [saved, selected, menu, level, list] =
            fetch<QString, QString, QString, int, QStringList>("saved", "selected", "menu", "level",
                                                               "list");
        NavHarness h;
        h.home.settings().saveSetting("LastNavTreeNodeKey", saved);
        h.loadSample();
        QCOMPARE(h.choosers.passwordAsks(), 0); // a start never asks
        QCOMPARE(h.state.selection().lastNodeKey, saved);
        QCOMPARE(h.visibleLevelMenu(), menu);
        if (selected.isEmpty()) {
            QVERIFY(h.tree()->selectedKey().isEmpty() || h.tree()->selectedKey() == "ROOT");
            // Where the walk stopped short, the place is kept for the next start; a click
            // after it (`list` names the node) is the new place.
            h.clickPath(list);
            const QString inView = h.tree()->selectedKey();
            // Closing the window saves without asking.
            h.window->close();
            QMR_VERIFY_PROMPTS(h);
            Settings& s = h.home.reopenSettings();
            QCOMPARE(s.getSetting("LastNavTreeNodeKey"), !list.isEmpty()  ? list.last()
                                                         : menu.isEmpty() ? inView
                                                                          : saved);
            QCOMPARE(s.getSetting("FirstShow"), QStringLiteral("N"));
            QVERIFY(s.contains("frmNavTree.Width"));
            QVERIFY(!h.session->db().isOpen());
            return;
        }
        QCOMPARE(h.tree()->selectedKey(), selected);
        const SelectionRecord& r = h.state.selection();
        QCOMPARE(r.idOf(Level(level)), NodeKey::parse(saved).id());
        QTEST(r.parentId, "parent");
        if (level == 3)
            QCOMPARE(h.pageTexts().size(), 1);
        else
            QCOMPARE(h.listTexts(), list);
        // The walk opened every level down to the node.
        for (QTreeWidgetItem* p = h.tree()->node(selected)->parent(); p; p = p->parent())
            QVERIFY(p->isExpanded());
    }

    void dividerWidthIsSavedWhenLetGo()
    {
        SampleWindow h;
        auto* splitter = h.window->findChild<QSplitter*>("splMain");
        QVERIFY(splitter);
        QSplitterHandle* handle = splitter->handle(1);
        const int before = h.tree()->width();
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, grip);
        QTest::mouseMove(handle, grip + QPoint(60, 0));
        QVERIFY(!h.home.settings().contains("tvwMainWidth")); // not while it moves
        QTest::mouseRelease(handle, Qt::LeftButton, {}, grip + QPoint(60, 0));
        const int saved = h.tree()->width();
        QVERIFY(saved != before);
        QCOMPARE(h.home.settings().getSetting("tvwMainWidth"), QString::number(saved * 15));
        // The next start opens the tree at that width.
        h.window->close();
        NavHarness again;
        again.home.settings().saveSetting("tvwMainWidth", QString::number(saved * 15));
        again.home.settings().saveSetting("FirstShow", "N");
        again.load();
        again.window->showAsLoaded();
        QCOMPARE(again.tree()->width(), saved);
    }

    void placementOffEveryScreenComesBackAtTheCorner()
    {
        // A place on the screen stays as it was saved.
        for (const auto& [saved, shown] :
             {std::pair{Placement{-5000, 9000, 480, 640, 0}, QRect(0, 0, 640, 480)},
              std::pair{Placement{30, 40, 480, 640, 0}, QRect(40, 30, 640, 480)}}) {
            NavHarness h;
            h.home.settings().saveSetting("FirstShow", "N");
            h.home.settings().savePlacement("frmNavTree", saved);
            h.load(false);
            QCOMPARE(h.window->geometry(), shown);
        }
    }

    void windowKeys_data()
    {
        columns<int, int, QString, int, bool>({"key", "modifiers", "text", "answer", "exits"});
        const QString exit = "Exit the Quillmere?";
        const int escape = int(Qt::Key_Escape);
        row("Escape, yes", escape, 0, exit, int(Prompter::Answer::Yes), true);
        row("Escape, no", escape, 0, exit, int(Prompter::Answer::No), false);
        row("Ctrl+Q, no", int(Qt::Key_Q), int(Qt::ControlModifier), exit, int(Prompter::Answer::No),
            false);
        // F1 asks for the help, which this test's home and build do not hold.
        row("F1", int(Qt::Key_F1), 0, QString("Cannot find help file QMRHELP.TXT."),
            int(Prompter::Answer::Ok), false);
    }
    void windowKeys()
    {
        const auto [key, modifiers, text, answer, exits] =
            fetch<int, int, QString, int, bool>("key", "modifiers", "text", "answer", "exits");
        if (key == Qt::Key_F1 &&
            QFile::exists(QCoreApplication::applicationDirPath() + "/qmrhelp.txt"))
            QSKIP("A help file stands beside the test.");
        SampleWindow h({"CAB1", "DRW2"});
        QSignalSpy spy(h.window.get(), &NavWindow::exitRequested);
        h.prompter.expect(text, Prompter::Answer(answer));
        QTest::keyClick(h.tree(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QMR_VERIFY_PROMPTS(h);
        if (key != Qt::Key_F1)
            QCOMPARE(h.prompter.defaults(), QStringList{"No"}); // Escape, Enter: still running
        QCOMPARE(spy.count(), exits ? 1 : 0);
        QCOMPARE(h.session->db().isOpen(), !exits);
        Settings& s = h.home.reopenSettings();
        QCOMPARE(s.getSetting("LastNavTreeNodeKey"), exits ? QString("DRW2") : QString());
        QCOMPARE(s.contains("frmNavTree.WindowState"), exits);
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW2"));
    }

    // Enter or a double click in the list opens the item in the tree; the record and the menu
    // still tell of the last node handled in the tree.
    void listActivationMovesTheTreeOnly()
    {
        SampleWindow h;
        // The nodes clicked, the last by the keyboard and Enter, which fills the record; the
        // item activated (Enter, else a double click), what then shows, and the menu.
        for (const auto& [path, item, doubleClick, opened, shown, menu] :
             {std::tuple{"CAB1,DRW1,FLD1", "March statement", false, "DOC1",
                         QStringList{"Page 1", "Page 2"}, "mnuPopupFolder"},
              std::tuple{"CAB1", "Bank", true, "DRW1", QStringList{"Checking", "Savings"},
                         "mnuPopupCabinet"}}) {
            const QStringList clicks = QString(path).split(',');
            h.clickPath(clicks.mid(0, clicks.size() - 1));
            h.tree()->selectNode(clicks.last());
            QTest::keyClick(h.tree(), Qt::Key_Return);
            QListWidget* list = h.window->list();
            h.selectInList(item);
            if (doubleClick)
                QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                                   list->visualItemRect(list->currentItem()).center());
            else
                QTest::keyClick(list, Qt::Key_Return);
            QCOMPARE(h.tree()->selectedKey(), QString(opened));
            QCOMPARE(QString(opened).startsWith("DOC") ? h.pageTexts() : h.listTexts(), shown);
            const NodeKey was = NodeKey::parse(clicks.last());
            QCOMPARE(h.state.selection().lastNodeKey, clicks.last());
            QCOMPARE(h.state.selection().idOf(*was.level()), was.id());
            QCOMPARE(h.state.selection().idOf(*NodeKey::parse(opened).level()), -1);
            QCOMPARE(h.visibleLevelMenu(), QString(menu));
        }
    }
};

QMR_TEST(TestNavTree)
#include "testnavtree.moc"
