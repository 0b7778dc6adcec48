#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "exchange/exchangecommands.h"
#include "exchangefixture.h"
#include "tests/navigator/navharness.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::fetch;
using test::NavHarness;
using test::row;
using test::whenModal;

namespace {

// Picks these types in the file-types dialog, then presses the button.
void chooseTypes(QObject* context, const QStringList& types, const QString& button,
                 QStringList* offered = nullptr)
{
    whenModal(context, [=](QWidget* dialog) {
        auto* list = dialog->findChild<QListWidget*>("lstFileTypes");
        for (int i = 0; list && i < list->count(); ++i) {
            if (offered)
                *offered << list->item(i)->text();
            list->item(i)->setSelected(types.contains(list->item(i)->text()));
        }
        if (auto* b = dialog->findChild<QPushButton*>(button))
            b->click();
    });
}

void writeFiles(const QString& dir, const QStringList& names)
{
    for (const QString& name : names) {
        if (name.toLower().endsWith("jpg"))
            ExchangeFixture::writeImage(dir + "/" + name);
        else
            ExchangeFixture::writeBytes(dir + "/" + name, "some text");
    }
}

// The sample store with a second open cabinet "Other" (3), loaded into the window.
void loadWithOther(NavHarness& h)
{
    h.openSession();
    test::FixtureStore store(h.home.home());
    store.fillSample();
    store.cabinet("Other");
    h.load();
}

// Runs an import of files from `dir`, the file types dialog answered as given.
void importFiles(NavHarness& h, const char* action, const QString& dir,
                 const QStringList& types = {}, const QString& button = "cmdAll",
                 QStringList* offered = nullptr)
{
    h.choosers.queueDirectory(dir);
    chooseTypes(h.window.get(), types, button, offered);
    h.window->menus().action(action)->trigger();
}

QStringList documentNames(Session& session, qint32 folderId)
{
    QStringList names;
    for (const ItemRow& row : session.items().children(Level::Document, folderId))
        names << row.name;
    return names;
}

} // namespace

class TestExchangeCommands : public QObject
{
    Q_OBJECT
private slots:
    void entriesAreWired()
    {
        NavHarness h;
        h.loadSample(false);
        for (const char* name :
             {"mnuToolsExportCabinet", "mnuToolsImportFiles", "mnuPopupCabinetExport",
              "mnuPopupCabinetImport", "mnuPopupFolderImportFiles", "mnuPopupDocumentImportFiles"})
            QVERIFY2(h.window->menus().action(QLatin1String(name))->isEnabled(), name);
    }

    void cabinetPopupTarget_data()
    {
        // listItem "@CAB1": the tree's pop-up on it
        test::columns<QString, QString, int, int>({"click", "listItem", "source", "cabinet"});
        const int tree = int(ContextSource::Tree), pages = int(ContextSource::PageList);
        row("the tree's pop-up fills the record", "CAB1", "@CAB1", tree, 1);
        // A left click leaves the record empty, and the tree is not asked.
        row("a left click in the tree: nothing", "CAB1", "", tree, -1);
        row("the list's item, the tree speaking: nothing", "ROOT", "CAB3", tree, -1);
        row("the page list: nothing", "ROOT", "CAB3", pages, -1);
    }
    void cabinetPopupTarget()
    {
        const auto [click, listItem, source, cabinet] =
            fetch<QString, QString, int, int>("click", "listItem", "source", "cabinet");
        NavHarness h;
        loadWithOther(h);
        h.click(click);
        if (listItem.startsWith("@"))
            h.state.selection().set(NodeKey::parse(listItem.mid(1)), "Home Papers", -1);
        else if (!listItem.isEmpty())
            h.window->list()->setCurrentItem(h.window->list()->itemOf(NodeKey::parse(listItem)));
        h.setSource(ContextSource(source));
        ExchangeCommands commands(h.navigator().context());
        QCOMPARE(commands.popupCabinet(), cabinet);
    }

    void popupOpensTheDialogOnItsCabinet_data()
    {
        test::columns<QString, QString>({"action", "dialog"});
        row("export", "mnuPopupCabinetExport", "frmExport");
        row("import", "mnuPopupCabinetImport", "frmImport");
    }
    void popupOpensTheDialogOnItsCabinet()
    {
        const auto [action, dialog] = fetch<QString, QString>("action", "dialog");
        NavHarness h;
        loadWithOther(h);
        h.click("ROOT");
        h.window->list()->setCurrentItem(h.window->list()->itemOf(NodeKey::parse("CAB3")));
        h.setSource(ContextSource::List);
        QString shown, chosen;
        whenModal(h.window.get(), [&](QWidget* w) {
            shown = w->objectName();
            chosen = w->findChild<QComboBox*>("cboCabinet")->currentText();
            w->findChild<QPushButton*>("cmdCancel")->click();
        });
        h.window->menus().action(action)->trigger();
        QCOMPARE(shown, dialog);
        QCOMPARE(chosen, "Other");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void importFilesIntoAFolder_data()
    {
        test::columns<QStringList, QString, QStringList>({"types", "button", "documents"});
        row("chosen types", QStringList{"JPG", "PDF"}, "cmdOK",
            QStringList{"a.jpg", "b.pdf", "Page 4.JPG", "README"});
        row("all", QStringList{}, "cmdAll",
            QStringList{"a.jpg", "b.pdf", "c.txt", "Page 4.JPG", "README"});
        row("none chosen: nothing", QStringList{}, "cmdOK", QStringList{});
        row("cancel: nothing", QStringList{"JPG"}, "cmdCancel", QStringList{});
    }
    void importFilesIntoAFolder()
    {
        const auto [types, button, documents] =
            fetch<QStringList, QString, QStringList>("types", "button", "documents");
        NavHarness h;
        h.loadSample();
        QTemporaryDir dir;
        writeFiles(dir.path(), {"a.jpg", "b.pdf", "c.txt", "README", "Page 4.JPG"});
        h.clickPath({"CAB1", "DRW1", "FLD2"}); // "Savings", empty
        // A cancelled chooser does nothing; the same files twice make each document once.
        h.choosers.queueDirectory(std::nullopt);
        const int before = h.session->items().count(Level::Document);
        h.window->menus().action("mnuPopupFolderImportFiles")->trigger();
        QCOMPARE(h.session->items().count(Level::Document), before);
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        QStringList offered;
        for (int run = 0; run < 2; ++run)
            importFiles(h, "mnuPopupFolderImportFiles", dir.path(), types, button,
                        run ? nullptr : &offered);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        // Every type of the directory, in the order the files were read.
        QCOMPARE(offered, QStringList({"JPG", "PDF", "TXT", "README"}));
        QCOMPARE(documentNames(*h.session, 2), documents);
        for (const QString& name : documents) {
            const qint32 doc = h.session->items().childNamed(Level::Document, 2, name);
            const QVector<PageRow> pages = h.session->pages().pages(doc);
            QCOMPARE(pages.size(), 1);
            // A non-picture stays where it is, as a shortcut; a picture is stored.
            const bool picture = name.toLower().endsWith("jpg");
            QCOMPARE(pages.first().shortcut, !picture);
            QCOMPARE(pages.first().filename.isEmpty(), picture);
            QCOMPARE(pages.first().pageNumber, name == "Page 4.JPG" ? 4 : 1);
        }
        // The list shows what came in.
        if (!documents.isEmpty()) {
            QStringList shown = h.listTexts();
            shown.sort(Qt::CaseInsensitive);
            QCOMPARE(shown, documents);
        }
        QCOMPARE(h.choosers.directoryStarts().size(), 3);
    }

    void importFilesIntoADocument_data()
    {
        test::columns<QString, QList<int>>({"numbered", "numbers"});
        row("after a numbered name", "Page 5.jpg", QList<int>({1, 2, 5, 6}));
        // No number past the largest: the next page shares it.
        row("after the largest number", "Page 2147483647.jpg",
            QList<int>({1, 2, 2147483647, 2147483647}));
    }
    void importFilesIntoADocument()
    {
        const auto [numbered, numbers] = fetch<QString, QList<int>>("numbered", "numbers");
        NavHarness h;
        h.loadSample();
        QTemporaryDir dir;
        writeFiles(dir.path(), {numbered, "x.jpg"});
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"}); // "March statement": pages 1, 2
        for (int run = 0; run < 2; ++run)
            importFiles(h, "mnuPopupDocumentImportFiles", dir.path());
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        // The second run finds both names and adds nothing.
        QList<int> found;
        for (const PageRow& row : h.session->pages().pages(1))
            found << row.pageNumber;
        QCOMPARE(found, numbers);
        // The chooser opens where the last import came from.
        QCOMPARE(h.choosers.directoryStarts().value(1), dir.path());
        // The page pane shows the document's four pages.
        QCOMPARE(int(h.window->pageList()->entries().size()), 4);
    }

    // Links among the files are named and passed over; a name that is not UTF-8 comes in by its
    // bytes, shown as Windows-1252, unless a shortcut would have to keep it.
    void importFilesPassesOverLinksAndReadsOldNames()
    {
        NavHarness h;
        h.loadSample();
        QTemporaryDir dir, elsewhere;
        writeFiles(dir.path(), {"a.jpg"});
        writeFiles(elsewhere.path(), {"secret.jpg", "green.jpg"});
        QVERIFY(QFile::link(elsewhere.filePath("secret.jpg"), dir.filePath("b.jpg")));
        QVERIFY(QFile::link(elsewhere.path(), dir.filePath("sub")));
        const QByteArray raw = QFile::encodeName(dir.path());
        const QByteArray picture = ExchangeFixture::readBytes(elsewhere.filePath("green.jpg"));
        QVERIFY(ExchangeFixture::writeRaw(raw + "/Rechnung M\xe4rz.jpg", picture));
        QVERIFY(ExchangeFixture::writeRaw(raw + "/notiz \xe9.pdf", "text"));
        h.clickPath({"CAB1", "DRW1", "FLD2"}); // "Savings", empty
        QStringList offered;
        h.prompter.expect("'" + dir.path() + "/b.jpg' is a link; it was not followed.\r\n'" +
                          dir.path() + "/sub' is a link; it was not followed.\r\n'" + dir.path() +
                          QString::fromUtf8("/notiz é.pdf' has a path that is not UTF-8, which a "
                                            "shortcut cannot keep; it was not imported."));
        importFiles(h, "mnuPopupFolderImportFiles", dir.path(), {}, "cmdAll", &offered);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(offered, QStringList({"JPG", "PDF"}));
        const QString old = QString::fromUtf8("Rechnung März.jpg");
        QCOMPARE(documentNames(*h.session, 2), QStringList({"a.jpg", old}));
        const qint32 page = h.session->pages().pageNamed(
            h.session->items().childNamed(Level::Document, 2, old), old);
        QVERIFY(page >= 0);
        QCOMPARE(ExchangeFixture::readBytes(h.session->paths().computedPagePath(page)), picture);
    }

    // Export to a place where nothing can be written: the report counts no page and names
    // what failed.
    void exportToAnUnwritableTarget()
    {
        NavHarness h;
        h.openSession();
        test::FixtureStore store(h.home.home());
        const qint32 doc = store.document(
            store.folder(store.drawer(store.cabinet("Papers"), "Drawer"), "Folder"), "Letter");
        for (int n = 1; n <= 3; ++n)
            store.page(doc, n, QSize(40, 50));
        h.load();
        QTemporaryDir out;
        // A file stands where the output directory would be made.
        QVERIFY(ExchangeFixture::writeBytes(out.filePath("blocked"), "in the way"));
        const QString target = out.filePath("blocked/backup");
        h.prompter.expect("'" + target + "' does not exist.  Do you want to create it?",
                          Prompter::Answer::Yes);
        whenModal(h.window.get(), [&](QWidget* w) {
            w->findChild<QLineEdit*>("txtOutputPath")->setText(target);
            w->findChild<QPushButton*>("cmdOK")->click();
        });
        h.window->menus().action("mnuToolsExportCabinet")->trigger();
        QCOMPARE(h.prompter.seen().size(), 2);
        const QString report = h.prompter.seen().last();
        QVERIFY2(report.startsWith("Export complete. 0 pages copied.\r\n\r\n"), qPrintable(report));
        const QString folder = target + "/Papers/Drawer/Folder/Letter";
        QVERIFY2(report.contains("Cannot make the directory " + target + "/Papers\r\n"),
                 qPrintable(report));
        QVERIFY2(report.endsWith("Cannot make the directory of " + folder + "/Page 3.jpg"),
                 qPrintable(report));
    }
};

QMR_TEST(TestExchangeCommands)
#include "testexchangecommands.moc"
