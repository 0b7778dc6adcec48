#include "navharness.h"
#include "navigator/renamecontroller.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// The open label editor of a control, nullptr when none is open.
QLineEdit* editorOf(QAbstractItemView* view)
{
    return qobject_cast<QLineEdit*>(view->indexWidget(view->currentIndex()));
}

// Lets the editor close and runs what its closing left queued (the checks of the new name)
// at once, however busy the machine is.
void settle(NavHarness& h)
{
    (void)QTest::qWaitFor([&] { return !h.navigator().rename().isEditing(); }, 5000);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

// Presses F2 in the control, types `text` over the label and confirms it with Enter; false
// when no editor opened.
bool renameWithKeys(NavHarness& h, QAbstractItemView* view, const QString& text,
                    QString* started = nullptr)
{
    view->setFocus();
    QTest::keyClick(view, Qt::Key_F2);
    QLineEdit* editor = editorOf(view);
    if (!editor)
        return false;
    if (started)
        *started = editor->text();
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    settle(h);
    return !h.navigator().rename().isEditing();
}

QString stored(NavHarness& h, Level level, qint32 id)
{
    return ItemStore(h.session->db()).item(level, id).name;
}

} // namespace

class TestRename : public QObject
{
    Q_OBJECT
private slots:
    void renamed_data()
    {
        // One row a path of the controller; the rules themselves are the store's (the
        // stripping in TestItemRules, the clash by parent in TestSchema).
        columns<QStringList, QString, QString, QString, QStringList, QString>(
            {"clicks", "select", "key", "typed", "messages", "name"});
        const QString bad = "The following characters are not allowed:\n\\ / : * ? \" < > | .";
        const QStringList cabinet{"CAB1"};
        const QStringList drawer{"CAB1", "DRW1"};
        const QStringList folder{"CAB1", "DRW1", "FLD1"};
        const QString taxes = "A drawer named 'Taxes' already exists.";
        row("cabinet clash", cabinet, "", "CAB1", "private",
            QStringList{"A file cabinet named 'private' already exists."}, "Home Papers");
        row("own name, other case", cabinet, "", "CAB1", "HOME PAPERS", QStringList{},
            "HOME PAPERS");
        row("drawer of another cabinet's name", drawer, "", "DRW1", "Health", QStringList{},
            "Health");
        row("folder clash in its drawer", folder, "", "FLD1", "savings",
            QStringList{"A folder named 'savings' already exists."}, "Checking");
        row("stripped, then a clash", drawer, "", "DRW1", "Tax:es", QStringList{bad, taxes},
            "Bank");
        row("nothing but bad characters", drawer, "", "DRW1", "/:*", QStringList{bad}, "Bank");
        row("too long", drawer, "", "DRW1", QString(81, 'b'),
            QStringList{"The name is too long: a drawer's name can have at most 80 characters."},
            "Bank");
        // The list refuses a name any other drawer or folder bears, in whatever parent.
        row("list drawer of another cabinet's name", cabinet, "list:Bank", "DRW1", "health",
            QStringList{"A drawer named 'health' already exists."}, "Bank");
        row("list document, no test", folder, "list:O'Brien's letter", "DOC2", "March statement",
            QStringList{}, "March statement");
        // No editor opens (no `key`) on the roots, a found copy, a locked cabinet, and in the
        // list on items whose lock test reads the tree's node: the root has no number, and a
        // drawer's number is taken for a cabinet's (drawer 2, cabinet 2 being locked).
        const QStringList root{"ROOT"};
        for (const char* select : {"ROOT", "ROOTFOUND", "FCB1", "CAB2", "list:Home Papers"})
            row(select, root, QString(select), "", "x", QStringList{}, "");
        row("list:2025", QStringList{"CAB1", "DRW2"}, "list:2025", "", "x", QStringList{}, "");
    }
    void renamed()
    {
        const auto [clicks, select, key, typed, messages, name] =
            fetch<QStringList, QString, QString, QString, QStringList, QString>(
                "clicks", "select", "key", "typed", "messages", "name");
        SampleWindow h(clicks);
        h.addFoundBranch();
        QAbstractItemView* view = select.isEmpty() ? h.tree() : h.select(select);
        for (const QString& m : messages)
            h.prompter.expect(m);
        QCOMPARE(renameWithKeys(h, view, typed), !key.isEmpty());
        QMR_VERIFY_PROMPTS(h);
        if (key.isEmpty()) {
            QVERIFY(!h.navigator().rename().isEditing());
            return;
        }
        const NodeKey k = NodeKey::parse(key);
        QCOMPARE(stored(h, *k.level(), k.id()), name);
        // The control and the tree's node, where the tree has it, show what the store holds.
        QTreeWidgetItem* node = h.tree()->node(key);
        QVERIFY(node || view != h.tree());
        if (node)
            QCOMPARE(node->text(0), name);
        if (view != h.tree())
            QVERIFY(h.listTexts().contains(name));
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(view));
    }

    // Enter ends the edit and nothing else; a document's label holds its date.
    void enterAndTheDocumentsDate()
    {
        SampleWindow h({"CAB1"});
        // The drawer is selected with the keyboard: the list still shows the cabinet's
        // drawers, and the Enter that confirms the new name does not open the drawer.
        h.tree()->selectNode("DRW1");
        QVERIFY(renameWithKeys(h, h.tree(), "Banking"));
        QCOMPARE(h.listTexts(), (QStringList{"Banking", "Taxes"}));
        QCOMPARE(h.visibleLevelMenu(), QStringLiteral("mnuPopupCabinet"));
        // The same in the list: the renamed drawer is not opened.
        h.selectInList("Taxes");
        QVERIFY(renameWithKeys(h, h.window->list(), "Tax"));
        QCOMPARE(h.listTexts(), (QStringList{"Banking", "Tax"}));
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW1"));
        h.clickPath({"DRW1", "FLD1"});
        h.addFoundBranch();
        h.tree()->selectNode("DOC1");
        // The label starts with the date, and what comes back is the name: a kept date brings
        // its slashes, which are stripped.
        QString started;
        h.prompter.expect("The following characters are not allowed:\n\\ / : * ? \" < > | .");
        QVERIFY(renameWithKeys(h, h.tree(), "March statement (03/31/2026)", &started));
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(started, QStringLiteral("March statement (03/31/2026)"));
        QCOMPARE(stored(h, Level::Document, 1), QStringLiteral("March statement (03312026)"));
        // With the date taken out the name is clean; the node then shows no date.
        QVERIFY(renameWithKeys(h, h.tree(), "April statement"));
        QCOMPARE(stored(h, Level::Document, 1), QStringLiteral("April statement"));
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("April statement"));
        QCOMPARE(h.tree()->node("FDC1")->text(0), QStringLiteral("April statement"));
        QCOMPARE(ItemStore(h.session->db()).fields(Level::Document, 1)->dateOnDocument,
                 QDate(2026, 3, 31)); // the stored date stays
    }

    // The rename command opens the label editor of the control that spoke last. Delete,
    // Insert, Escape and Enter in the editor act on the label only: they delete, add and exit
    // nothing.
    void theLabelEditor()
    {
        SampleWindow h({"CAB1", "DRW1"});
        h.selectInList("Savings");
        // From the list, with nothing in the record, the list's label; from the tree the tree's.
        for (const auto& [source, entry, view, label] :
             {std::tuple{ContextSource::List, "mnuPopupFolderRename",
                         static_cast<QAbstractItemView*>(h.window->list()), "Savings"},
              std::tuple{ContextSource::Tree, "mnuPopupDrawerRename",
                         static_cast<QAbstractItemView*>(h.tree()), "Bank"}}) {
            h.setSource(source);
            h.window->menus().action(entry)->trigger();
            QVERIFY(editorOf(view));
            QCOMPARE(editorOf(view)->text(), QString(label));
            QTest::keyClick(editorOf(view), Qt::Key_Escape);
            settle(h);
        }
        QVERIFY(!h.navigator().rename().isEditing());

        QSignalSpy exits(h.window.get(), &NavWindow::exitRequested);
        const auto edit = [&h] {
            h.tree()->setFocus();
            QTest::keyClick(h.tree(), Qt::Key_F2);
            QLineEdit* editor = editorOf(h.tree());
            if (editor) {
                editor->setCursorPosition(0);
                QTest::keyClick(editor, Qt::Key_Delete);
                QTest::keyClick(editor, Qt::Key_Insert);
            }
            return editor;
        };
        QLineEdit* editor = edit();
        QVERIFY(editor);
        QVERIFY(h.navigator().rename().isEditing());
        QCOMPARE(editor->text(), QStringLiteral("ank"));
        QTest::keyClick(editor, Qt::Key_Escape);
        settle(h);
        QMR_VERIFY_PROMPTS(h); // no exit question
        QVERIFY(!editorOf(h.tree()));
        QVERIFY(!h.navigator().rename().isEditing());
        QCOMPARE(stored(h, Level::Drawer, 1), QStringLiteral("Bank"));
        QCOMPARE(h.tree()->node("DRW1")->text(0), QStringLiteral("Bank"));
        QCOMPARE(exits.count(), 0);
        // Outside an edit, Escape asks again.
        h.prompter.expect("Exit the Quillmere?", Prompter::Answer::No);
        QTest::keyClick(h.tree(), Qt::Key_Escape);
        QMR_VERIFY_PROMPTS(h);
        editor = edit();
        QVERIFY(editor);
        QTest::keyClick(editor, Qt::Key_Return);
        settle(h);
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(stored(h, Level::Drawer, 1), QStringLiteral("ank"));
    }
};

QMR_TEST(TestRename)
#include "testrename.moc"
