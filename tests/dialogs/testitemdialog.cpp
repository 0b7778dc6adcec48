#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>

#include "dialogharness.h"
#include "store/cipher.h"
#include "store/itemstore.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::child;
using test::DialogHarness;

class TestItemDialog : public QObject
{
    Q_OBJECT
private slots:
    // Amounts are typed and shown in the locale's way; these tests speak English unless a
    // row says otherwise.
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void cleanupTestCase() { QLocale::setDefault(QLocale::system()); }

    // What the checks of OK refuse: the message, the field that takes the focus (on its own
    // tab), nothing typed lost, and the store as it was.
    void refusals_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("mode");      // Add, or Edit of item 1
        QTest::addColumn<QStringList>("typed"); // control=text
        QTest::addColumn<bool>("ownStorage");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("focus");
        QTest::addColumn<QString>("nameAfter");
        const auto row = [](const char* tag, int level, const char* mode, const QStringList& typed,
                            const QString& message, const char* focus, const QString& nameAfter,
                            bool ownStorage = false) {
            QTest::newRow(tag) << level << QString(mode) << typed << ownStorage << message
                               << QString(focus) << nameAfter;
        };
        const QString bad = "The following characters are not allowed:\n\\ / : * ? \" < > | .";
        row("dot before trimming", 0, "Add", {"txtName= a.b "}, bad, "txtName", " a.b ");
        row("colon in drawer", 1, "Add", {"txtName=x:y"}, bad, "txtName", "x:y");
        row("slash in document", 3, "Edit", {"txtName=a/b"}, bad, "txtName", "a/b");
        row("blank cabinet", 0, "Add", {"txtName=   "}, "A file cabinet name is required.",
            "txtName", "");
        row("blank folder", 2, "Edit", {"txtName= "}, "A folder name is required.", "txtName", "");
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
        row("too long", 2, "Add", {"txtName=" + QString(81, 'f')},
            "The name is too long: a folder's name can have at most 80 characters.", "txtName",
            QString(81, 'f'));
        row("storage path too long", 0, "Edit", {"txtSaveTo=" + QString(251, 'p')},
            "The storage path is too long: a cabinet's storage path can have at most 250 "
            "characters.",
            "txtSaveTo", "Home Papers", true);
        row("email too long", 2, "Edit", {"txtEmail=" + QString(101, 'p')},
            "The email address is too long: a folder's email address can have at most 100 "
            "characters.",
            "txtEmail", "Checking");
    }
    void refusals()
    {
        QFETCH(int, level);
        QFETCH(QString, mode);
        QFETCH(QStringList, typed);
        QFETCH(bool, ownStorage);
        QFETCH(QString, message);
        QFETCH(QString, focus);
        QFETCH(QString, nameAfter);
        DialogHarness h;
        ItemDialog dialog(Level(level), h.context());
        if (mode == "Add")
            dialog.setAdd(1);
        else
            QVERIFY(dialog.setEdit(1));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        if (ownStorage)
            child<QRadioButton>(&dialog, "optStorage1")->click();
        for (const QString& t : typed)
            child<QLineEdit>(&dialog, qPrintable(t.section('=', 0, 0)))->setText(t.section('=', 1));
        const QString before = ItemStore(h.db()).item(Level(level), 1).name;
        const int count = ItemStore(h.db()).count(Level(level));
        h.prompter.expect(message);
        dialog.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(dialog.isVisible()); // the first failure keeps the dialog open
        QCOMPARE(child<QLineEdit>(&dialog, "txtName")->text(), nameAfter);
        for (const QString& t : typed)
            if (!t.startsWith("txtName="))
                QCOMPARE(child<QLineEdit>(&dialog, qPrintable(t.section('=', 0, 0)))->text(),
                         t.section('=', 1));
        QVERIFY(dialog.focusWidget());
        QCOMPARE(dialog.focusWidget()->objectName(), focus);
        QCOMPARE(child<QTabWidget>(&dialog, "tabMain")->currentIndex(),
                 focus == "txtSaveTo" ? 1 : 0);
        QCOMPARE(ItemStore(h.db()).item(Level(level), 1).name, before);
        QCOMPARE(ItemStore(h.db()).count(Level(level)), count);
        QVERIFY(h.nav.calls.isEmpty());
    }

    void addWritesAndShows_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("parent");
        QTest::addColumn<QString>("call");
        QTest::newRow("cabinet") << 0 << -1 << "CAB4 O'Neil's";
        QTest::newRow("drawer") << 1 << 2 << "DRW6 O'Neil's<2";
        QTest::newRow("folder") << 2 << 1 << "FLD5 O'Neil's<1";
        QTest::newRow("document") << 3 << 2 << "DOC4 O'Neil's<2 @2026-03-04";
    }
    void addWritesAndShows()
    {
        QFETCH(int, level);
        QFETCH(int, parent);
        QFETCH(QString, call);
        DialogHarness h;
        ItemDialog dialog(Level(level), h.context());
        dialog.setAdd(parent);
        QCOMPARE(dialog.windowTitle(),
                 QStringList({"Add File Cabinet", "Add Drawer", "Add Folder", "Add Document"})
                     .at(level));
        // Nothing to count before the item exists.
        auto* tabs = child<QTabWidget>(&dialog, "tabMain");
        QVERIFY(!tabs->isTabEnabled(tabs->count() - 1));
        child<QLineEdit>(&dialog, "txtName")->setText("  O'Neil's  ");
        child<QPlainTextEdit>(&dialog, "txtDescription")->setPlainText("line one\nline two");
        if (level == 0) {
            child<QLineEdit>(&dialog, "txtPassword")->setText("Pw");
            child<QRadioButton>(&dialog, "optStorage1")->click();
            child<QLineEdit>(&dialog, "txtSaveTo")->setText("/srv/scans");
        } else if (level == 2) {
            child<QLineEdit>(&dialog, "txtEmail")->setText("a@b.example");
        } else if (level == 3) {
            child<QLineEdit>(&dialog, "txtDateOnDocument")->setText("3/4/2026");
            child<QLineEdit>(&dialog, "txtAmount")->setText("1,234.50");
        }
        dialog.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(dialog.result(), QDialog::Accepted);
        QCOMPARE(h.nav.calls.value(0), call);
        const ItemFields f = *ItemStore(h.db()).fields(Level(level), dialog.itemId());
        QCOMPARE(f.name, QStringLiteral("O'Neil's"));
        QCOMPARE(f.description, QStringLiteral("line one\nline two"));
        if (level == 0) {
            QCOMPARE(f.password, QStringLiteral("Pw"));
            QCOMPARE(f.storage, 1);
            QCOMPARE(f.storagePath, QStringLiteral("/srv/scans"));
            QCOMPARE(h.db().scalar("SELECT Password FROM Cabinet WHERE CabinetId = 4").toString(),
                     encryptText("Pw", Cipher::key()));
        } else if (level == 2) {
            QCOMPARE(f.email, QStringLiteral("a@b.example"));
        } else if (level == 3) {
            QCOMPARE(f.dateOnDocument, QDate(2026, 3, 4));
            QCOMPARE(f.amount, 1234.5);
        }
        if (level > 0)
            QCOMPARE(ItemStore(h.db()).parentOf(Level(level), dialog.itemId()), parent);
    }

    void editShowsAndUpdates()
    {
        DialogHarness h;
        ItemDialog dialog(Level::Document, h.context());
        QVERIFY(dialog.setEdit(1));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Document Properties (1)"));
        QCOMPARE(child<QLineEdit>(&dialog, "txtName")->text(), QStringLiteral("March statement"));
        QCOMPARE(child<QLineEdit>(&dialog, "txtDateOnDocument")->text(),
                 QStringLiteral("03/31/2026"));
        QCOMPARE(child<QLineEdit>(&dialog, "txtAmount")->text(), QStringLiteral("1,234.50"));
        // A blank date clears the stored one; a blank amount is 0.
        child<QLineEdit>(&dialog, "txtDateOnDocument")->setText(" ");
        child<QLineEdit>(&dialog, "txtAmount")->setText(" ");
        dialog.cmdOK();
        QCOMPARE(h.nav.calls, QStringList{"=DOC1 March statement"});
        const ItemFields f = *ItemStore(h.db()).fields(Level::Document, 1);
        QVERIFY(!f.dateOnDocument.isValid());
        QCOMPARE(f.amount, 0.0);
        QVERIFY(f.hasAmount);

        ItemDialog other(Level::Document, h.context());
        QVERIFY(other.setEdit(2));
        QCOMPARE(child<QLineEdit>(&other, "txtAmount")->text(), QString()); // Null amount
        // Documents may share a name.
        child<QLineEdit>(&other, "txtName")->setText("March statement");
        other.cmdOK();
        QCOMPARE(other.result(), QDialog::Accepted);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(!ItemDialog(Level::Folder, h.context()).setEdit(99));
    }

    void cabinetEdit()
    {
        DialogHarness h;
        ItemDialog dialog(Level::Cabinet, h.context());
        QVERIFY(dialog.setEdit(2));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("File Cabinet Properties (2)"));
        QCOMPARE(child<QLineEdit>(&dialog, "txtPassword")->text(), QStringLiteral("secret"));
        QCOMPARE(child<QLineEdit>(&dialog, "txtPassword")->maxLength(), 10);
        QVERIFY(child<QRadioButton>(&dialog, "optStorage0")->isChecked());
        QVERIFY(!child<QLineEdit>(&dialog, "txtSaveTo")->isEnabled());
        QVERIFY(!child<QPushButton>(&dialog, "cmdBrowse")->isEnabled());
        // Keeping the name passes; the password removed leaves the cabinet unlocked.
        child<QLineEdit>(&dialog, "txtPassword")->clear();
        child<QLineEdit>(&dialog, "txtSaveTo")->setText("/kept/though/unused");
        dialog.cmdOK();
        QCOMPARE(h.nav.calls, QStringList{"=CAB2 Private"});
        QCOMPARE(h.db().scalar("SELECT Password FROM Cabinet WHERE CabinetId = 2").toString(),
                 QString());
        QVERIFY(h.session->locks().isCabinetOpen(2));
        QCOMPARE(ItemStore(h.db()).fields(Level::Cabinet, 2)->storagePath,
                 QStringLiteral("/kept/though/unused"));
    }

    void statistics_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("id");
        QTest::addColumn<QStringList>("expected"); // label=text
        QTest::addColumn<QStringList>("setup");
        QTest::addColumn<QString>("pagesIn"); // the pages whose sizes make the bytes shown
        const auto row = [](const char* tag, int level, int id, const QStringList& expected,
                            const QStringList& setup = {}, const char* pagesIn = "") {
            QTest::newRow(tag) << level << id << expected << setup << QString(pagesIn);
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
        QFETCH(int, level);
        QFETCH(int, id);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, setup);
        QFETCH(QString, pagesIn);
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

    void todayAndTemplates()
    {
        DialogHarness h;
        ItemDialog doc(Level::Document, h.context());
        doc.setAdd(1);
        child<QLineEdit>(&doc, "txtDateOnDocument")->setText("01/01/1999");
        child<QToolButton>(&doc, "imgNow")->click();
        QCOMPARE(child<QLineEdit>(&doc, "txtDateOnDocument")->text(),
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
        child<QLineEdit>(&drawer, "txtName")->setText("Garage");
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
        child<QLineEdit>(&plain, "txtName")->setText("Attic");
        plain.cmdOK();
        QCOMPARE(applied.size(), 1);
        QCOMPARE(h.nav.calls, QStringList{"DRW7 Attic<1"});
    }

    void newDocumentCollectsOnly()
    {
        DialogHarness h;
        ItemDialog dialog(Level::Document, h.context(), nullptr, true);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Add Document"));
        QCOMPARE(child<QTabWidget>(&dialog, "tabMain")->count(), 1);
        child<QLineEdit>(&dialog, "txtName")->setText(" Receipt ");
        child<QLineEdit>(&dialog, "txtDateOnDocument")->setText("12/24/2025");
        child<QLineEdit>(&dialog, "txtAmount")->setText("$1,234,567.89");
        const int before = ItemStore(h.db()).count(Level::Document);
        dialog.cmdOK();
        QVERIFY(!dialog.newDocument().cancelled);
        QCOMPARE(dialog.newDocument().name, QStringLiteral("Receipt"));
        QCOMPARE(dialog.newDocument().dateOnDocument, QStringLiteral("12/24/2025"));
        QCOMPARE(dialog.newDocument().amount, QStringLiteral("1234567.89"));
        QCOMPARE(ItemStore(h.db()).count(Level::Document), before);
        QVERIFY(h.nav.calls.isEmpty());

        // Too long a name is refused here, before the caller could lose it.
        ItemDialog tooLong(Level::Document, h.context(), nullptr, true);
        child<QLineEdit>(&tooLong, "txtName")->setText(QString(81, 'n'));
        h.prompter.expect("The name is too long: a document's name can have at most 80 "
                          "characters.");
        tooLong.cmdOK();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(tooLong.newDocument().cancelled);

        ItemDialog cancelled(Level::Document, h.context(), nullptr, true);
        child<QPushButton>(&cancelled, "cmdCancel")->click();
        QVERIFY(cancelled.newDocument().cancelled);
    }

    void amountsReadTheLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<bool>("collectOnly");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message"); // "" when it is taken
        QTest::addColumn<double>("stored");
        const auto row = [](const char* tag, const char* locale, bool collectOnly,
                            const char* typed, const char* message, double stored) {
            QTest::newRow(tag) << QString(locale) << collectOnly << QString(typed)
                               << QString(message) << stored;
        };
        const char* english = "Amount must be a number, such as 1,234.50.";
        row("grouped", "en_US", false, "1,234.50", "", 1234.5);
        row("plain", "en_US", false, "99.9", "", 99.9);
        row("letters behind", "en_US", false, "12abc", english, 0.0);
        row("letters only", "en_US", false, "none", english, 0.0);
        row("new document, refused", "en_US", true, "1.2.3", english, 0.0);
        row("new document, grouped", "en_US", true, "2,000", "", 2000.0);
        row("german", "de_DE", false, "1.234,50", "", 1234.5);
        row("german refuses a point", "de_DE", false, "1234.5.0",
            "Amount must be a number, such as 1.234,50.", 0.0);
    }
    void amountsReadTheLocale()
    {
        QFETCH(QString, locale);
        QFETCH(bool, collectOnly);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(double, stored);
        QLocale::setDefault(QLocale(locale));
        DialogHarness h;
        ItemDialog dialog(Level::Document, h.context(), nullptr, collectOnly);
        dialog.setAdd(1);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        child<QLineEdit>(&dialog, "txtName")->setText("Invoice");
        child<QLineEdit>(&dialog, "txtAmount")->setText(typed);
        if (!message.isEmpty())
            h.prompter.expect(message);
        dialog.cmdOK();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        if (!message.isEmpty()) {
            // Refused with nothing lost: the dialog stays with the text, on the amount box.
            QVERIFY(dialog.isVisible());
            QCOMPARE(child<QLineEdit>(&dialog, "txtAmount")->text(), typed);
            QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("txtAmount"));
            QVERIFY(h.nav.calls.isEmpty());
            return;
        }
        QCOMPARE(dialog.result(), QDialog::Accepted);
        if (collectOnly)
            QCOMPARE(dialog.newDocument().amount.toDouble(), stored);
        else
            QCOMPARE(ItemStore(h.db()).fields(Level::Document, dialog.itemId())->amount, stored);
    }

    void browseForPath()
    {
        DialogHarness h;
        ItemDialog dialog(Level::Cabinet, h.context());
        dialog.setAdd(-1);
        auto* saveTo = child<QLineEdit>(&dialog, "txtSaveTo");
        // Disabled while the program chooses the names.
        dialog.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().size(), 0);
        child<QRadioButton>(&dialog, "optStorage1")->click();
        h.home.settings().saveSetting("PathSelect", h.home.path());
        h.choosers.queueDirectory(std::nullopt);
        dialog.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().value(0), h.home.path());
        QCOMPARE(saveTo->text(), QString()); // cancelled: the box keeps its text
        saveTo->setText("/no/such/dir");
        h.choosers.queueDirectory(QStringLiteral("/srv/scans"));
        dialog.cmdBrowse();
        QCOMPARE(h.choosers.directoryStarts().value(1), QString()); // a stale path opens anywhere
        QCOMPARE(saveTo->text(), QStringLiteral("/srv/scans"));
        QCOMPARE(h.home.settings().getSetting("PathSelect"), QStringLiteral("/srv/scans"));
        // Going back to the program's names keeps the text but disables it.
        child<QRadioButton>(&dialog, "optStorage0")->click();
        QVERIFY(!saveTo->isEnabled());
        QCOMPARE(saveTo->text(), QStringLiteral("/srv/scans"));
    }
};

QMR_TEST(TestItemDialog)
#include "testitemdialog.moc"
