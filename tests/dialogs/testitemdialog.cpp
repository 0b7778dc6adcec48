#include <QApplication>
#include <QComboBox>
#include <QKeySequence>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTest>
#include <QToolButton>

#include "dialogharness.h"
#include "dialogs/pagenumberdialog.h"
#include "dialogs/pagepropertiesdialog.h"
#include "dialogs/passworddialog.h"
#include "store/cipher.h"
#include "store/itemstore.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::child;
using test::DialogHarness;
using test::edit;
using test::fetch;

class TestItemDialog : public QObject
{
    Q_OBJECT
private slots:
    // Amounts are typed and shown in the locale's way; these tests speak English unless a
    // row says otherwise.
    void init() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void cleanupTestCase() { QLocale::setDefault(QLocale::system()); }

    // What the checks of OK refuse: the message, the field that takes the focus (on its own
    // tab), nothing typed lost, and the store as it was.
    void refusals_data()
    {
        // mode: Add, or Edit of item 1; typed: control=text.
        test::columns<int, QString, QStringList, bool, QString, QString, QString, QString, bool>(
            {"level", "mode", "typed", "ownStorage", "message", "focus", "nameAfter", "locale",
             "collectOnly"});
        const auto row = [](const char* tag, int level, const char* mode, const QStringList& typed,
                            const QString& message, const char* focus, const QString& nameAfter,
                            bool ownStorage = false, const char* locale = "en_US",
                            bool collectOnly = false) {
            test::row(tag, level, QString(mode), typed, ownStorage, message, QString(focus),
                      nameAfter, QString(locale), collectOnly);
        };
        const QString bad = "The following characters are not allowed:\n\\ / : * ? \" < > | .";
        row("dot before trimming", 0, "Add", {"txtName= a.b "}, bad, "txtName", " a.b ");
        row("blank cabinet", 0, "Add", {"txtName=   "}, "A file cabinet name is required.",
            "txtName", "");
        row("blank drawer", 1, "Add", {"txtName=  "}, "A drawer name is required.", "txtName", "");
        row("blank folder", 2, "Edit", {"txtName= "}, "A folder name is required.", "txtName", "");
        row("blank document", 3, "Edit", {"txtName= "}, "A document name is required.", "txtName",
            "");
        row("storage path", 0, "Add", {"txtName=New"}, "A storage path is required.", "txtSaveTo",
            "New", true);
        row("bad date", 3, "Add", {"txtName=Bill", "txtDateOnDocument=2/30/2026"},
            "Please enter a date (mm/dd/yyyy) or leave blank.", "txtDateOnDocument", "Bill");
        row("cabinet double, other case", 0, "Add", {"txtName= home PAPERS "},
            "A file cabined named 'home PAPERS' already exists.", "txtName", "home PAPERS");
        row("cabinet double in edit", 0, "Edit", {"txtName=Private"},
            "A file cabined named 'Private' already exists.", "txtName", "Private");
        row("drawer double", 1, "Add", {"txtName=TAXES"}, "A drawer named 'TAXES' already exists.",
            "txtName", "TAXES");
        row("folder double in edit", 2, "Edit", {"txtName=savings"},
            "A folder named 'savings' already exists.", "txtName", "savings");
        row("storage path too long", 0, "Edit", {"txtSaveTo=" + QString(251, 'p')},
            "The storage path is too long: a cabinet's storage path can have at most 250 "
            "characters.",
            "txtSaveTo", "Home Papers", true);
        row("email too long", 2, "Edit", {"txtEmail=" + QString(101, 'p')},
            "The email address is too long: a folder's email address can have at most 100 "
            "characters.",
            "txtEmail", "Checking");
        // Amounts are read in the locale's way; which texts are numbers is the locale
        // number's rule.
        row("new document, amount refused", 3, "Add", {"txtName=Invoice", "txtAmount=1.2.3"},
            "Amount must be a number, such as 1,234.50.", "txtAmount", "Invoice", false, "en_US",
            true);
        // Too long a name is refused before the caller of the new-document dialog could lose it.
        row("new document, name too long", 3, "Add", {"txtName=" + QString(81, 'n')},
            "The name is too long: a document's name can have at most 80 characters.", "txtName",
            QString(81, 'n'), false, "en_US", true);
        row("german amount refuses a point", 3, "Add", {"txtName=Invoice", "txtAmount=1234.5.0"},
            "Amount must be a number, such as 1.234,50.", "txtAmount", "Invoice", false, "de_DE");
    }
    void refusals()
    {
        auto [level, mode, typed, ownStorage, message, focus, locale, collectOnly] =
            fetch<int, QString, QStringList, bool, QString, QString, QString, bool>(
                "level", "mode", "typed", "ownStorage", "message", "focus", "locale",
                "collectOnly");
        QLocale::setDefault(QLocale(locale));
        DialogHarness h;
        ItemDialog dialog(Level(level), h.context(), nullptr, collectOnly);
        if (mode == "Add")
            dialog.setAdd(1);
        else
            QVERIFY(dialog.setEdit(1));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        if (ownStorage)
            child<QRadioButton>(&dialog, "optStorage1")->click();
        test::type(&dialog, typed);
        const QString before = ItemStore(h.db()).item(Level(level), 1).name;
        const int count = ItemStore(h.db()).count(Level(level));
        h.prompter.expect(message);
        dialog.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(dialog.isVisible()); // the first failure keeps the dialog open
        QTEST(edit(&dialog, "txtName")->text(), "nameAfter");
        for (const QString& t : typed)
            if (!t.startsWith("txtName="))
                QCOMPARE(edit(&dialog, qPrintable(t.section('=', 0, 0)))->text(),
                         t.section('=', 1));
        QVERIFY(dialog.focusWidget());
        QCOMPARE(dialog.focusWidget()->objectName(), focus);
        QCOMPARE(child<QTabWidget>(&dialog, "tabMain")->currentIndex(),
                 focus == "txtSaveTo" ? 1 : 0);
        QCOMPARE(ItemStore(h.db()).item(Level(level), 1).name, before);
        QCOMPARE(ItemStore(h.db()).count(Level(level)), count);
        QVERIFY(h.nav.calls.isEmpty());
        if (collectOnly)
            QVERIFY(dialog.newDocument().cancelled);
    }

    // Every dialog's Cancel reads alike, and every label of a field the user can reach has
    // its own access key. Item dialogs open in the name, so what is typed at once lands there.
    void keysAndCancel_data()
    {
        // level -1: password, -2: page number.
        test::columns<int, bool, bool>({"level", "properties", "collectOnly"});
        for (int level = 0; level < 4; ++level)
            for (const bool properties : {false, true})
                QTest::addRow("%s %s", levelInfo(Level(level)).word,
                              properties ? "properties" : "add")
                    << level << properties << false;
        QTest::newRow("new document") << 3 << false << true;
        QTest::newRow("password") << -1 << false << false;
        QTest::newRow("page number") << -2 << false << false;
    }
    void keysAndCancel()
    {
        auto [level, properties, collectOnly] =
            fetch<int, bool, bool>("level", "properties", "collectOnly");
        DialogHarness h;
        std::unique_ptr<QDialog> dialog;
        if (level == -1)
            dialog = std::make_unique<PasswordDialog>();
        else if (level == -2)
            dialog = std::make_unique<PageNumberDialog>(3);
        else {
            auto item =
                std::make_unique<ItemDialog>(Level(level), h.context(), nullptr, collectOnly);
            if (properties)
                QVERIFY(item->setEdit(1));
            else
                item->setAdd(1);
            item->show();
            QVERIFY(QTest::qWaitForWindowActive(item.get()));
            QCOMPARE(QApplication::focusWidget(), edit(item.get(), "txtName"));
            edit(item.get(), "txtName")->clear();
            QTest::keyClicks(QApplication::focusWidget(), "Typed");
            QCOMPARE(edit(item.get(), "txtName")->text(), QStringLiteral("Typed"));
            dialog = std::move(item);
        }
        auto* cancel = child<QPushButton>(dialog.get(), "cmdCancel");
        QVERIFY(cancel);
        QCOMPARE(cancel->text(), QStringLiteral("Cancel"));

        QSet<int> keys;
        for (QLabel* label : dialog->findChildren<QLabel*>()) {
            if (!label->buddy() || !label->isVisibleTo(dialog.get()))
                continue;
            const QKeySequence key = QKeySequence::mnemonic(label->text());
            QVERIFY2(!key.isEmpty(), qPrintable(label->objectName() + " has no access key"));
            QVERIFY2(!keys.contains(key[0].toCombined()),
                     qPrintable(label->objectName() + " repeats a key"));
            keys.insert(key[0].toCombined());
        }
        QVERIFY(!keys.isEmpty());
        // An access key takes the focus to its field.
        if (level == 3) {
            QTest::keyClick(dialog.get(), Qt::Key_A, Qt::AltModifier);
            QCOMPARE(QApplication::focusWidget(), child<QWidget>(dialog.get(), "txtAmount"));
        }
    }

    void addWritesAndShows_data()
    {
        // typed: control=text, besides the name and the description.
        test::columns<int, int, QString, QStringList>({"level", "parent", "call", "typed"});
        test::row("cabinet", 0, -1, QString("CAB4 O'Neil's"),
                  QStringList{"txtPassword=Pw", "txtSaveTo=/srv/scans"});
        test::row("drawer", 1, 2, QString("DRW6 O'Neil's<2"), QStringList{});
        test::row("folder", 2, 1, QString("FLD5 O'Neil's<1"), QStringList{});
        test::row("document", 3, 2, QString("DOC4 O'Neil's<2 @2026-03-04"),
                  QStringList{"txtDateOnDocument=3/4/2026", "txtAmount=1,234.50"});
    }
    void addWritesAndShows()
    {
        auto [level, parent, typed] = fetch<int, int, QStringList>("level", "parent", "typed");
        DialogHarness h;
        ItemDialog dialog(Level(level), h.context());
        dialog.setAdd(parent);
        QCOMPARE(dialog.windowTitle(),
                 QStringList({"Add File Cabinet", "Add Drawer", "Add Folder", "Add Document"})
                     .at(level));
        // Nothing to count before the item exists.
        auto* tabs = child<QTabWidget>(&dialog, "tabMain");
        QVERIFY(!tabs->isTabEnabled(tabs->count() - 1));
        // The other fields are stored as typed, which the hostile names' test checks.
        edit(&dialog, "txtName")->setText("  O'Neil's  ");
        if (level == 0)
            child<QRadioButton>(&dialog, "optStorage1")->click();
        test::type(&dialog, typed);
        dialog.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(dialog.result(), QDialog::Accepted);
        QTEST(h.nav.calls.value(0), "call");
        const ItemFields f = *ItemStore(h.db()).fields(Level(level), dialog.itemId());
        QCOMPARE(f.name, QStringLiteral("O'Neil's"));
        if (level == 0) {
            QCOMPARE(f.storage, 1);
            QCOMPARE(h.db().scalar("SELECT Password FROM Cabinet WHERE CabinetId = 4").toString(),
                     encryptText("Pw", Cipher::key()));
        } else if (level == 3) {
            QCOMPARE(f.dateOnDocument, QDate(2026, 3, 4));
            QCOMPARE(f.amount, 1234.5);
        }
        if (level > 0)
            QCOMPARE(ItemStore(h.db()).parentOf(Level(level), dialog.itemId()), parent);
    }

    // Properties shown and changed, of documents and a cabinet; then what the new-document
    // dialog collects.
    void editShowsAndUpdates()
    {
        DialogHarness h;
        ItemDialog dialog(Level::Document, h.context());
        QVERIFY(dialog.setEdit(1));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Document Properties (1)"));
        QCOMPARE(edit(&dialog, "txtName")->text(), QStringLiteral("March statement"));
        QCOMPARE(edit(&dialog, "txtDateOnDocument")->text(), QStringLiteral("03/31/2026"));
        QCOMPARE(edit(&dialog, "txtAmount")->text(), QStringLiteral("1,234.50"));
        // A blank date clears the stored one; a blank amount is 0.
        test::type(&dialog, {"txtDateOnDocument= ", "txtAmount= "});
        dialog.cmdOK();
        QCOMPARE(h.nav.calls, QStringList{"=DOC1 March statement"});
        const ItemFields f = *ItemStore(h.db()).fields(Level::Document, 1);
        QVERIFY(!f.dateOnDocument.isValid());
        QCOMPARE(f.amount, 0.0);
        QVERIFY(f.hasAmount);

        ItemDialog other(Level::Document, h.context());
        QVERIFY(other.setEdit(2));
        QCOMPARE(edit(&other, "txtAmount")->text(), QString()); // Null amount
        // Documents may share a name.
        edit(&other, "txtName")->setText("March statement");
        other.cmdOK();
        QCOMPARE(other.result(), QDialog::Accepted);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(!ItemDialog(Level::Folder, h.context()).setEdit(99));

        // A cabinet: keeping the name passes; the password removed leaves it unlocked.
        h.nav.calls.clear();
        ItemDialog cabinet(Level::Cabinet, h.context());
        QVERIFY(cabinet.setEdit(2));
        QCOMPARE(cabinet.windowTitle(), QStringLiteral("File Cabinet Properties (2)"));
        QCOMPARE(edit(&cabinet, "txtPassword")->text(), QStringLiteral("secret"));
        QCOMPARE(edit(&cabinet, "txtPassword")->maxLength(), 10);
        QVERIFY(child<QRadioButton>(&cabinet, "optStorage0")->isChecked());
        QVERIFY(!edit(&cabinet, "txtSaveTo")->isEnabled());
        QVERIFY(!child<QPushButton>(&cabinet, "cmdBrowse")->isEnabled());
        test::type(&cabinet, {"txtPassword=", "txtSaveTo=/kept/though/unused"});
        cabinet.cmdOK();
        QCOMPARE(h.nav.calls, QStringList{"=CAB2 Private"});
        QCOMPARE(h.db().scalar("SELECT Password FROM Cabinet WHERE CabinetId = 2").toString(),
                 QString());
        QVERIFY(h.session->locks().isCabinetOpen(2));
        QCOMPARE(ItemStore(h.db()).fields(Level::Cabinet, 2)->storagePath,
                 QStringLiteral("/kept/though/unused"));

        // The new-document dialog only collects what is typed, for its caller to store.
        h.nav.calls.clear();
        ItemDialog collect(Level::Document, h.context(), nullptr, true);
        QCOMPARE(collect.windowTitle(), QStringLiteral("Add Document"));
        QCOMPARE(child<QTabWidget>(&collect, "tabMain")->count(), 1);
        test::type(&collect, {"txtName= Receipt ", "txtDateOnDocument=12/24/2025",
                              "txtAmount=$1,234,567.89"});
        const int before = ItemStore(h.db()).count(Level::Document);
        collect.cmdOK();
        const NewDocumentResult& made = collect.newDocument();
        QVERIFY(!made.cancelled);
        QCOMPARE(QStringList({made.name, made.dateOnDocument, made.amount}),
                 QStringList({"Receipt", "12/24/2025", "1234567.89"}));
        QCOMPARE(ItemStore(h.db()).count(Level::Document), before);
        QVERIFY(h.nav.calls.isEmpty());

        ItemDialog cancelled(Level::Document, h.context(), nullptr, true);
        child<QPushButton>(&cancelled, "cmdCancel")->click();
        QVERIFY(cancelled.newDocument().cancelled);

        // An amount typed the German way is stored as one.
        QLocale::setDefault(QLocale("de_DE"));
        ItemDialog german(Level::Document, h.context());
        german.setAdd(1);
        test::type(&german, {"txtName=Invoice", "txtAmount=1.234,50"});
        german.cmdOK();
        QCOMPARE(ItemStore(h.db()).fields(Level::Document, german.itemId())->amount, 1234.5);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void statistics_data()
    {
        // expected: label=text; pagesIn: the pages whose sizes make the bytes shown.
        test::columns<int, int, QStringList, QStringList, QString>(
            {"level", "id", "expected", "setup", "pagesIn"});
        const auto row = [](const char* tag, int level, int id, const QStringList& expected,
                            const QStringList& setup = {}, const char* pagesIn = "") {
            test::row(tag, level, id, expected, setup, QString(pagesIn));
        };
        row("filled cabinet", 0, 1,
            {"lblDRWCount=2", "lblFLDCount=3", "lblDOCCount=3", "lblPAGCount=3",
             "lblTTLAmount=$1,234.50"},
            {}, "1 = 1");
        row("drawers but no folders", 0, 3,
            {"lblDRWCount=2", "lblFLDCount=0", "lblDOCCount=0", "lblPAGCount=0",
             "lblByteCount=0 bytes", "lblTTLAmount=$0.00"});
        row("drawer", 1, 1,
            {"lblFLDCount=2", "lblDOCCount=2", "lblPAGCount=2", "lblTTLAmount=$1,234.50"});
        row("empty folder", 2, 2,
            {"lblDOCCount=0", "lblPAGCount=0", "lblByteCount=0 bytes", "lblTTLAmount=$0.00"});
        row("folder with documents, no pages", 2, 4,
            {"lblDOCCount=2", "lblPAGCount=0", "lblByteCount=0 bytes"});
        row("folder, null amounts", 2, 3, {"lblDOCCount=1", "lblPAGCount=1", "lblTTLAmount=$0.00"});
        row("document", 3, 1, {"lblPAGCount=2"});
        row("document without pages", 3, 2, {"lblPAGCount=0", "lblByteCount=0 bytes"});
        // Sizes whose sum does not fit 32 bits, and a large amount.
        row("big sums", 2, 1, {"lblTTLAmount=$1,235,802.39"},
            {"INSERT INTO Page (DocumentId, FileSize) VALUES (2, 2000000000), (2, 2000000000), "
             "(2, 2000000000)",
             "UPDATE Document SET Amount = 1234567.891 WHERE DocumentId = 2"},
            "DocumentId IN (1, 2)");
    }
    void statistics()
    {
        auto [level, id, expected, setup, pagesIn] =
            fetch<int, int, QStringList, QStringList, QString>("level", "id", "expected", "setup",
                                                               "pagesIn");
        DialogHarness h;
        // Folder 4 gets two documents and no pages.
        h.db().execute("INSERT INTO Document (FolderId, Name) VALUES (4, 'a'), (4, 'b')");
        for (const QString& sql : setup)
            h.db().execute(sql);
        ItemDialog dialog(Level(level), h.context());
        QVERIFY(dialog.setEdit(id));
        auto* tabs = child<QTabWidget>(&dialog, "tabMain");
        QVERIFY(!dialog.statisticsLoaded());
        tabs->setCurrentIndex(tabs->count() - 1);
        QVERIFY(dialog.statisticsLoaded());
        const auto check = [&] {
            for (const QString& e : expected)
                QCOMPARE(test::labelText(&dialog, qPrintable(e.section('=', 0, 0))),
                         e.section('=', 1));
        };
        check();
        // The levels above the item have no row; a document has no amount.
        QCOMPARE(dialog.findChild<QLabel*>("lblDRWCount") != nullptr, level == 0);
        QCOMPARE(dialog.findChild<QLabel*>("lblTTLAmount") != nullptr, level < 3);
        // Bytes are the real sizes of the fixture's JPEG files.
        if (!pagesIn.isEmpty()) {
            const qint64 bytes =
                h.db().scalar("SELECT SUM(FileSize) FROM Page WHERE " + pagesIn).toLongLong();
            QVERIFY(bytes > 0);
            QCOMPARE(test::labelText(&dialog, "lblByteCount"),
                     QLocale(QLocale::English, QLocale::UnitedStates).toString(bytes) + " bytes");
        }
        // Counted once: a page added later does not show until the dialog is opened again.
        h.db().execute("INSERT INTO Page (DocumentId) VALUES (1)");
        tabs->setCurrentIndex(0);
        tabs->setCurrentIndex(tabs->count() - 1);
        check();
    }

    // The date button, templates for new drawers, and the cabinet's storage path chooser.
    void todayTemplatesAndBrowse()
    {
        DialogHarness h;
        ItemDialog doc(Level::Document, h.context());
        doc.setAdd(1);
        edit(&doc, "txtDateOnDocument")->setText("01/01/1999");
        child<QToolButton>(&doc, "imgNow")->click();
        QCOMPARE(edit(&doc, "txtDateOnDocument")->text(),
                 QDate::currentDate().toString("MM/dd/yyyy"));

        ItemDialog drawer(Level::Drawer, h.context());
        drawer.setAdd(1);
        drawer.populateTemplates({}, {});
        QVERIFY(child<QComboBox>(&drawer, "cboTemplate")->isHidden());
        QStringList applied;
        drawer.populateTemplates(
            {"Car", "House"}, [&](const QString& name, qint32 id, ItemStore& items) {
                applied << QString("%1>%2").arg(name).arg(id);
                const qint32 folder = items.insertItem(Level::Folder, id, "Repairs");
                return QVector<CreatedItem>{{Level::Folder, id, folder, "Repairs", {}}};
            });
        auto* combo = child<QComboBox>(&drawer, "cboTemplate");
        QVERIFY(!combo->isHidden());
        QCOMPARE(combo->itemText(0), QStringLiteral("(none)"));
        QCOMPARE(combo->currentIndex(), 0);
        combo->setCurrentIndex(2);
        edit(&drawer, "txtName")->setText("Garage");
        drawer.cmdOK();
        QCOMPARE(applied, QStringList{"House>6"});
        QCOMPARE(h.nav.calls, (QStringList{"DRW6 Garage<1", "FLD5 Repairs<6"}));

        // "(none)" leaves the drawer empty.
        h.nav.calls.clear();
        ItemDialog plain(Level::Drawer, h.context());
        plain.setAdd(1);
        plain.populateTemplates({"Car"}, [&](const QString&, qint32, ItemStore&) {
            applied << "wrong";
            return QVector<CreatedItem>{};
        });
        edit(&plain, "txtName")->setText("Attic");
        plain.cmdOK();
        QCOMPARE(applied.size(), 1);
        QCOMPARE(h.nav.calls, QStringList{"DRW7 Attic<1"});

        ItemDialog cabinet(Level::Cabinet, h.context());
        cabinet.setAdd(-1);
        auto* saveTo = edit(&cabinet, "txtSaveTo");
        // Disabled while the program chooses the names.
        cabinet.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().size(), 0);
        child<QRadioButton>(&cabinet, "optStorage1")->click();
        h.home.settings().saveSetting("PathSelect", h.home.path());
        h.choosers.queueDirectory(std::nullopt);
        cabinet.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().value(0), h.home.path());
        QCOMPARE(saveTo->text(), QString()); // cancelled: the box keeps its text
        saveTo->setText("/no/such/dir");
        h.choosers.queueDirectory(QStringLiteral("/srv/scans"));
        cabinet.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().value(1), QString()); // a stale path opens anywhere
        QCOMPARE(saveTo->text(), QStringLiteral("/srv/scans"));
        QCOMPARE(h.home.settings().getSetting("PathSelect"), QStringLiteral("/srv/scans"));
        // Going back to the program's names keeps the text but disables it.
        child<QRadioButton>(&cabinet, "optStorage0")->click();
        QVERIFY(!saveTo->isEnabled());
        QCOMPARE(saveTo->text(), QStringLiteral("/srv/scans"));
    }

    // One page shows its own facts; several show a count and what they share. Every page
    // starts at 100 bytes, scanned 03/14/2026, before the row's changes.
    void pageProperties_data()
    {
        test::columns<bool, QVector<qint32>, QString, QStringList>(
            {"several", "ids", "update", "expected"}); // expected: label=text
        const auto row = [](const char* tag, bool several, const QVector<qint32>& ids,
                            const char* update, const QStringList& expected) {
            test::row(tag, several, ids, QString(update), expected);
        };
        row("one page", false, {1}, "UPDATE Page SET FileSize = 1234567 WHERE PageId = 1",
            {"lblPageIdData=1", "lblFileSizeData=1,234,567 bytes", "lblScanDateData=03/14/2026",
             "lblFileTypeData=JPG", "lblShortcutData=(not a shortcut)"});
        row("shortcut, nothing known", false, {2},
            "UPDATE Page SET FileSize = NULL, ScanDate = NULL, ShortcutYN = 'Y', "
            "Filename = '/elsewhere/scan.jpg' WHERE PageId = 2",
            {"lblFileSizeData=Not known", "lblScanDateData=Not known",
             "lblShortcutData=/elsewhere/scan.jpg"});
        const QStringList shared{"lblPageId=Pages:", "lblFileTypeData=Not konwn",
                                 "lblShortcutData=Not known"};
        const auto several = [&](const char* tag, const QVector<qint32>& ids, const char* update,
                                 const QString& count, const QString& date, const QString& size) {
            row(tag, true, ids, update,
                shared + QStringList{"lblPageIdData=" + count, "lblScanDateData=" + date,
                                     "lblFileSizeData=" + size});
        };
        several("same date, same time", {1, 2, 3}, "", "3 pages", "03/14/2026", "300 bytes");
        several("same day, other time", {1, 2},
                "UPDATE Page SET ScanDate = '2026-03-14 10:00:00' WHERE PageId = 2", "2 pages",
                "Various", "200 bytes");
        several("null size among others", {1, 2, 3},
                "UPDATE Page SET FileSize = NULL WHERE PageId = 2", "3 pages", "03/14/2026",
                "200 bytes");
        several("nothing known", {2},
                "UPDATE Page SET FileSize = NULL, ScanDate = NULL WHERE PageId = 2", "1 pages",
                "Not known", "Not known");
        several("pages that are gone do not count", {999, 3}, "", "1 pages", "03/14/2026",
                "100 bytes");
    }
    void pageProperties()
    {
        auto [several, ids, update, expected] = fetch<bool, QVector<qint32>, QString, QStringList>(
            "several", "ids", "update", "expected");
        DialogHarness h;
        h.db().execute("UPDATE Page SET FileSize = 100");
        if (!update.isEmpty())
            h.db().execute(update);
        PagePropertiesDialog dialog(h.db());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Page Properties"));
        if (several)
            dialog.populateMultiple(ids);
        else
            dialog.populate(ids.value(0));
        for (const QString& e : expected)
            QCOMPARE(dialog.text(e.section('=', 0, 0)), e.section('=', 1));
    }
};

QMR_TEST(TestItemDialog)
#include "testitemdialog.moc"
