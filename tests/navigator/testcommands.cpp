#include <QComboBox>

#include "core/pageopener.h"
#include "navharness.h"
#include "print/printcommands.h"
#include "templates/samplecabinets.h"
#include "viewer/pagecanvas.h"
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
        // `select`: "list:" and an item, the list then speaking last, or a node the keyboard chose.
        columns<QStringList, QString, QString, int, int, QString>(
            {"clicks", "select", "action", "level", "parent", "caption"});
        const QString drawer = "Add Drawer";
        const QString folder = "Add Folder";
        const QString document = "Add Document";
        row("drawer in clicked cabinet", QStringList{"CAB1"}, "", "mnuPopupCabinetNewDrawer", 1, 1,
            drawer);
        row("drawer beside clicked drawer", QStringList{"CAB1", "DRW2"}, "",
            "mnuPopupDrawerNewDrawer", 1, 1, drawer);
        row("folder in clicked drawer", QStringList{"CAB1", "DRW2"}, "", "mnuPopupDrawerNewFolder",
            2, 2, folder);
        row("folder beside clicked folder", QStringList{"CAB1", "DRW2", "FLD3"}, "",
            "mnuPopupFolderNewFolder", 2, 2, folder);
        row("document in clicked folder", QStringList{"CAB1", "DRW1", "FLD1"}, "",
            "mnuPopupFolderNewDocument", 3, 1, document);
        row("document beside clicked document", QStringList{"CAB1", "DRW2", "FLD3", "DOC3"}, "",
            "mnuPopupDocumentNewDocument", 3, 3, document);
        row("drawer in the list's cabinet", QStringList{"ROOT"}, "list:Home Papers",
            "mnuPopupCabinetNewDrawer", 1, 1, drawer);
        row("folder beside the list's folder", QStringList{"CAB1", "DRW1"}, "list:Checking",
            "mnuPopupFolderNewFolder", 2, 1, folder);
        row("cabinet", QStringList{"ROOT"}, "", "mnuPopupRootNewFileCabinet", 0, -1,
            "Add File Cabinet");
        row("Insert in the tree", QStringList{"CAB1", "DRW1"}, "", "Insert", 2, 1, folder);
        // The arrow keys move the selection without driving the window; Insert then adds a
        // drawer to the cabinet that is selected, not to the one clicked last.
        row("Insert follows the keyboard", QStringList{"CAB1"}, "CAB2", "Insert", 1, 2, drawer);
    }
    void newItemsFindTheirParent()
    {
        const auto [clicks, select, action, level, parent, caption] =
            fetch<QStringList, QString, QString, int, int, QString>(
                {"clicks", "select", "action", "level", "parent", "caption"});
        SampleWindow h(clicks);
        h.session->locks().recordOpen(2);
        if (!select.isEmpty() && h.select(select) == h.window->list())
            h.setSource(ContextSource::List);
        const int before = ItemStore(h.session->db()).count(Level(level));
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) { typeNameAndOk(d, "Brand new", &seen); });
        if (action == "Insert")
            QTest::keyClick(h.tree(), Qt::Key_Insert);
        else
            h.trigger(action);
        QCOMPARE(seen, caption);
        ItemStore items(h.session->db());
        QCOMPARE(items.count(Level(level)), before + 1);
        const qint32 id = h.session->db()
                              .scalar(QString("SELECT MAX(%1Id) FROM %1")
                                          .arg(QLatin1String(levelInfo(Level(level)).word)))
                              .toInt();
        QCOMPARE(items.item(Level(level), id).name, QStringLiteral("Brand new"));
        QCOMPARE(items.parentOf(Level(level), id), parent);
        // The new item stands in the tree, selected, under its parent.
        const QString key = NodeKey::of(Level(level), id).text();
        QCOMPARE(h.tree()->selectedKey(), key);
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

        // A double click on a document; its cleared date leaves the bare name.
        h.clickPath({"CAB1", "DRW1"});
        answer([&](QWidget* d) {
            d->findChild<QLineEdit*>("txtDateOnDocument")->clear();
            button(d, "cmdOK");
        });
        emit h.tree()->itemDoubleClicked(h.tree()->node("DOC1"), 0);
        QCOMPARE(seen, QStringLiteral("Document Properties (1)"));
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("March statement"));

        // The page properties tell of every page selected.
        h.clickPath({"FLD1", "DOC1"});
        PageListView* pages = h.window->pageList()->list();
        QCOMPARE(pages->count(), 2);
        pages->selectAllPages();
        answer([&](QWidget* d) {
            seen = d->findChild<QLabel*>("lblPageIdData")->text();
            button(d, "cmdOK");
        });
        h.trigger("mnuPopupPageProperties");
        QCOMPARE(seen, QStringLiteral("2 pages"));
    }

    void renumbering_data()
    {
        columns<int, QString>({"answer", "numbers"});
        row("yes", int(Prompter::Answer::Yes), "1,2");
        row("no", int(Prompter::Answer::No), "5,5");
        row("cancel", int(Prompter::Answer::Cancel), "5,5");
    }
    void renumbering()
    {
        const auto [answer, numbers] = fetch<int, QString>({"answer", "numbers"});
        SampleWindow h;
        h.session->db().execute("UPDATE Page SET PageNumber = 5 WHERE DocumentId = 1");
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.prompter.expect("Renumber all pages in 'March statement'?", Prompter::Answer(answer));
        h.trigger("mnuPopupDocumentRepaginate");
        QMR_VERIFY_PROMPTS(h);
        const Recordset rs = h.session->db().openRecordset(
            "SELECT PageNumber FROM Page WHERE DocumentId = 1 ORDER BY PageId");
        QCOMPARE(QString("%1,%2").arg(rs.integer(0, "PageNumber")).arg(rs.integer(1, "PageNumber")),
                 numbers);
        QCOMPARE(h.pageTexts().value(1), "Page " + numbers.section(',', 1));
    }

    void renumberOnePage_data()
    {
        columns<QString, bool, int>({"typed", "ok", "stored"});
        row("number", "7", true, 7);
        row("no number", "seven", true, 2);
        row("cancel", "9", false, 2);
    }
    void renumberOnePage()
    {
        const auto [typed, ok, stored] = fetch<QString, bool, int>({"typed", "ok", "stored"});
        SampleWindow h({"CAB1", "DRW1", "FLD1", "DOC1"});
        PageListView* pages = h.window->pageList()->list();
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

    void sampleCabinetFromTheMenu()
    {
        NavHarness h;
        // A line of the file that cannot be used is named after the cabinet is made without it.
        QVERIFY(TextFile::writeLines(h.home.file("Sample.txt"), SampleCabinets::defaultText()
                                                                    << " DRW=" + QString(81, 'x')));
        const QString unused = "Some lines of " + h.home.file("Sample.txt") +
                               " could not be used; the sample cabinet 'Generic File Cabinet' was "
                               "made without them.\nSample.txt, line 23: The name is too long: a "
                               "drawer's name can have at most 80 characters.";
        h.prompter.expect(unused);
        h.load(); // the first start made "Generic File Cabinet"
        QCOMPARE(h.listTexts().size(), 6);
        h.prompter.expect("A cabinet named 'Generic File Cabinet' already exists.");
        whenModal(h.window.get(), [](QWidget* d) {
            d->findChild<QPushButton*>("cmdCreate")->click();
            d->findChild<QPushButton*>("cmdCancel")->click();
        });
        h.trigger("mnuToolsCreateSampleCabinet");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(ItemStore(h.session->db()).count(Level::Cabinet), 1);

        // Renamed, the cabinet no longer blocks a second copy of the sample.
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
        // What the window shows: its name ("#title": its caption instead) and the texts of the
        // named labels and boxes, joined by '|'.
        columns<QString, QStringList, QString>({"entry", "fields", "shown"});
        row("view settings", "mnuViewSettings", QStringList{}, "frmViewSettings");
        row("email settings", "mnuEmailSettings", QStringList{}, "frmEmailSettings");
        row("print settings", "mnuPrintSettings", QStringList{"txtHeightPct"},
            "frmPrintSettings|100");
        row("print a document", "mnuPopupDocumentPrint", QStringList{"lblItem", "txtFrom", "txtTo"},
            "frmPrintDocument|Document: March statement|1|2");
        row("print a page", "mnuPopupPagePrint", QStringList{"lblItem"},
            "frmPrint|Page 2 of March statement");
        row("help topics", "mnuHelpHelpTopics", QStringList{}, "frmHelp");
        row("about", "mnuHelpAbout", QStringList{"#title", "lblPgCnt"},
            "About Quillmere|Pages stored: 3");
    }
    void entryOpensItsWindow()
    {
        const auto [entry, fields] = fetch<QString, QStringList>({"entry", "fields"});
        SampleWindow h;
        QVERIFY(TextFile::writeLines(h.home.file("qmrhelp.txt"), {"[toc]", "1=Only topic"}));
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        if (entry.contains("Page")) {
            QVERIFY(h.window->pageList()->selectPage(2));
            h.setSource(ContextSource::PageList);
        }
        QString shown;
        // The email settings ask the keyring before they are shown, letting events run.
        whenModal(this, [&](QWidget* w) {
            const bool title = fields.value(0) == "#title";
            QStringList texts{title ? w->windowTitle() : w->objectName()};
            for (const QString& name : fields.mid(title ? 1 : 0))
                if (auto* label = w->findChild<QLabel*>(name))
                    texts << label->text();
                else if (auto* box = w->findChild<QLineEdit*>(name))
                    texts << box->text();
                else
                    texts << "<missing " + name + ">";
            shown = texts.join('|');
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
        int pictures = 0;
        for (const PageRow& page : PageStore(h.db()).pages(1))
            pictures += !page.shortcut;
        QVERIFY(pictures > 1);
        h.prompter.expect(QString("%1 pages have not been read yet; the PDF holds their pictures "
                                  "without text.")
                              .arg(pictures));
        h.trigger("mnuPopupDocumentSearchablePdf");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(QFileInfo(h.choosers.saveStarts().value(0)).fileName(),
                 QString("March statement.pdf"));
        QFile written(pdf);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.read(5) == "%PDF-");

        PageOpener* opener = h.navigator().context().pageOpener;
        QVERIFY(opener);
        opener->openPage(1);
        PageViewWindow* viewer = nullptr;
        QTRY_VERIFY((viewer = h.window->findChild<PageViewWindow*>()) != nullptr);
        QTRY_COMPARE(viewer->windowTitle(), QString("Page # 1 (ID = 1)"));
        QVERIFY(viewer->isWindow());
        QVERIFY(viewer->canvas()->hasImage());
        viewer->close();
        QMR_VERIFY_PROMPTS(h);
    }
};

QMR_TEST(TestCommands)
#include "testcommands.moc"
