#include <QComboBox>

#include "core/pageopener.h"
#include "navharness.h"
#include "templates/samplecabinets.h"
#include "viewer/pageviewwindow.h"

using namespace qmr;
using namespace qmr::test;

namespace {

void typeNameAndOk(QWidget* dialog, const QString& name, QString* caption)
{
    if (caption)
        *caption = dialog->windowTitle();
    if (auto* box = dialog->findChild<QLineEdit*>("txtName"))
        box->setText(name);
    if (auto* ok = dialog->findChild<QPushButton*>("cmdOK"))
        ok->click();
}

} // namespace

class TestCommands : public QObject
{
    Q_OBJECT
private slots:
    void newItemsFindTheirParent_data()
    {
        // `clicks`: the nodes clicked, by ','; `select`: "list:" and an item, the list then
        // speaking last, or a node the keyboard chose; `entry` without its "mnuPopup".
        columns<QString, QString, QString, int, int>(
            {"clicks", "select", "entry", "level", "parent"});
        row("drawer in clicked cabinet", "CAB1", "", "CabinetNewDrawer", 1, 1);
        row("drawer beside clicked drawer", "CAB1,DRW2", "", "DrawerNewDrawer", 1, 1);
        row("folder in clicked drawer", "CAB1,DRW2", "", "DrawerNewFolder", 2, 2);
        row("folder beside clicked folder", "CAB1,DRW2,FLD3", "", "FolderNewFolder", 2, 2);
        row("document in clicked folder", "CAB1,DRW1,FLD1", "", "FolderNewDocument", 3, 1);
        row("document beside clicked one", "CAB1,DRW2,FLD3,DOC3", "", "DocumentNewDocument", 3, 3);
        row("drawer in the list's cabinet", "ROOT", "list:Home Papers", "CabinetNewDrawer", 1, 1);
        row("cabinet", "ROOT", "", "RootNewFileCabinet", 0, -1);
        row("Insert in the tree", "CAB1,DRW1", "", "", 2, 1);
        // The arrow keys move the selection without driving the window; Insert then adds a
        // drawer to the cabinet that is selected, not to the one clicked last.
        row("Insert follows the keyboard", "CAB1", "CAB2", "", 1, 2);
    }
    void newItemsFindTheirParent()
    {
        const auto [clicks, select, entry, level, parent] =
            fetch<QString, QString, QString, int, int>("clicks", "select", "entry", "level",
                                                       "parent");
        SampleWindow h(clicks.split(','));
        h.session->locks().recordOpen(2);
        if (!select.isEmpty() && h.select(select) == h.window->list())
            h.setSource(ContextSource::List);
        const int before = ItemStore(h.session->db()).count(Level(level));
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) { typeNameAndOk(d, "Brand new", &seen); });
        if (entry.isEmpty())
            QTest::keyClick(h.tree(), Qt::Key_Insert);
        else
            h.trigger("mnuPopup" + entry);
        QCOMPARE(seen, QStringList({"Add File Cabinet", "Add Drawer", "Add Folder", "Add Document"})
                           .at(level));
        // The new item is stored under the parent the command found (a document's row is
        // written by the command, not by its dialog).
        ItemStore items(h.session->db());
        QCOMPARE(items.count(Level(level)), before + 1);
        const qint32 id = h.session->db()
                              .scalar(QString("SELECT MAX(%1Id) FROM %1")
                                          .arg(QLatin1String(levelInfo(Level(level)).word)))
                              .toInt();
        QCOMPARE(items.item(Level(level), id).name, QStringLiteral("Brand new"));
        QCOMPARE(items.parentOf(Level(level), id), parent);
        // It stands in the tree, selected, under its parent.
        const QString key = NodeKey::of(Level(level), id).text();
        QCOMPARE(h.tree()->selectedKey(), key);
        QCOMPARE(h.tree()->node(key)->text(0), QStringLiteral("Brand new"));
        if (level > 0)
            QCOMPARE(h.tree()->parentKey(key),
                     NodeKey::of(*parentLevel(Level(level)), parent).text());
        QMR_VERIFY_PROMPTS(h);
    }

    // Each properties dialog opens on the item its control points at.
    void propertiesDialogs()
    {
        SampleWindow h({"CAB1"});
        QString seen;
        const auto answer = [&](const std::function<void(QWidget*)>& act) {
            whenModal(h.window.get(), [&seen, act](QWidget* d) {
                seen = d->windowTitle();
                act(d);
            });
        };
        const auto button = [](QWidget* d, const char* name) {
            d->findChild<QPushButton*>(name)->click();
        };
        answer([](QWidget* d) { typeNameAndOk(d, "Bank & Loans", nullptr); });
        // The drawer comes from the list, as nothing in the record names a drawer.
        h.selectInList("Bank", true);
        h.trigger("mnuPopupDrawerProperties");
        QCOMPARE(seen, QStringLiteral("Drawer Properties (1)"));
        QCOMPARE(h.tree()->node("DRW1")->text(0), QStringLiteral("Bank & Loans"));
        QVERIFY(h.listTexts().contains("Bank & Loans"));

        // A locked cabinet asks its password first; cancelled, no dialog.
        h.click("ROOT");
        h.selectInList("Private", true);
        h.choosers.queuePassword(std::nullopt);
        h.trigger("mnuPopupCabinetProperties");
        h.choosers.queuePassword(QStringLiteral("secret"));
        answer([&](QWidget* d) { button(d, "cmdCancel"); });
        h.trigger("mnuPopupCabinetProperties");
        QCOMPARE(seen, QStringLiteral("File Cabinet Properties (2)"));
        QCOMPARE(h.choosers.passwordAsks(), 2);
        // Opened from the list, the cabinet's node is filled as a click fills it.
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.childTexts("DRW3"), QStringList{"Doctor"});

        // A double click on a document (what its dialog changes is TestItemDialog's).
        h.clickPath({"CAB1", "DRW1"});
        answer([&](QWidget* d) { button(d, "cmdCancel"); });
        emit h.tree()->itemDoubleClicked(h.tree()->node("DOC1"), 0);
        QCOMPARE(seen, QStringLiteral("Document Properties (1)"));

        // The page properties tell of every page selected.
        h.clickPath({"FLD1", "DOC1"});
        h.window->pageList()->list()->selectAllPages();
        answer([&](QWidget* d) {
            seen = d->findChild<QLabel*>("lblPageIdData")->text();
            button(d, "cmdOK");
        });
        h.trigger("mnuPopupPageProperties");
        QCOMPARE(seen, QStringLiteral("2 pages"));
    }

    // The document's pages are renumbered on Yes only; then one page, to the number typed.
    void renumbering()
    {
        SampleWindow h;
        h.session->db().execute("UPDATE Page SET PageNumber = 5 WHERE DocumentId = 1");
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        for (const auto answer :
             {Prompter::Answer::No, Prompter::Answer::Cancel, Prompter::Answer::Yes}) {
            h.prompter.expect("Renumber all pages in 'March statement'?", answer);
            h.trigger("mnuPopupDocumentRepaginate");
            QMR_VERIFY_PROMPTS(h);
            const Recordset rs = h.session->db().openRecordset(
                "SELECT PageNumber FROM Page WHERE DocumentId = 1 ORDER BY PageId");
            const QString second = answer == Prompter::Answer::Yes ? "2" : "5";
            QCOMPARE(rs.integer(0, "PageNumber"), answer == Prompter::Answer::Yes ? 1 : 5);
            QCOMPARE(QString::number(rs.integer(1, "PageNumber")), second);
            QCOMPARE(h.pageTexts().value(1), "Page " + second);
        }
        PageListView* pages = h.window->pageList()->list();
        // Cancel, and a text that is no number, leave the page's number.
        for (const auto& [typed, ok, stored] :
             {std::tuple{"9", false, 2}, std::tuple{"seven", true, 2}, std::tuple{"7", true, 7}}) {
            pages->selectPage(pages->pageIdAt(1));
            QString present;
            whenModal(h.window.get(), [&](QWidget* d) {
                auto* box = d->findChild<QLineEdit*>("txtPageNumber");
                present = box->text();
                box->setText(typed);
                d->findChild<QPushButton*>(ok ? "cmdOK" : "cmdCancel")->click();
            });
            h.trigger("mnuPopupPageRenumber");
            QCOMPARE(present, QStringLiteral("2"));
            QCOMPARE(h.session->db().scalar("SELECT PageNumber FROM Page WHERE PageId = 2").toInt(),
                     stored);
            QCOMPARE(pages->textAt(1), "Page " + QString::number(stored));
        }
    }

    // Which lines are unusable and the clash of names are TestTemplates'
    // (unusableLinesAreReported, sampleDialog); here the message the person sees, and the entry
    // making a second cabinet once the first was renamed.
    void sampleCabinetFromTheMenu()
    {
        NavHarness h;
        // A line of the file that cannot be used is named after the cabinet is made without it,
        // at the first start and from the menu alike.
        QVERIFY(TextFile::writeLines(h.home.file("Sample.txt"), SampleCabinets::defaultText()
                                                                    << " DRW=" + QString(81, 'x')));
        const QString unused = "Some lines of " + h.home.file("Sample.txt") +
                               " could not be used; the sample cabinet 'Generic File Cabinet' was "
                               "made without them.\nSample.txt, line 23: The name is too long: a "
                               "drawer's name can have at most 80 characters.";
        h.prompter.expect(unused);
        h.load(); // the first start made "Generic File Cabinet"
        QMR_VERIFY_PROMPTS(h);
        h.session->db().execute("UPDATE Cabinet SET Name = 'Mine'");
        h.prompter.expect(unused);
        whenModal(h.window.get(),
                  [](QWidget* d) { d->findChild<QPushButton*>("cmdCreate")->click(); });
        h.trigger("mnuToolsCreateSampleCabinet");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(ItemStore(h.session->db()).count(Level::Cabinet), 2);
        QCOMPARE(h.tree()->node(h.tree()->selectedKey())->text(0),
                 QStringLiteral("Generic File Cabinet"));
        QCOMPARE(h.listTexts().size(), 6);
    }

    void drawerFromTemplateThroughTheMenu()
    {
        NavHarness h;
        QVERIFY(TextFile::writeLines(h.home.file("Drawer.txt"),
                                     {"", "DRW=Car", "FLD=Repairs", "DOC=Invoice"}));
        h.loadSample();
        h.templates->loadDrawerTemplates();
        h.click("CAB1");
        whenModal(h.window.get(), [](QWidget* d) {
            d->findChild<QLineEdit*>("txtName")->setText("My car");
            d->findChild<QComboBox*>("cboTemplate")->setCurrentIndex(1);
            d->findChild<QPushButton*>("cmdOK")->click();
        });
        h.trigger("mnuPopupCabinetNewDrawer");
        const QString drawer =
            "DRW" + h.session->db().scalar("SELECT MAX(DrawerId) FROM Drawer").toString();
        QCOMPARE(h.tree()->node(drawer)->text(0), QStringLiteral("My car"));
        QCOMPARE(h.childTexts(drawer), QStringList{"Repairs"});
        QCOMPARE(h.childTexts(h.childKeys(drawer).first()), QStringList{"Invoice"});
    }

    // The entries of the other features reach the main window: each brings its own window, on
    // the item it was given.
    void entryOpensItsWindow_data()
    {
        // The window's name, and the item it names, if any; what else each window shows is
        // its own folder's (TestPrintDialogs, TestHelpWindow, TestMailDialogs).
        columns<QString, QString>({"entry", "shown"});
        row("view settings", "mnuViewSettings", "frmViewSettings");
        row("email settings", "mnuEmailSettings", "frmEmailSettings");
        row("print settings", "mnuPrintSettings", "frmPrintSettings");
        row("print a document", "mnuPopupDocumentPrint",
            "frmPrintDocument|Document: March statement");
        row("print a page", "mnuPopupPagePrint", "frmPrint|Page 2 of March statement");
        row("help topics", "mnuHelpHelpTopics", "frmHelp");
        row("about", "mnuHelpAbout", "frmAbout");
    }
    void entryOpensItsWindow()
    {
        QFETCH(QString, entry);
        SampleWindow h({"CAB1", "DRW1", "FLD1", "DOC1"});
        QVERIFY(TextFile::writeLines(h.home.file("qmrhelp.txt"), {"[toc]", "1=Only topic"}));
        if (entry.contains("Page")) {
            QVERIFY(h.window->pageList()->selectPage(2));
            h.setSource(ContextSource::PageList);
        }
        QString shown;
        // The email settings ask the keyring before they are shown, letting events run.
        whenModal(this, [&](QWidget* w) {
            const auto* item = w->findChild<QLabel*>("lblItem");
            shown = w->objectName() + (item ? "|" + item->text() : QString());
            w->close();
        });
        h.trigger(entry);
        QTRY_VERIFY(!shown.isEmpty());
        QTEST(shown, "shown");
        QMR_VERIFY_PROMPTS(h);
    }

    // The document the tree points at is saved as a PDF of its pictures; the sample's pages
    // are not read, which the command says. A page opens in the viewer.
    void searchablePdfAndTheViewer()
    {
        SampleWindow h({"CAB1", "DRW1", "FLD1", "DOC1"});
        QTemporaryDir out;
        const QString pdf = out.filePath("statement.pdf");
        h.choosers.queueSaveFile(pdf);
        // The message's count is TestSearchablePdf's; the sample's two pages are unread.
        h.prompter.expect(
            "2 pages have not been read yet; the PDF holds their pictures without text.");
        h.trigger("mnuPopupDocumentSearchablePdf");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(QFileInfo(h.choosers.saveStarts().value(0)).fileName(),
                 QString("March statement.pdf"));
        QVERIFY(QFileInfo(pdf).size() > 0); // what it holds is TestSearchablePdf's
        // The window's opener is the viewer's (which TestPageViewer::opener checks).
        h.navigator().context().pageOpener->openPage(1);
        PageViewWindow* viewer = nullptr;
        QTRY_VERIFY((viewer = h.window->findChild<PageViewWindow*>()) != nullptr);
        QTRY_COMPARE(viewer->windowTitle(), QString("Page # 1 (ID = 1)"));
        QVERIFY(viewer->isWindow());
        viewer->close();
    }
};

QMR_TEST(TestCommands)
#include "testcommands.moc"
