#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "find/finddialog.h"
#include "navharness.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

using qmr::test::whenModal;

namespace {

void trigger(NavHarness& h, const char* action)
{
    QAction* a = h.window->menus().action(QLatin1String(action));
    QVERIFY2(a && a->isEnabled(), action);
    a->trigger();
}

// File > Find..., the keywords typed, Find pressed; `more` sets further criteria first.
void search(NavHarness& h, const QString& keywords,
            const std::function<void(FindDialog*)>& more = {})
{
    bool seen = false;
    whenModal(h.window.get(), [&](QWidget* w) {
        auto* dialog = qobject_cast<FindDialog*>(w);
        QVERIFY(dialog);
        seen = true;
        dialog->findChild<QLineEdit*>("txtKeywords")->setText(keywords);
        if (more)
            more(dialog);
        dialog->findChild<QPushButton*>("cmdFind")->click();
    });
    trigger(h, "mnuFileFind");
    QVERIFY(seen);
    QVERIFY(!QApplication::activeModalWidget());
}

QStringList topLevelTexts(NavHarness& h)
{
    QStringList texts;
    for (int i = 0; i < h.tree()->topLevelItemCount(); ++i)
        texts << h.tree()->topLevelItem(i)->text(0);
    return texts;
}

int pagesShown(NavHarness& h)
{
    return h.window->pageList()->isVisible() ? int(h.window->pageList()->entries().size()) : -1;
}

} // namespace

class TestFoundBranch : public QObject
{
    Q_OBJECT
private slots:
    void branchOfASearch()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        // "Checking" is a folder (all its documents) and "Return" a document.
        search(h, "checking return");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCoreApplication::processEvents(); // the tree sorts once events run
        QCOMPARE(topLevelTexts(h), (QStringList{"File Cabinets", "Found"}));
        QTreeWidgetItem* root = h.tree()->node("ROOTFOUND");
        QVERIFY(root);
        QCOMPARE(root->text(0), QString("Found"));
        QVERIFY(root->isExpanded());
        QCOMPARE(h.tree()->selectedKey(), QString("ROOTFOUND"));
        QCOMPARE(h.childKeys("ROOTFOUND"), QStringList{"FCB1"});
        QCOMPARE(h.childTexts("ROOTFOUND"), QStringList{"Home Papers"});
        QCOMPARE(h.childKeys("FCB1"), (QStringList{"FDW1", "FDW2"}));
        QCOMPARE(h.childKeys("FDW1"), QStringList{"FFD1"});
        QCOMPARE(h.childKeys("FDW2"), QStringList{"FFD3"});
        // Sorted by name, the bare names as the search read them, each document once.
        QCOMPARE(h.childTexts("FFD1"), (QStringList{"March statement", "O'Brien's letter"}));
        QCOMPARE(h.childKeys("FFD3"), QStringList{"FDC3"});
        for (const char* key : {"FCB1", "FDW1", "FDW2", "FFD1", "FFD3"})
            QVERIFY2(h.tree()->node(key)->isExpanded(), key);
        // The filing tree is as it was.
        QCOMPARE(h.tree()->parentKey("DRW1"), QString("CAB1"));
        QCOMPARE(h.tree()->parentKey("FDC1"), QString("FFD1"));

        // A document found by both passes stands once.
        search(h, "checking march");
        QCOMPARE(h.childKeys("ROOTFOUND"), QStringList{"FCB1"});
        QCOMPARE(h.childKeys("FCB1"), QStringList{"FDW1"});
        QCOMPARE(h.childKeys("FFD1"), (QStringList{"FDC1", "FDC2"}));
    }

    void nothingFoundAndEmptyFolders()
    {
        NavHarness h;
        h.loadSample();
        search(h, "statement");
        QVERIFY(h.tree()->node("FDC1"));
        h.prompter.expect("Nothing found.");
        search(h, "zebra");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        QVERIFY(!h.tree()->node("FDC1"));
        // Hits on an empty folder only: a bare "Found" and no message.
        search(h, "savings");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(h.tree()->node("ROOTFOUND"));
        QCOMPARE(h.tree()->node("ROOTFOUND")->childCount(), 0);
        QCOMPARE(h.tree()->selectedKey(), QString("ROOTFOUND"));
    }

    void lockedCabinetSkipped()
    {
        NavHarness h;
        h.loadSample();
        h.session->db().execute("INSERT INTO Document (FolderId, Name) VALUES (4, 'Checkup')");
        h.prompter.expect("Nothing found.");
        search(h, "doctor health checkup");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.choosers.passwordAsks(), 0);
        // Once opened, the cabinet is searched.
        h.choosers.queuePassword(QStringLiteral("secret"));
        h.click("CAB2");
        QVERIFY(h.session->locks().isCabinetOpen(2));
        search(h, "doctor");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.childKeys("ROOTFOUND"), QStringList{"FCB2"});
        QCOMPARE(h.tree()->node("FCB2")->text(0), QString("Private"));
        QCOMPARE(h.childKeys("FDW3"), QStringList{"FFD4"});
        QCOMPARE(h.childTexts("FFD4"), QStringList{"Checkup"});
    }

    void findFromEveryEntry_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("button") << "cmdFind";
        QTest::newRow("menu") << "mnuFileFind";
        QTest::newRow("F3") << "F3";
        QTest::newRow("Ctrl+F") << "Ctrl+F";
    }
    void findFromEveryEntry()
    {
        QFETCH(QString, how);
        NavHarness h;
        h.loadSample();
        QApplication::setActiveWindow(h.window.get());
        QVERIFY(QTest::qWaitForWindowActive(h.window.get()));
        h.click("CAB1");
        QString seen;
        whenModal(h.window.get(), [&](QWidget* w) {
            seen = w->objectName();
            w->findChild<QPushButton*>("cmdCancel")->click();
        });
        if (how == "cmdFind") {
            auto* button = h.window->findChild<QPushButton*>("cmdFind");
            QVERIFY(button->isEnabled());
            QTest::mouseClick(button, Qt::LeftButton);
        } else if (how == "mnuFileFind") {
            trigger(h, "mnuFileFind");
        } else {
            if (how == "F3")
                QTest::keyClick(h.tree(), Qt::Key_F3);
            else
                QTest::keyClick(h.tree(), Qt::Key_F, Qt::ControlModifier);
        }
        QTRY_COMPARE_WITH_TIMEOUT(seen, QString("frmFind"), 3000);
        // Cancel changes nothing in the tree.
        QVERIFY(!h.tree()->node("ROOTFOUND"));
    }

    void foundDocumentShowsTheSearchedPages()
    {
        NavHarness h;
        h.loadSample();
        // One page of March statement is large, the other small.
        h.session->db().execute("UPDATE Page SET FileSize = 900000 WHERE PageId = 2");
        h.session->db().execute("UPDATE Page SET FileSize = 1000 WHERE PageId = 1");
        search(h, "statement", [](FindDialog* d) {
            d->findChild<QLineEdit*>("txtFileSizeFrom")->setText("500");
            d->findChild<QLineEdit*>("txtFileSizeThru")->setText("5,000");
        });
        h.click("FDC1");
        QCOMPARE(pagesShown(h), 1);
        QCOMPARE(h.window->pageList()->entries().first().pageNumber, 1);
        QVERIFY(h.window->pageList()->isFound());
        // The copy stays selected: the filing tree is not moved to the document.
        QCOMPARE(h.tree()->selectedKey(), QString("FDC1"));
        QCOMPARE(h.visibleLevelMenu(), QString());
        // A refresh of the pane keeps the narrowing.
        h.navigator().refreshPages(1);
        QCOMPARE(pagesShown(h), 1);
        // The document itself shows all its pages.
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        QCOMPARE(pagesShown(h), 2);
        h.navigator().refreshPages(1);
        QCOMPARE(pagesShown(h), 2);
    }

    void foundNodesDoNothingOfTheirOwn()
    {
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1", "FLD1"});
        const QStringList listBefore = h.listTexts();
        search(h, "checking");
        for (const char* key : {"ROOTFOUND", "FCB1", "FDW1", "FFD1", "FDC1"}) {
            const Qt::ItemFlags flags = h.tree()->node(key)->flags();
            QVERIFY2(
                !(flags & (Qt::ItemIsEditable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled)),
                key);
        }
        // A click on a found place changes neither list nor record, and shows no menu.
        for (const char* key : {"ROOTFOUND", "FCB1", "FDW1", "FFD1"}) {
            h.click(key);
            QCOMPARE(h.listTexts(), listBefore);
            QVERIFY(h.window->list()->isVisible());
            QCOMPARE(h.visibleLevelMenu(), QString());
            QVERIFY(h.session->selection().node.isEmpty());
        }
        // Double click, Insert and Delete on a found document do nothing.
        h.click("FDC1");
        emit h.tree()->itemDoubleClicked(h.tree()->node("FDC1"), 0);
        QTest::keyClick(h.tree(), Qt::Key_Insert);
        QTest::keyClick(h.tree(), Qt::Key_Delete);
        QTest::qWait(100);
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(h.tree()->node("FDC1"));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void renameAndDeleteReachTheCopies()
    {
        NavHarness h;
        h.loadSample();
        search(h, "checking return");
        Navigator& n = h.navigator();
        n.itemRenamed(Level::Document, 1, "April statement", QDate(2026, 4, 30));
        QCOMPARE(h.tree()->node("FDC1")->text(0), QString("April statement (04/30/2026)"));
        n.itemRenamed(Level::Document, 1, "April statement", QDate());
        QCOMPARE(h.tree()->node("FDC1")->text(0), QString("April statement"));
        n.itemRenamed(Level::Cabinet, 1, "Household", QDate());
        QCOMPARE(h.tree()->node("FCB1")->text(0), QString("Household"));
        n.itemRenamed(Level::Folder, 1, "Current account", QDate());
        QCOMPARE(h.tree()->node("FFD1")->text(0), QString("Current account"));

        n.itemRemoved(Level::Document, 2);
        QVERIFY(!h.tree()->node("FDC2"));
        QVERIFY(h.tree()->node("FDC1"));
        QVERIFY(h.tree()->node("FFD1"));
        n.itemRemoved(Level::Drawer, 2);
        QVERIFY(!h.tree()->node("FDW2"));
        QVERIFY(!h.tree()->node("FDC3")); // with its branch
        QCOMPARE(h.childKeys("FCB1"), QStringList{"FDW1"});
        n.itemRemoved(Level::Cabinet, 1);
        QVERIFY(h.tree()->node("ROOTFOUND"));
        QCOMPARE(h.tree()->node("ROOTFOUND")->childCount(), 0);
    }

    void clearResults()
    {
        NavHarness h;
        h.loadSample();
        search(h, "statement");
        h.click("FDC1");
        QCOMPARE(pagesShown(h), 2);
        QVERIFY(h.window->menus().action("mnuPopupFoundProperties")->isEnabled());
        trigger(h, "mnuPopupFoundProperties"); // does nothing
        QVERIFY(h.tree()->node("ROOTFOUND"));
        trigger(h, "mnuPopupFoundClear");
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        QVERIFY(!h.tree()->node("FDC1"));
        // The pages on show stay.
        QCOMPARE(pagesShown(h), 2);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void refreshTakesTheBranchAway()
    {
        NavHarness h;
        h.loadSample();
        search(h, "statement");
        QVERIFY(h.tree()->node("ROOTFOUND"));
        h.navigator().refreshNavTree();
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        QVERIFY(h.tree()->node("CAB1"));
    }
};

QMR_TEST(TestFoundBranch)
#include "testfoundbranch.moc"
