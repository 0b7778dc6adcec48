#include "find/finddialog.h"
#include "navharness.h"

using namespace qmr;
using namespace qmr::test;

namespace {

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
    h.trigger("mnuFileFind");
    QVERIFY(seen);
    QVERIFY(!QApplication::activeModalWidget());
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
        SampleWindow h({"CAB1"});
        // "Checking" is a folder (all its documents) and "Return" a document.
        search(h, "checking return");
        QMR_VERIFY_PROMPTS(h);
        QCoreApplication::processEvents(); // the tree sorts once events run
        QCOMPARE(itemTexts(h.tree()->invisibleRootItem()), (QStringList{"File Cabinets", "Found"}));
        QVERIFY(h.tree()->node("ROOTFOUND")->isExpanded());
        QCOMPARE(h.tree()->selectedKey(), QString("ROOTFOUND"));
        QCOMPARE(h.childTexts("ROOTFOUND"), QStringList{"Home Papers"});
        QCOMPARE(h.branch("ROOTFOUND"),
                 QString("ROOTFOUND(FCB1(FDW1(FFD1(FDC1,FDC2)),FDW2(FFD3(FDC3))))"));
        // Sorted by name, the bare names as the search read them, each document once.
        QCOMPARE(h.childTexts("FFD1"), (QStringList{"March statement", "O'Brien's letter"}));
        for (const char* key : {"FCB1", "FDW1", "FDW2", "FFD1", "FFD3"})
            QVERIFY2(h.tree()->node(key)->isExpanded(), key);
        // The filing tree is as it was.
        QCOMPARE(h.tree()->parentKey("DRW1"), QString("CAB1"));

        // A document found by both passes stands once.
        search(h, "checking march");
        QCOMPARE(h.branch("ROOTFOUND"), QString("ROOTFOUND(FCB1(FDW1(FFD1(FDC1,FDC2))))"));
    }

    void nothingFoundLockedCabinetsAndClearing()
    {
        SampleWindow h;
        search(h, "statement");
        QVERIFY(h.tree()->node("FDC1"));
        h.prompter.expect("Nothing found.");
        search(h, "zebra");
        QMR_VERIFY_PROMPTS(h);
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        // Hits on an empty folder only: a bare "Found" (no message: TestFindDialog's).
        search(h, "savings");
        QCOMPARE(h.branch("ROOTFOUND"), QString("ROOTFOUND"));
        QCOMPARE(h.tree()->selectedKey(), QString("ROOTFOUND"));

        // A locked cabinet is skipped without asking (which cabinets are searched is
        // TestFindSearch::oneSession's).
        h.prompter.expect("Nothing found.");
        search(h, "doctor health");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(h.choosers.passwordAsks(), 0);

        // Clear and a refresh take the branch away; the pages on show stay.
        search(h, "statement");
        h.click("FDC1");
        QCOMPARE(pagesShown(h), 2);
        h.trigger("mnuPopupFoundProperties"); // does nothing
        QVERIFY(h.tree()->node("ROOTFOUND"));
        h.trigger("mnuPopupFoundClear");
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        QCOMPARE(pagesShown(h), 2);
        QMR_VERIFY_PROMPTS(h);
        search(h, "statement");
        QVERIFY(h.tree()->node("ROOTFOUND"));
        h.navigator().refreshNavTree();
        QVERIFY(!h.tree()->node("ROOTFOUND"));
        QVERIFY(h.tree()->node("CAB1"));
    }

    // The button, the menu, F3 and Ctrl+F open the search; Cancel changes nothing in the tree.
    void findFromEveryEntry()
    {
        SampleWindow h({"CAB1"});
        for (const QString how : {"cmdFind", "mnuFileFind", "F3", "Ctrl+F"}) {
            QApplication::setActiveWindow(h.window.get());
            QVERIFY(QTest::qWaitForWindowActive(h.window.get()));
            QString seen;
            whenModal(h.window.get(), [&](QWidget* w) {
                seen = how + ": " + w->objectName();
                w->findChild<QPushButton*>("cmdCancel")->click();
            });
            if (how == "cmdFind") {
                auto* button = h.window->findChild<QPushButton*>("cmdFind");
                QVERIFY(button->isEnabled());
                QTest::mouseClick(button, Qt::LeftButton);
            } else if (how == "mnuFileFind") {
                h.trigger(how);
            } else {
                QTest::keySequence(h.tree(), QKeySequence(how));
            }
            QTRY_COMPARE_WITH_TIMEOUT(seen, how + ": frmFind", 3000);
            QVERIFY2(!h.tree()->node("ROOTFOUND"), qPrintable(how));
        }
    }

    void foundDocumentShowsTheSearchedPages()
    {
        SampleWindow h;
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

    // Found nodes do nothing of their own; updates reach the nodes and their found copies.
    void foundNodes()
    {
        SampleWindow h({"CAB1", "DRW1", "FLD1"});
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("March statement (03/31/2026)"));
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
            QVERIFY(h.state.selection().node.isEmpty());
        }
        // Double click, Insert and Delete on a found document do nothing.
        h.click("FDC1");
        emit h.tree()->itemDoubleClicked(h.tree()->node("FDC1"), 0);
        QTest::keyClick(h.tree(), Qt::Key_Insert);
        QTest::keyClick(h.tree(), Qt::Key_Delete);
        QCoreApplication::processEvents();
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(h.tree()->node("FDC1"));
        QMR_VERIFY_PROMPTS(h);

        search(h, "checking return");
        // The node and its found copy show the same text.
        const auto shows = [&](const QString& key, const QString& text) {
            QCOMPARE(h.tree()->node(key)->text(0), text);
            const NodeKey k = NodeKey::parse(key);
            QCOMPARE(h.tree()->node(NodeKey::found(*k.level(), k.id()).text())->text(0), text);
        };
        // Removals reach the found copies as TestDeleteCommand::everyLevelFromTheTree checks.
        Navigator& n = h.navigator();
        n.itemRenamed(Level::Document, 1, "April statement", QDate());
        QVERIFY(h.listTexts().contains("April statement"));
        n.itemRenamed(Level::Document, 1, "April statement", QDate(2026, 4, 30));
        shows("DOC1", "April statement (04/30/2026)");
        n.itemRenamed(Level::Folder, 1, "Current account", QDate());
        shows("FLD1", "Current account");
        // Not in the list: only the tree changes, without complaint.
        n.itemRenamed(Level::Cabinet, 1, "Household", QDate());
        shows("CAB1", "Household");
        n.itemAdded(CreatedItem{Level::Document, 1, 99, "Receipt", QDate(2026, 1, 5)});
        QCOMPARE(h.tree()->node("DOC99")->text(0), QStringLiteral("Receipt (01/05/2026)"));
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DOC99"));
        QMR_VERIFY_PROMPTS(h);
    }
};

QMR_TEST(TestFoundBranch)
#include "testfoundbranch.moc"
