#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "core/textfile.h"
#include "store/itemstore.h"
#include "templates/drawertemplates.h"
#include "templates/outlinefile.h"
#include "templates/samplecabinets.h"
#include "templates/sampledialog.h"
#include "templates/templateeditor.h"
#include "templates/templateoutline.h"
#include "tests/support/fixturestore.h"
#include "tests/support/navrecorder.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

const QStringList kHandWritten = {
    "DRW=Car",
    "DOC=Title, before any folder",
    "FLD=Repairs",
    "DOC=Invoice",
    "  FLD  =  Insurance  ",
    "fld=lower case",
    "DOC=Policy = 2026",
    "",
    "DRW = House",
    "FLD=Roof",
    "drw=Shed",
    "FLD=Tools",
};

QStringList texts(const QTreeWidgetItem* item)
{
    QStringList out;
    for (int i = 0; i < item->childCount(); ++i)
        out << item->child(i)->text(0);
    return out;
}

} // namespace

class TestDrawerTemplates : public QObject
{
    Q_OBJECT
private slots:
    void apply_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("made");
        QTest::newRow("car") << "Car"
                             << QStringList{"FLD Repairs", "DOC Invoice", "FLD Insurance",
                                            "DOC Policy = 2026"};
        // Blanks around "=" are applied, though the list does not show the template.
        // "drw" in lower case is no drawer line for this reader: Tools stays in House.
        QTest::newRow("house, any case") << "house" << QStringList{"FLD Roof", "FLD Tools"};
        QTest::newRow("missing") << "Boat" << QStringList{};
    }
    void apply()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, made);
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 drawer = store.drawer(store.cabinet("C"), "New");
        DrawerTemplates templates(home.home());
        QVERIFY(TextFile::writeLines(templates.filePath(), kHandWritten));
        templates.loadDrawerTemplates();
        QCOMPARE(templates.names(), QStringList{"Car"});
        ItemStore items(store.db());
        QStringList got;
        for (const CreatedItem& c : templates.applyDrawerTemplate(name, drawer, items)) {
            got << QLatin1String(levelInfo(c.level).prefix) + QLatin1Char(' ') + c.name;
            QCOMPARE(items.parentOf(c.level, c.id), c.parentId);
        }
        QCOMPARE(got, made);
        QCOMPARE(items.count(Level::Folder) + items.count(Level::Document), int(made.size()));
    }

    void editorReadsAndWrites()
    {
        // The editor takes keys in any case and names from the fifth character.
        const QVector<TemplateNode> nodes = TemplateOutline::read(kHandWritten);
        QStringList seen;
        for (const TemplateNode& n : nodes)
            seen << QString("%1:%2:%3").arg(n.key, n.name).arg(n.parent);
        // A document straight after a drawer line hangs below the drawer, so it is kept.
        QCOMPARE(seen, (QStringList{"DRW:Car:-1", "DOC:Title, before any folder:0", "FLD:Repairs:0",
                                    "DOC:Invoice:2", "FLD:lower case:0", "DOC:Policy = 2026:4",
                                    "DRW:= House:-1", "FLD:Roof:6", "DRW:Shed:-1", "FLD:Tools:8"}));
        QCOMPARE(TemplateOutline::write(nodes).mid(0, 5),
                 (QStringList{"", "DRW=Car", "DOC=Title, before any folder", "FLD=Repairs",
                              "DOC=Invoice"}));
    }

    void editorWritesBackWhatItRead()
    {
        // OK without a change writes every line that the editor understood, a document that
        // follows its drawer directly included.
        test::TestHome home;
        test::ScriptedPrompter prompter;
        DrawerTemplates templates(home.home());
        const QStringList lines{"", "DRW=Car", "DOC=Title", "FLD=Repairs", "DOC=Invoice"};
        QVERIFY(TextFile::writeLines(templates.filePath(), lines));
        {
            TemplateEditor editor(templates, prompter);
            QTreeWidgetItem* car = editor.tree()->topLevelItem(0)->child(0);
            QCOMPARE(texts(car), (QStringList{"Repairs", "Title"}));
            editor.cmdOK();
        }
        QCOMPARE(TextFile::readLines(templates.filePath()).value_or(QStringList()), lines);
        // Applying it passes the drawer's own document over, as before.
        test::FixtureStore store(home.home());
        const qint32 drawer = store.drawer(store.cabinet("C"), "D");
        ItemStore items(store.db());
        QCOMPARE(templates.applyDrawerTemplate("Car", drawer, items).size(), 2);
    }

    void editorSortsAsTheTreeDoesAndCancelWritesNothing()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        DrawerTemplates templates(home.home());
        const QStringList lines{"DRW=tax papers", "DRW=lower", "DRW=Tax Papers",
                                "DRW=Émile",      "DRW=Emma",  "DRW=ecole"};
        QVERIFY(TextFile::writeLines(templates.filePath(), lines));
        TemplateEditor editor(templates, prompter);
        QCOMPARE(texts(editor.tree()->topLevelItem(0)),
                 (QStringList{"ecole", "Émile", "Emma", "lower", "Tax Papers", "tax papers"}));
        editor.cmdAddChild();
        editor.findChild<QPushButton*>("cmdCancel")->click();
        QCOMPARE(TextFile::readLines(templates.filePath()).value_or(QStringList()), lines);
    }

    void oldCodePageTemplateFile()
    {
        // A file written on an older system in its single-byte code page, not UTF-8.
        test::TestHome home;
        QVERIFY(home.writeFile("Drawer.txt", QByteArray("DRW=Impr\xe9vus\r\nFLD=Re\xe7us\r\n")));
        DrawerTemplates templates(home.home());
        templates.loadDrawerTemplates();
        QCOMPARE(templates.names(), QStringList{QString::fromUtf8("Imprévus")});
        test::FixtureStore store(home.home());
        const qint32 drawer = store.drawer(store.cabinet("C"), "D");
        ItemStore items(store.db());
        const QVector<CreatedItem> made =
            templates.applyDrawerTemplate(QString::fromUtf8("imprévus"), drawer, items);
        QCOMPARE(made.size(), 1);
        QCOMPARE(made.first().name, QString::fromUtf8("Reçus"));
    }

    void editorKeepsCreationOrder()
    {
        test::TestHome home;
        test::ScriptedPrompter prompter;
        DrawerTemplates templates(home.home());
        QVERIFY(TextFile::writeLines(templates.filePath(),
                                     {"", "DRW=Alpha", "FLD=A1", "", "DRW=Beta", "FLD=B1"}));
        templates.loadDrawerTemplates();
        {
            TemplateEditor editor(templates, prompter);
            QTreeWidget* tree = editor.tree();
            QTreeWidgetItem* root = tree->topLevelItem(0);
            QCOMPARE(root->text(0), QStringLiteral("Drawers"));
            QCOMPARE(texts(root), (QStringList{"Alpha", "Beta"}));
            auto* add = editor.findChild<QPushButton*>("cmdAddChild");
            auto* remove = editor.findChild<QPushButton*>("cmdRemoveSibling");
            auto* sibling = editor.findChild<QPushButton*>("cmdAddSibling");
            QCOMPARE(add->text(), QStringLiteral("Add Drawer"));
            QVERIFY(!remove->isEnabled());
            QVERIFY(!sibling->isEnabled());
            // A folder added to the first drawer is written after everything that was read.
            tree->setCurrentItem(root->child(0));
            QCOMPARE(add->text(), QStringLiteral("Add Folder"));
            QCOMPARE(remove->text(), QStringLiteral("Remove Drawer"));
            editor.cmdAddChild();
            QCOMPARE(tree->currentItem()->text(0), QStringLiteral("New Folder"));
            QCOMPARE(add->text(), QStringLiteral("Add Document"));
            QCOMPARE(remove->text(), QStringLiteral("Remove Folder"));
            tree->closePersistentEditor(tree->currentItem());
            tree->currentItem()->setText(0, "A2");
            editor.cmdAddChild();
            QCOMPARE(remove->text(), QStringLiteral("Remove Document"));
            QVERIFY(!add->isEnabled());
            tree->currentItem()->setText(0, "Doc in A2");
            // Removing a drawer takes its folders along.
            tree->setCurrentItem(root->child(1));
            tree->setCurrentItem(root);
            editor.cmdAddChild();
            tree->currentItem()->setText(0, "Gamma");
            editor.cmdAddChild();
            tree->currentItem()->setText(0, "G1");
            tree->setCurrentItem(tree->currentItem()->parent());
            editor.cmdRemoveSibling();
            editor.cmdOK();
        }
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(TextFile::readLines(templates.filePath()).value_or(QStringList()),
                 (QStringList{"", "DRW=Alpha", "FLD=A1", "", "DRW=Beta", "FLD=B1", "FLD=A2",
                              "DOC=Doc in A2"}));
        QCOMPARE(templates.names(), (QStringList{"Alpha", "Beta"}));
        // Read again, the new folder now stands under the second drawer.
        TemplateEditor again(templates, prompter);
        QTreeWidgetItem* beta = again.tree()->topLevelItem(0)->child(1);
        QCOMPARE(texts(beta), (QStringList{"A2", "B1"}));
    }

    void sampleDialog()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        store.cabinet("second");
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        test::NavRecorder nav;
        SampleCabinets samples(home.home(), store.db(), &nav);
        QVERIFY(TextFile::writeLines(samples.filePath(),
                                     {"CAB=First", " DRW=D", "CAB=Second", "CAB=Third"}));
        SampleDialog dialog(samples, prompter, choosers);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Create Sample Cabinet"));
        QListWidget* list = dialog.list();
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->currentRow(), 0);
        // A name that differs only in case is taken.
        list->setCurrentRow(1);
        prompter.expect("A cabinet named 'Second' already exists.");
        dialog.cmdCreate();
        list->setCurrentRow(-1);
        list->clearSelection();
        prompter.expect("Please select a sample cabinet to create.");
        dialog.cmdCreate();
        list->setCurrentRow(0);
        dialog.cmdCreate();
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(dialog.result(), QDialog::Accepted);
        QCOMPARE(nav.calls.first(), QStringLiteral("CAB2 First"));

        SampleDialog edit(samples, prompter, choosers);
        choosers.failEditor("Cannot start nano.");
        prompter.expect("Error # Cannot start nano.");
        edit.findChild<QPushButton*>("cmdEdit")->click();
        QCOMPARE(choosers.edited(), QStringList{samples.filePath()});
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
    }
};

QMR_TEST(TestDrawerTemplates)
#include "testdrawertemplates.moc"
