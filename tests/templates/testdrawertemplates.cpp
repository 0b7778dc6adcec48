#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "core/textfile.h"
#include "store/itemstore.h"
#include "templates/drawertemplates.h"
#include "templates/samplecabinets.h"
#include "templates/sampledialog.h"
#include "templates/templateeditor.h"
#include "templates/templateoutline.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/navrecorder.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

// A template file as written by hand, with the oddities a reader must take.
const QStringList kHandWritten = {"DRW=Car",
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
                                  "FLD=Tools"};

QStringList texts(const QTreeWidgetItem* item)
{
    QStringList out;
    for (int i = 0; i < item->childCount(); ++i)
        out << item->child(i)->text(0);
    return out;
}

// An empty store with the template and sample files of its home; what is made is told to
// the recorder.
struct Bench
{
    TestHome home;
    FixtureStore store{home.home()};
    ItemStore items{store.db()};
    NavRecorder nav;
    ScriptedPrompter prompter;
    SampleCabinets samples{home.home(), store.db(), &nav};
    DrawerTemplates templates{home.home()};

    explicit Bench(const QStringList& sampleLines = {})
    {
        if (!sampleLines.isEmpty())
            QVERIFY(TextFile::writeLines(samples.filePath(), sampleLines));
    }
    // Cabinets, drawers, folders and documents in the store.
    QList<int> counts()
    {
        return {items.count(Level::Cabinet), items.count(Level::Drawer), items.count(Level::Folder),
                items.count(Level::Document)};
    }
    QStringList templateFile() const
    {
        return TextFile::readLines(templates.filePath()).value_or(QStringList());
    }
    QVector<CreatedItem> apply(const QString& name)
    {
        return templates.applyDrawerTemplate(name, store.drawer(store.cabinet("C"), "D"), items);
    }
};

} // namespace

class TestTemplates : public QObject
{
    Q_OBJECT
private slots:
    void apply_data()
    {
        columns<QString, QStringList>({"name", "made"});
        row("car", QString("Car"),
            QStringList{"FLD Repairs", "DOC Invoice", "FLD Insurance", "DOC Policy = 2026"});
        // Blanks around "=" are applied, though the list does not show the template.
        // "drw" in lower case is no drawer line for this reader: Tools stays in House.
        row("house, any case", QString("house"), QStringList{"FLD Roof", "FLD Tools"});
        row("missing", QString("Boat"), QStringList{});
    }
    void apply()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, made);
        Bench b;
        QVERIFY(TextFile::writeLines(b.templates.filePath(), kHandWritten));
        b.templates.loadDrawerTemplates();
        QCOMPARE(b.templates.names(), QStringList{"Car"});
        QStringList got;
        for (const CreatedItem& c : b.apply(name)) {
            got << QLatin1String(levelInfo(c.level).prefix) + QLatin1Char(' ') + c.name;
            QCOMPARE(b.items.parentOf(c.level, c.id), c.parentId);
        }
        QCOMPARE(got, made);
        QCOMPARE(b.items.count(Level::Folder) + b.items.count(Level::Document), int(made.size()));
    }

    void namesAndOldCodePage()
    {
        Bench b;
        b.templates.loadDrawerTemplates();
        QVERIFY(b.templates.names().isEmpty()); // no file, no templates, no message
        QVERIFY(TextFile::writeLines(
            b.templates.filePath(),
            {"", "DRW=Car", "FLD=Repairs", "DOC=Invoice", "", "DRW=Key=Value", " DRW=Indented"}));
        b.templates.loadDrawerTemplates();
        QCOMPARE(b.templates.names(), (QStringList{"Car", "Key=Value"}));
        // A file written on an older system in its single-byte code page, not UTF-8.
        QVERIFY(b.home.writeFile("Drawer.txt", QByteArray("DRW=Impr\xe9vus\r\nFLD=Re\xe7us\r\n")));
        b.templates.loadDrawerTemplates();
        QCOMPARE(b.templates.names(), QStringList{QString::fromUtf8("Imprévus")});
        const QVector<CreatedItem> made = b.apply(QString::fromUtf8("imprévus"));
        QCOMPARE(made.size(), 1);
        QCOMPARE(made.first().name, QString::fromUtf8("Reçus"));
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
    }

    void editorOkWritesBackWhatItReadAndCancelNothing()
    {
        // OK without a change writes every line that the editor understood, a document that
        // follows its drawer directly included.
        Bench b;
        const QStringList lines{"", "DRW=Car", "DOC=Title", "FLD=Repairs", "DOC=Invoice"};
        QVERIFY(TextFile::writeLines(b.templates.filePath(), lines));
        {
            TemplateEditor editor(b.templates, b.prompter);
            QCOMPARE(texts(editor.tree()->topLevelItem(0)->child(0)),
                     (QStringList{"Repairs", "Title"}));
            editor.cmdOK();
        }
        QCOMPARE(b.templateFile(), lines);

        // Drawers sort as the tree does; Cancel after an addition writes nothing.
        const QStringList drawers{"DRW=tax papers", "DRW=lower", "DRW=Tax Papers",
                                  "DRW=Émile",      "DRW=Emma",  "DRW=ecole"};
        QVERIFY(TextFile::writeLines(b.templates.filePath(), drawers));
        TemplateEditor editor(b.templates, b.prompter);
        QCOMPARE(texts(editor.tree()->topLevelItem(0)),
                 (QStringList{"ecole", "Émile", "Emma", "lower", "Tax Papers", "tax papers"}));
        editor.cmdAddChild();
        editor.findChild<QPushButton*>("cmdCancel")->click();
        QCOMPARE(b.templateFile(), drawers);
    }

    void editorKeepsCreationOrder()
    {
        Bench b;
        QVERIFY(TextFile::writeLines(b.templates.filePath(),
                                     {"", "DRW=Alpha", "FLD=A1", "", "DRW=Beta", "FLD=B1"}));
        b.templates.loadDrawerTemplates();
        {
            TemplateEditor editor(b.templates, b.prompter);
            QTreeWidget* tree = editor.tree();
            QTreeWidgetItem* root = tree->topLevelItem(0);
            QCOMPARE(root->text(0), "Drawers");
            QCOMPARE(texts(root), (QStringList{"Alpha", "Beta"}));
            auto* add = editor.findChild<QPushButton*>("cmdAddChild");
            auto* remove = editor.findChild<QPushButton*>("cmdRemoveSibling");
            QCOMPARE(add->text(), "Add Drawer");
            QVERIFY(!remove->isEnabled());
            QVERIFY(!editor.findChild<QPushButton*>("cmdAddSibling")->isEnabled());
            // A folder added to the first drawer is written after everything that was read.
            tree->setCurrentItem(root->child(0));
            QCOMPARE(add->text(), "Add Folder");
            QCOMPARE(remove->text(), "Remove Drawer");
            editor.cmdAddChild();
            QCOMPARE(tree->currentItem()->text(0), "New Folder");
            QCOMPARE(add->text(), "Add Document");
            QCOMPARE(remove->text(), "Remove Folder");
            tree->closePersistentEditor(tree->currentItem());
            tree->currentItem()->setText(0, "A2");
            editor.cmdAddChild();
            QCOMPARE(remove->text(), "Remove Document");
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
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        QCOMPARE(b.templateFile(), (QStringList{"", "DRW=Alpha", "FLD=A1", "", "DRW=Beta", "FLD=B1",
                                                "FLD=A2", "DOC=Doc in A2"}));
        QCOMPARE(b.templates.names(), (QStringList{"Alpha", "Beta"}));
        // Read again, the new folder now stands under the second drawer.
        TemplateEditor again(b.templates, b.prompter);
        QCOMPARE(texts(again.tree()->topLevelItem(0)->child(1)), (QStringList{"A2", "B1"}));
    }

    void sampleDialog()
    {
        Bench b({"CAB=First", " DRW=D", "CAB=Second", "CAB=Third"});
        b.store.cabinet("second");
        ScriptedChoosers choosers;
        SampleDialog dialog(b.samples, b.prompter, choosers);
        QCOMPARE(dialog.windowTitle(), "Create Sample Cabinet");
        QListWidget* list = dialog.list();
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->currentRow(), 0);
        // A name that differs only in case is taken.
        list->setCurrentRow(1);
        b.prompter.expect("A cabinet named 'Second' already exists.");
        dialog.cmdCreate();
        list->setCurrentRow(-1);
        list->clearSelection();
        b.prompter.expect("Please select a sample cabinet to create.");
        dialog.cmdCreate();
        list->setCurrentRow(0);
        dialog.cmdCreate();
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        QCOMPARE(dialog.result(), QDialog::Accepted);
        QCOMPARE(b.nav.calls.first(), "CAB2 First");

        SampleDialog edit(b.samples, b.prompter, choosers);
        choosers.failEditor("Cannot start nano.");
        b.prompter.expect("Error # Cannot start nano.");
        edit.findChild<QPushButton*>("cmdEdit")->click();
        QCOMPARE(choosers.edited(), QStringList{b.samples.filePath()});
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
    }

    void defaultSample()
    {
        Bench b;
        QVERIFY(!QFile::exists(b.samples.filePath()));
        QVERIFY(b.samples.ensureFile());
        const QStringList lines = TextFile::readLines(b.samples.filePath()).value_or(QStringList());
        QCOMPARE(lines, SampleCabinets::defaultText());
        QCOMPARE(lines.at(18), "  FLD = Bank Acocunt");
        QCOMPARE(b.samples.sampleNames(), QStringList{"Generic File Cabinet"});
        const qint32 id = b.samples.createSampleCabinet("Generic File Cabinet");
        QCOMPARE(b.counts(), (QList<int>{1, 6, 15, 0}));
        QCOMPARE(b.items.item(Level::Cabinet, id).name, "Generic File Cabinet");
        QCOMPARE(b.nav.calls.first(), "CAB" + NavRecorder::key(id, "Generic File Cabinet"));
        QCOMPARE(b.nav.calls.last(), QString("SHOWCAB%1").arg(id));
        QCOMPARE(b.nav.calls.size(), 1 + 6 + 15 + 1);
        // The new cabinet has the stored form of no password: it is open.
        QCOMPARE(b.store.db().scalar("SELECT Password FROM Cabinet").toString(), QString());
        // A user's own file is never overwritten. Its cabinets add to the default one's
        // 1, 6, 15 and 0.
        QVERIFY(TextFile::writeLines(
            b.samples.filePath(),
            {"CAB=First", "  DRW = One", "    FLD=A", "      DOC = Deed = copy", "  DRW = Two",
             "      DOC = lost, the drawer cleared the folder", "CAB = Second", "  DRW = Three"}));
        QVERIFY(b.samples.ensureFile());
        QCOMPARE(b.samples.sampleNames(), (QStringList{"First", "Second"}));
        b.samples.createSampleCabinet("first"); // the name matches without regard to case
        QCOMPARE(b.counts(), (QList<int>{2, 8, 16, 1}));
        QCOMPARE(b.store.db().scalar("SELECT Name FROM Document").toString(), "Deed = copy");
        b.samples.createSampleCabinet("Second");
        QCOMPARE(b.counts(), (QList<int>{3, 9, 16, 1}));
    }

    void unusableLinesAreReported_data()
    {
        // `made`: cabinets, drawers, folders, documents.
        columns<QStringList, QList<int>, QStringList>({"file", "made", "unused"});
        const QString tooLong(81, 'x');
        row("name too long",
            QStringList{"CAB=Big", " DRW=Fine", "  FLD=" + tooLong, "  FLD=Kept", "CAB=Other",
                        " DRW=" + tooLong},
            QList<int>{1, 1, 1, 0},
            QStringList{
                "3: The name is too long: a folder's name can have at most 80 characters."});
        row("what stands below a line not used",
            QStringList{"CAB=Big", " DRW=" + tooLong, "  FLD=Lost", "   DOC=Lost too", " DRW=Next",
                        "  FLD=Kept", "   DOC=Kept too"},
            QList<int>{1, 1, 1, 1},
            QStringList{"2: The name is too long: a drawer's name can have at most 80 characters.",
                        "3: Its drawer on line 2 was not made.",
                        "4: Its folder on line 3 was not made."});
        row("no item above",
            QStringList{"CAB=Big", "  FLD=No drawer yet", "   DOC=Nor a folder", " DRW=D",
                        "   DOC=The drawer cleared the folder"},
            QList<int>{1, 1, 0, 0},
            QStringList{"2: A folder needs a drawer line above it.",
                        "3: Its folder on line 2 was not made.",
                        "5: A document needs a folder line above it."});
        row("no name, unknown keys",
            QStringList{"CAB=Big", " DRW =", "  FLD=Lost", " drw = lower case", " FDL = Typo",
                        "a note", "", " PAG = Page", " DRW", " DRW=Kept"},
            QList<int>{1, 1, 0, 0},
            QStringList{"2: It has no name.", "3: Its drawer on line 2 was not made.",
                        "4: It does not begin with DRW, FLD or DOC.",
                        "5: It does not begin with DRW, FLD or DOC.",
                        "8: It does not begin with DRW, FLD or DOC.", "9: It has no name."});
        QStringList many{"CAB=Big"};
        QStringList unused;
        for (int i = 2; i <= 18; ++i) {
            many << "  FLD=Orphan";
            unused << QString::number(i) + ": A folder needs a drawer line above it.";
        }
        row("many lines are counted", many, QList<int>{1, 0, 0, 0}, unused);
    }
    void unusableLinesAreReported()
    {
        QFETCH(QStringList, file);
        QFETCH(QStringList, unused);
        Bench b(file);
        const qint32 id = b.samples.createSampleCabinet("Big");
        // The cabinet is made with every line that could be used, and shown.
        QTEST(b.counts(), "made");
        QCOMPARE(b.nav.calls.last(), QString("SHOWCAB%1").arg(id));
        QStringList seen;
        for (const UnusedLine& line : b.samples.unusedLines())
            seen << QString::number(line.number) + ": " + line.reason;
        QCOMPARE(seen, unused);
        // One message names the file and each line, up to a count.
        const QStringList message = b.samples.unusedLinesMessage("Big").split('\n');
        QCOMPARE(message.first(), "Some lines of " + b.samples.filePath() +
                                      " could not be used; the sample cabinet 'Big' was made "
                                      "without them.");
        const int listed = qMin(int(unused.size()), int(SampleCabinets::kListedLines));
        for (int i = 0; i < listed; ++i)
            QCOMPARE(message.at(i + 1), "Sample.txt, line " + unused.at(i));
        QCOMPARE(message.size(), 1 + listed + (unused.size() > listed ? 1 : 0));
        if (unused.size() > listed)
            QCOMPARE(message.last(), "... and 2 more lines.");
    }
};

QMR_TEST(TestTemplates)
#include "testdrawertemplates.moc"
