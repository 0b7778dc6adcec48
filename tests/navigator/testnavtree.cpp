#include <QFile>
#include <QSignalSpy>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTest>

#include "navharness.h"
#include "store/itemstore.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

class TestNavTree : public QObject
{
    Q_OBJECT
private slots:
    void keyedTree()
    {
        NavTree tree;
        QVERIFY(tree.addNode({}, "ROOT", "File Cabinets", {}));
        QVERIFY(tree.addNode("ROOT", "CAB1", "beta", {}));
        QVERIFY(tree.addNode("ROOT", "CAB12", "Alpha", {}));
        QVERIFY(tree.addNode("ROOT", "CAB2", "gamma", {}));
        // A second node with a key that is there, or under a missing parent, is refused.
        QVERIFY(!tree.addNode("ROOT", "CAB1", "again", {}));
        QVERIFY(!tree.addNode("CAB99", "DRW1", "orphan", {}));
        QCOMPARE(tree.node("CAB1")->text(0), QStringLiteral("beta"));
        QCOMPARE(tree.nodeCount(), 4);
        // Children stay sorted by text without regard to case.
        QTreeWidgetItem* root = tree.node("ROOT");
        QCOMPARE(root->child(0)->text(0), QStringLiteral("Alpha"));
        QCOMPARE(root->child(1)->text(0), QStringLiteral("beta"));
        QCOMPARE(root->child(2)->text(0), QStringLiteral("gamma"));
        tree.addNode("CAB1", "DRW5", "inner", {});
        tree.removeNode("CAB1");
        QVERIFY(!tree.node("DRW5"));
        QVERIFY(tree.addNode("ROOT", "CAB1", "back", {}));
    }

    void manyNodesAtOnce()
    {
        NavTree tree;
        tree.addNode({}, "ROOT", "File Cabinets", {});
        tree.addNode("ROOT", "CAB1", "Home", {});
        QSignalSpy expanding(&tree, &NavTree::expanding);
        const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        const QVector<NavTree::NewNode> nodes = {
            {"", "ROOTFOUND", "Found", {}, false, fixed},
            {"ROOTFOUND", "FCB1", "Home", {}, true, fixed},
            {"FCB1", "FDW2", "Taxes", {}, true, fixed},
            {"FCB1", "FDW1", "bank", {}, true, fixed},
            {"FDW1", "FFD1", "Checking", {}, true, fixed},
            {"FFD1", "FDC7", "zeta", {}, false, fixed},
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
        QCOMPARE(tree.nodeCount(), 12);
        QCOMPARE(tree.node("FDC5")->text(0), QString("Alpha"));
        QVERIFY(!tree.node("FDC6"));
        QCOMPARE(tree.parentKey("FDC8"), QString("FFD3"));
        QCOMPARE(tree.node("FDC8")->text(0), QString("Return"));
        QCOMPARE(tree.parentKey("DRW1"), QString("CAB1"));
        QCOMPARE(tree.node("CAB1")->text(0), QString("Home"));
        QCOMPARE(tree.node("FDC7")->flags(), fixed);
        for (const char* key : {"FCB1", "FDW1", "FDW2", "FFD1", "FFD3"})
            QVERIFY2(tree.node(key)->isExpanded(), key);
        QVERIFY(!tree.node("ROOTFOUND")->isExpanded());
        QCOMPARE(expanding.count(), 5);
        // Sorted like every other node once events have run.
        QCoreApplication::processEvents();
        QTreeWidgetItem* folder = tree.node("FFD1");
        QCOMPARE(folder->child(0)->text(0), QString("Alpha"));
        QCOMPARE(folder->child(1)->text(0), QString("zeta"));
        QCOMPARE(tree.node("FCB1")->child(0)->text(0), QString("bank"));
        QCOMPARE(tree.topLevelItem(1)->text(0), QString("Found"));
        // Gone again with their root.
        tree.removeNode("ROOTFOUND");
        QCOMPARE(tree.nodeCount(), 3);
        QVERIFY(!tree.node("FDC8"));
    }

    void expandFromCodeIsReported()
    {
        NavTree tree;
        tree.addNode({}, "ROOT", "root", {});
        tree.addNode("ROOT", "CAB1", "with child", {});
        tree.addNode("CAB1", "DRW1", "child", {});
        tree.addNode("ROOT", "CAB2", "bare", {});
        QSignalSpy spy(&tree, &NavTree::expanding);
        QVERIFY(tree.expandNode("CAB1"));
        QVERIFY(tree.expandNode("CAB2"));
        QVERIFY(!tree.expandNode("CAB3"));
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("CAB1"));
        QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("CAB2"));
    }

    void rightClickSelectsNothing()
    {
        NavTree tree;
        tree.addNode({}, "ROOT", "root", {});
        tree.addNode("ROOT", "CAB1", "one", {});
        tree.addNode("ROOT", "CAB2", "two", {});
        tree.expandAll();
        tree.resize(200, 200);
        tree.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        tree.selectNode("CAB1");
        QSignalSpy clicks(&tree, &NavTree::nodeClicked);
        QSignalSpy ups(&tree, &NavTree::contextRequested);
        const QRect r = tree.visualItemRect(tree.node("CAB2"));
        QTest::mouseClick(tree.viewport(), Qt::RightButton, {},
                          QPoint(r.left() + 10, r.center().y()));
        QCOMPARE(tree.selectedKey(), QStringLiteral("CAB1"));
        QCOMPARE(clicks.count(), 0);
        QCOMPARE(ups.count(), 1);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                          QPoint(r.left() + 10, r.center().y()));
        QCOMPARE(tree.selectedKey(), QStringLiteral("CAB2"));
        QCOMPARE(clicks.count(), 1);
    }

    void firstStartMakesTheSampleCabinet()
    {
        NavHarness h;
        h.load();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(QFile::exists(h.home.file("Sample.txt")));
        QCOMPARE(h.childTexts("ROOT"), QStringList{"Generic File Cabinet"});
        QCOMPARE(h.tree()->node("ROOT")->text(0), QStringLiteral("File Cabinets"));
        QVERIFY(h.tree()->node("ROOT")->isExpanded());
        const QString cab = h.childKeys("ROOT").first();
        QCOMPARE(h.childTexts(cab),
                 (QStringList{"Automobile", "Finances", "Home", "Household Equipment",
                              "Income Tax Returns", "Insurance"}));
        QCOMPARE(h.tree()->selectedKey(), cab);
        QCOMPARE(h.listTexts().size(), 6);
        // Folders arrive under their drawers.
        const QString finances = h.childKeys(cab).at(1);
        QCOMPARE(h.childTexts(finances),
                 (QStringList{"401k", "Bank Acocunt", "Credit Cards", "Stocks"}));
    }

    void refreshOnAnEmptyStoreBringsTheSampleBack()
    {
        NavHarness h;
        h.load();
        h.session->db().execute("DELETE FROM Folder");
        h.session->db().execute("DELETE FROM Drawer");
        h.session->db().execute("DELETE FROM Cabinet");
        QTest::keyClick(h.tree(), Qt::Key_F5);
        QCOMPARE(h.childTexts("ROOT"), QStringList{"Generic File Cabinet"});
        QCOMPARE(ItemStore(h.session->db()).count(Level::Cabinet), 1);
        QCOMPARE(h.childKeys("ROOT"), QStringList{"CAB2"}); // ids are never reused
        QVERIFY(h.window->list()->isVisible());
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void clicksFillTheNextLevelAndTheRecord_data()
    {
        QTest::addColumn<QStringList>("path");
        QTest::addColumn<QString>("menu");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("parent");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("list");
        QTest::newRow("root") << QStringList{"ROOT"} << "mnuPopupRoot" << -1 << -1 << -1 << ""
                              << QStringList{"Home Papers", "Private"};
        QTest::newRow("cabinet") << QStringList{"CAB1"} << "mnuPopupCabinet" << 0 << 1 << -1
                                 << "Home Papers" << QStringList{"Bank", "Taxes"};
        QTest::newRow("drawer") << QStringList{"CAB1", "DRW1"} << "mnuPopupDrawer" << 1 << 1 << 1
                                << "Bank" << QStringList{"Checking", "Savings"};
        QTest::newRow("folder") << QStringList{"CAB1", "DRW1", "FLD1"} << "mnuPopupFolder" << 2 << 1
                                << 1 << "Checking"
                                << QStringList{"March statement", "O'Brien's letter"};
        QTest::newRow("document") << QStringList{"CAB1", "DRW1", "FLD1", "DOC1"}
                                  << "mnuPopupDocument" << 3 << 1 << 1
                                  << "March statement (03/31/2026)" << QStringList{};
    }
    void clicksFillTheNextLevelAndTheRecord()
    {
        QFETCH(QStringList, path);
        QFETCH(QString, menu);
        QFETCH(int, level);
        QFETCH(int, id);
        QFETCH(int, parent);
        QFETCH(QString, name);
        QFETCH(QStringList, list);
        NavHarness h;
        h.loadSample();
        // Before any click only drawers are loaded: no folders yet.
        QCOMPARE(h.childKeys("DRW1"), QStringList{});
        h.clickPath(path);
        // A mouse click leaves the record empty again when the button comes up; a command
        // then finds the clicked node as the tree's selection.
        for (int l = 0; l < 4; ++l) {
            QCOMPARE(h.session->selection().idOf(Level(l)), -1);
            QCOMPARE(h.navigator().target().targetId(Level(l)), l == level ? id : -1);
        }
        // Enter drives the window as a click does, and the record it fills stays.
        h.click("ROOT");
        h.tree()->selectNode(path.last());
        QTest::keyClick(h.tree(), Qt::Key_Return);
        const SelectionRecord& r = h.session->selection();
        QCOMPARE(r.lastNodeKey, path.last());
        QCOMPARE(h.visibleLevelMenu(), menu);
        QCOMPARE(r.parentId, parent);
        for (int l = 0; l < 4; ++l)
            QCOMPARE(r.idOf(Level(l)), l == level ? id : -1);
        QCOMPARE(r.name, name);
        if (level == 3) {
            QVERIFY(h.window->pageList()->isVisible());
            QCOMPARE(h.pageTexts(), QStringList({"Page 1", "Page 2"}));
        } else {
            QCOMPARE(h.listTexts(), list);
        }
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void levelsFillAsTheyOpen()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        // A cabinet click brings its folders; documents wait for the drawer.
        QCOMPARE(h.childTexts("DRW1"), (QStringList{"Checking", "Savings"}));
        QCOMPARE(h.childKeys("FLD1"), QStringList{});
        const int before = h.tree()->nodeCount();
        h.click("ROOT");
        h.click("CAB1");
        QCOMPARE(h.tree()->nodeCount(), before);
        h.click("DRW1");
        QCOMPARE(h.childTexts("FLD1"),
                 (QStringList{"March statement (03/31/2026)", "O'Brien's letter"}));
        // Expanding a drawer by hand loads the documents of its folders as well.
        h.tree()->node("DRW2")->setExpanded(true);
        QCOMPARE(h.childTexts("FLD3"), QStringList{"Return (04/15/2026)"});
    }

    void lockedCabinetAsksForItsPassword()
    {
        NavHarness h;
        h.loadSample();
        QCOMPARE(h.childKeys("CAB2"), QStringList{}); // a bare node
        const QString listBefore = h.listTexts().join('|');

        h.choosers.queuePassword(std::nullopt); // Cancel, or the window closed
        h.click("CAB2");
        QCOMPARE(h.childKeys("CAB2"), QStringList{});
        QVERIFY(!h.tree()->node("CAB2")->isExpanded());
        QCOMPARE(h.session->selection().lastNodeKey, QStringLiteral("CAB2"));
        QCOMPARE(h.listTexts().join('|'), listBefore);

        h.choosers.queuePassword(QStringLiteral("wrong"));
        h.prompter.expect("Access Denied");
        h.click("CAB2");
        QCOMPARE(h.childKeys("CAB2"), QStringList{});

        // The right password opens it and its rebuilt node is filled; the node was the one
        // handled last, so the list stays until another node has been clicked.
        h.choosers.queuePassword(QStringLiteral("secret"));
        h.click("CAB2");
        QVERIFY(h.session->locks().isCabinetOpen(2));
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.listTexts().join('|'), listBefore);
        h.click("ROOT");
        h.click("CAB2");
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.childTexts("DRW3"), QStringList{"Doctor"});
        QCOMPARE(h.listTexts(), QStringList{"Health"});
        QCOMPARE(h.navigator().target().targetId(Level::Cabinet), 2);
        QCOMPARE(h.choosers.passwordAsks(), 3);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void namesAndDatesFollowUpdates()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        h.click("DRW1");
        h.click("FLD1");
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("March statement (03/31/2026)"));
        h.navigator().itemRenamed(Level::Document, 1, "April statement", QDate());
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("April statement"));
        QVERIFY(h.listTexts().contains("April statement"));
        h.navigator().itemRenamed(Level::Document, 1, "April statement", QDate(2026, 4, 30));
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("April statement (04/30/2026)"));
        h.navigator().itemRenamed(Level::Folder, 1, "Current account", QDate());
        QCOMPARE(h.tree()->node("FLD1")->text(0), QStringLiteral("Current account"));
        // Not in the list: only the tree changes, without complaint.
        h.navigator().itemRenamed(Level::Cabinet, 1, "Home & Co", QDate());
        QCOMPARE(h.tree()->node("CAB1")->text(0), QStringLiteral("Home & Co"));
        h.navigator().itemAdded(CreatedItem{Level::Document, 1, 99, "Receipt", QDate(2026, 1, 5)});
        QCOMPARE(h.tree()->node("DOC99")->text(0), QStringLiteral("Receipt (01/05/2026)"));
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DOC99"));
    }

    void restoreWalk_data()
    {
        QTest::addColumn<QString>("saved");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("menu");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("parent");
        QTest::addColumn<QStringList>("list");
        QTest::newRow("cabinet") << "CAB1"
                                 << "CAB1"
                                 << "mnuPopupCabinet" << 0 << -1 << QStringList{"Bank", "Taxes"};
        QTest::newRow("drawer") << "DRW2"
                                << "DRW2"
                                << "mnuPopupDrawer" << 1 << 1 << QStringList{"2025"};
        QTest::newRow("folder") << "FLD1"
                                << "FLD1"
                                << "mnuPopupFolder" << 2 << 1
                                << QStringList{"March statement", "O'Brien's letter"};
        QTest::newRow("document") << "DOC3"
                                  << "DOC3"
                                  << "mnuPopupDocument" << 3 << 3 << QStringList{};
        QTest::newRow("gone") << "FLD77"
                              << ""
                              << "mnuPopupFolder" << -1 << -1 << QStringList{};
        QTest::newRow("locked") << "FLD4"
                                << ""
                                << "mnuPopupFolder" << -1 << -1 << QStringList{};
        QTest::newRow("page key") << "PAG1"
                                  << ""
                                  << "" << -1 << -1 << QStringList{};
        QTest::newRow("garbage") << "XYZ"
                                 << ""
                                 << "" << -1 << -1 << QStringList{};
        QTest::newRow("root") << "ROOT"
                              << ""
                              << "" << -1 << -1 << QStringList{};
    }
    void restoreWalk()
    {
        QFETCH(QString, saved);
        QFETCH(QString, selected);
        QFETCH(QString, menu);
        QFETCH(int, level);
        QFETCH(int, parent);
        QFETCH(QStringList, list);
        NavHarness h;
        test::FixtureStore(h.home.home()).fillSample();
        h.home.settings().saveSetting("LastNavTreeNodeKey", saved);
        h.load();
        QCOMPARE(h.choosers.passwordAsks(), 0); // a start never asks
        QCOMPARE(h.session->selection().lastNodeKey, saved);
        QCOMPARE(h.visibleLevelMenu(), menu);
        if (selected.isEmpty()) {
            QVERIFY(h.tree()->selectedKey().isEmpty() || h.tree()->selectedKey() == "ROOT");
            // Where the walk stopped short, the place is kept for the next start; a click
            // afterwards makes the clicked node the place.
            const QString inView = h.tree()->selectedKey();
            h.window->close();
            QCOMPARE(h.home.reopenSettings().getSetting("LastNavTreeNodeKey"),
                     menu.isEmpty() ? inView : saved);
            return;
        }
        QCOMPARE(h.tree()->selectedKey(), selected);
        const SelectionRecord& r = h.session->selection();
        QCOMPARE(r.idOf(Level(level)), NodeKey::parse(saved).id());
        QCOMPARE(r.parentId, parent);
        if (level == 3)
            QCOMPARE(h.pageTexts().size(), 1);
        else
            QCOMPARE(h.listTexts(), list);
        // The walk opened every level down to the node.
        for (QTreeWidgetItem* p = h.tree()->node(selected)->parent(); p; p = p->parent())
            QVERIFY(p->isExpanded());
    }

    void aClickAfterAShortWalkIsTheNewPlace()
    {
        NavHarness h;
        test::FixtureStore(h.home.home()).fillSample();
        h.home.settings().saveSetting("LastNavTreeNodeKey", "FLD4"); // in the locked cabinet
        h.load();
        h.click("ROOT");
        h.window->close();
        QCOMPARE(h.home.reopenSettings().getSetting("LastNavTreeNodeKey"), QStringLiteral("ROOT"));
    }

    void dividerWidthIsSavedWhenLetGo()
    {
        NavHarness h;
        h.loadSample();
        auto* splitter = h.window->findChild<QSplitter*>("splMain");
        QVERIFY(splitter);
        QSplitterHandle* handle = splitter->handle(1);
        const int before = h.tree()->width();
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, grip);
        QTest::mouseMove(handle, grip + QPoint(60, 0));
        QVERIFY(!h.home.settings().contains("tvwMainWidth")); // not while it moves
        QTest::mouseRelease(handle, Qt::LeftButton, {}, grip + QPoint(60, 0));
        QVERIFY(h.tree()->width() != before);
        QCOMPARE(h.home.settings().getSetting("tvwMainWidth"),
                 QString::number(h.tree()->width() * 15));
        // The next start opens the tree at that width.
        const int saved = h.tree()->width();
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
        NavHarness h;
        Settings& s = h.home.settings();
        s.saveSetting("FirstShow", "N");
        s.savePlacement("frmNavTree", Placement{-5000, 9000, 480, 640, 0});
        h.load(false);
        QCOMPARE(h.window->geometry(), QRect(0, 0, 640, 480));
        // A place on the screen stays as it was saved.
        NavHarness on;
        on.home.settings().saveSetting("FirstShow", "N");
        on.home.settings().savePlacement("frmNavTree", Placement{30, 40, 480, 640, 0});
        on.load(false);
        QCOMPARE(on.window->geometry(), QRect(40, 30, 640, 480));
    }

    void exitAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("exits");
        QTest::newRow("yes") << int(Prompter::Answer::Yes) << true;
        QTest::newRow("no") << int(Prompter::Answer::No) << false;
        QTest::newRow("cancel") << int(Prompter::Answer::Cancel) << false;
    }
    void exitAsks()
    {
        QFETCH(int, answer);
        QFETCH(bool, exits);
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        h.click("DRW2");
        QSignalSpy spy(h.window.get(), &NavWindow::exitRequested);
        h.prompter.expect("Exit the Quillmere?", Prompter::Answer(answer));
        QTest::keyClick(h.tree(), Qt::Key_Escape);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.prompter.defaults(), QStringList{"No"}); // Escape, Enter: still running
        QCOMPARE(spy.count(), exits ? 1 : 0);
        QCOMPARE(h.session->db().isOpen(), !exits);
        Settings& s = h.home.reopenSettings();
        QCOMPARE(s.getSetting("LastNavTreeNodeKey"), exits ? QString("DRW2") : QString());
        QCOMPARE(s.contains("frmNavTree.WindowState"), exits);
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW2"));
    }

    void closingTheWindowSavesWithoutAsking()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        h.window->close();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        Settings& s = h.home.reopenSettings();
        QCOMPARE(s.getSetting("LastNavTreeNodeKey"), QStringLiteral("CAB1"));
        QCOMPARE(s.getSetting("FirstShow"), QStringLiteral("N"));
        QVERIFY(s.contains("frmNavTree.Width"));
        QVERIFY(!h.session->db().isOpen());
    }

    void listDoubleClickMovesTheTreeOnly()
    {
        NavHarness h;
        h.loadSample();
        h.tree()->selectNode("CAB1");
        QTest::keyClick(h.tree(), Qt::Key_Return); // fills the record, which then stays
        QListWidget* list = h.window->list();
        QListWidgetItem* bank = list->findItems("Bank", Qt::MatchExactly).value(0);
        QVERIFY(bank);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                           list->visualItemRect(bank).center());
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW1"));
        QCOMPARE(h.listTexts(), (QStringList{"Checking", "Savings"}));
        // The record and the menu still tell of the last click in the tree.
        QCOMPARE(h.session->selection().idOf(Level::Cabinet), 1);
        QCOMPARE(h.session->selection().idOf(Level::Drawer), -1);
        QCOMPARE(h.session->selection().lastNodeKey, QStringLiteral("CAB1"));
        QCOMPARE(h.visibleLevelMenu(), QStringLiteral("mnuPopupCabinet"));
    }

    void storeFailureIsAMessage()
    {
        NavHarness h;
        h.loadSample();
        h.session->db().execute("DROP TABLE Folder");
        h.prompter.expect("The store could not carry out the command: no such table: Folder");
        h.click("CAB1");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        // The window goes on working.
        h.click("ROOT");
        QCOMPARE(h.listTexts(), (QStringList{"Home Papers", "Private"}));
    }
};

QMR_TEST(TestNavTree)
#include "testnavtree.moc"
