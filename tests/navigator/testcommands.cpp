#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "core/textfile.h"
#include "dialogs/itemdialog.h"
#include "navharness.h"
#include "store/itemstore.h"
#include "templates/outlinefile.h"
#include "templates/samplecabinets.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

using qmr::test::whenModal;

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

void trigger(NavHarness& h, const char* action)
{
    QAction* a = h.window->menus().action(QLatin1String(action));
    QVERIFY2(a && a->isEnabled(), action);
    a->trigger();
}

} // namespace

class TestCommands : public QObject
{
    Q_OBJECT
private slots:
    void newItemsFindTheirParent_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("listItem"); // selected in the list afterwards, context "L"
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("parent");
        QTest::addColumn<QString>("caption");
        QTest::newRow("drawer in clicked cabinet")
            << QStringList{"CAB1"} << ""
            << "mnuPopupCabinetNewDrawer" << 1 << 1 << "Add Drawer";
        QTest::newRow("drawer beside clicked drawer")
            << QStringList{"CAB1", "DRW2"} << ""
            << "mnuPopupDrawerNewDrawer" << 1 << 1 << "Add Drawer";
        QTest::newRow("folder in clicked drawer")
            << QStringList{"CAB1", "DRW2"} << ""
            << "mnuPopupDrawerNewFolder" << 2 << 2 << "Add Folder";
        QTest::newRow("folder beside clicked folder")
            << QStringList{"CAB1", "DRW2", "FLD3"} << ""
            << "mnuPopupFolderNewFolder" << 2 << 2 << "Add Folder";
        QTest::newRow("document in clicked folder")
            << QStringList{"CAB1", "DRW1", "FLD1"} << ""
            << "mnuPopupFolderNewDocument" << 3 << 1 << "Add Document";
        QTest::newRow("document beside clicked document")
            << QStringList{"CAB1", "DRW2", "FLD3", "DOC3"} << ""
            << "mnuPopupDocumentNewDocument" << 3 << 3 << "Add Document";
        QTest::newRow("drawer in the list's cabinet")
            << QStringList{"ROOT"} << "Home Papers"
            << "mnuPopupCabinetNewDrawer" << 1 << 1 << "Add Drawer";
        QTest::newRow("folder beside the list's folder")
            << QStringList{"CAB1", "DRW1"} << "Checking"
            << "mnuPopupFolderNewFolder" << 2 << 1 << "Add Folder";
        QTest::newRow("cabinet") << QStringList{"ROOT"} << ""
                                 << "mnuPopupRootNewFileCabinet" << 0 << -1 << "Add File Cabinet";
    }
    void newItemsFindTheirParent()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, listItem);
        QFETCH(QString, action);
        QFETCH(int, level);
        QFETCH(int, parent);
        QFETCH(QString, caption);
        NavHarness h;
        h.loadSample();
        h.clickPath(clicks);
        if (!listItem.isEmpty()) {
            QListWidgetItem* item =
                h.window->list()->findItems(listItem, Qt::MatchExactly).value(0);
            QVERIFY(item);
            h.window->list()->setCurrentItem(item);
            h.setSource(ContextSource::List);
        }
        const int before = ItemStore(h.session->db()).count(Level(level));
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) { typeNameAndOk(d, "Brand new", &seen); });
        trigger(h, qPrintable(action));
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
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
    }

    void propertiesRenameEverywhere()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) { typeNameAndOk(d, "Bank & Loans", &seen); });
        // The drawer comes from the list, as nothing in the record names a drawer.
        h.window->list()->setCurrentItem(h.window->list()->item(0));
        h.setSource(ContextSource::List);
        trigger(h, "mnuPopupDrawerProperties");
        QCOMPARE(seen, QStringLiteral("Drawer Properties (1)"));
        QCOMPARE(h.tree()->node("DRW1")->text(0), QStringLiteral("Bank & Loans"));
        QVERIFY(h.listTexts().contains("Bank & Loans"));
    }

    void lockedCabinetPropertiesAskFirst()
    {
        NavHarness h;
        h.loadSample();
        h.click("ROOT");
        h.window->list()->setCurrentItem(
            h.window->list()->findItems("Private", Qt::MatchExactly).value(0));
        h.setSource(ContextSource::List);
        h.choosers.queuePassword(std::nullopt);
        trigger(h, "mnuPopupCabinetProperties"); // cancelled: no dialog
        QString seen;
        h.choosers.queuePassword(QStringLiteral("secret"));
        whenModal(h.window.get(), [&](QWidget* d) {
            seen = d->windowTitle();
            d->findChild<QPushButton*>("cmdCancel")->click();
        });
        trigger(h, "mnuPopupCabinetProperties");
        QCOMPARE(seen, QStringLiteral("File Cabinet Properties (2)"));
        QCOMPARE(h.choosers.passwordAsks(), 2);
        // Opened from the list, the cabinet's node is filled as a click fills it.
        QCOMPARE(h.childTexts("CAB2"), QStringList{"Health"});
        QCOMPARE(h.childTexts("DRW3"), QStringList{"Doctor"});
    }

    void documentDoubleClickOpensProperties()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        h.click("DRW1");
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) {
            seen = d->windowTitle();
            d->findChild<QLineEdit*>("txtDateOnDocument")->clear();
            d->findChild<QPushButton*>("cmdOK")->click();
        });
        QTreeWidgetItem* doc = h.tree()->node("DOC1");
        emit h.tree()->itemDoubleClicked(doc, 0);
        QCOMPARE(seen, QStringLiteral("Document Properties (1)"));
        QCOMPARE(h.tree()->node("DOC1")->text(0), QStringLiteral("March statement"));
    }

    void insertKeyAddsInTheTree()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        h.click("DRW1");
        QString seen;
        whenModal(h.window.get(),
                  [&](QWidget* d) { typeNameAndOk(d, "From the keyboard", &seen); });
        QTest::keyClick(h.tree(), Qt::Key_Insert);
        QCOMPARE(seen, QStringLiteral("Add Folder"));
        QCOMPARE(h.tree()->node(h.tree()->selectedKey())->text(0),
                 QStringLiteral("From the keyboard"));
        QCOMPARE(h.tree()->parentKey(h.tree()->selectedKey()), QStringLiteral("DRW1"));
    }

    void insertFollowsTheKeyboard()
    {
        NavHarness h;
        h.loadSample();
        h.click("CAB1");
        // The arrow keys move the selection without driving the window; Insert then adds a
        // drawer to the cabinet that is selected, not to the one clicked last.
        h.tree()->selectNode("CAB2");
        h.session->locks().recordOpen(2);
        QString seen;
        whenModal(h.window.get(), [&](QWidget* d) { typeNameAndOk(d, "Keyboard drawer", &seen); });
        QTest::keyClick(h.tree(), Qt::Key_Insert);
        QCOMPARE(seen, QStringLiteral("Add Drawer"));
        QCOMPARE(ItemStore(h.session->db()).children(Level::Drawer, 2).size(), 2);
    }

    void pagePropertiesOfTheSelection()
    {
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        PageListView* pages = h.window->pageList()->list();
        QCOMPARE(pages->count(), 2);
        pages->selectAllPages();
        QString data;
        whenModal(h.window.get(), [&](QWidget* d) {
            data = d->findChild<QLabel*>("lblPageIdData")->text();
            d->findChild<QPushButton*>("cmdOK")->click();
        });
        trigger(h, "mnuPopupPageProperties");
        QCOMPARE(data, QStringLiteral("2 pages"));
    }

    void renumbering_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("numbers");
        QTest::newRow("yes") << int(Prompter::Answer::Yes) << "1,2";
        QTest::newRow("no") << int(Prompter::Answer::No) << "5,5";
        QTest::newRow("cancel") << int(Prompter::Answer::Cancel) << "5,5";
    }
    void renumbering()
    {
        QFETCH(int, answer);
        QFETCH(QString, numbers);
        NavHarness h;
        h.loadSample();
        h.session->db().execute("UPDATE Page SET PageNumber = 5 WHERE DocumentId = 1");
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.prompter.expect("Renumber all pages in 'March statement'?", Prompter::Answer(answer));
        trigger(h, "mnuPopupDocumentRepaginate");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        const Recordset rs = h.session->db().openRecordset(
            "SELECT PageNumber FROM Page WHERE DocumentId = 1 ORDER BY PageId");
        QCOMPARE(QString("%1,%2").arg(rs.integer(0, "PageNumber")).arg(rs.integer(1, "PageNumber")),
                 numbers);
        QCOMPARE(h.pageTexts().value(1), "Page " + numbers.section(',', 1));
    }

    void renumberOnePage_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("stored");
        QTest::newRow("number") << "7" << true << 7;
        QTest::newRow("no number") << "seven" << true << 2;
        QTest::newRow("cancel") << "9" << false << 2;
    }
    void renumberOnePage()
    {
        QFETCH(QString, typed);
        QFETCH(bool, ok);
        QFETCH(int, stored);
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        PageListView* pages = h.window->pageList()->list();
        pages->selectPage(pages->pageIdAt(1));
        QString present;
        whenModal(h.window.get(), [&](QWidget* d) {
            auto* box = d->findChild<QLineEdit*>("txtPageNumber");
            present = box->text();
            box->setText(typed);
            d->findChild<QPushButton*>(ok ? "cmdOK" : "cmdCancel")->click();
        });
        trigger(h, "mnuPopupPageRenumber");
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
        trigger(h, "mnuToolsCreateSampleCabinet");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(ItemStore(h.session->db()).count(Level::Cabinet), 1);

        // Renamed, the cabinet no longer blocks a second copy of the sample.
        h.session->db().execute("UPDATE Cabinet SET Name = 'Mine'");
        h.prompter.expect(unused);
        whenModal(h.window.get(),
                  [](QWidget* d) { d->findChild<QPushButton*>("cmdCreate")->click(); });
        trigger(h, "mnuToolsCreateSampleCabinet");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(ItemStore(h.session->db()).count(Level::Cabinet), 2);
        QCOMPARE(h.tree()->node(h.tree()->selectedKey())->text(0),
                 QStringLiteral("Generic File Cabinet"));
        QCOMPARE(h.listTexts().size(), 6);
    }

    void drawerFromTemplateThroughTheMenu()
    {
        NavHarness h;
        test::FixtureStore(h.home.home()).fillSample();
        QVERIFY(TextFile::writeLines(h.home.file("Drawer.txt"),
                                     {"", "DRW=Car", "FLD=Repairs", "DOC=Invoice"}));
        h.load();
        h.templates->loadDrawerTemplates();
        h.click("CAB1");
        whenModal(h.window.get(), [](QWidget* d) {
            d->findChild<QLineEdit*>("txtName")->setText("My car");
            d->findChild<QComboBox*>("cboTemplate")->setCurrentIndex(1);
            d->findChild<QPushButton*>("cmdOK")->click();
        });
        trigger(h, "mnuPopupCabinetNewDrawer");
        const QString drawer =
            "DRW" + h.session->db().scalar("SELECT MAX(DrawerId) FROM Drawer").toString();
        QCOMPARE(h.tree()->node(drawer)->text(0), QStringLiteral("My car"));
        QCOMPARE(h.childTexts(drawer), QStringList{"Repairs"});
        QCOMPARE(h.childTexts(h.childKeys(drawer).first()), QStringList{"Invoice"});
    }
};

QMR_TEST(TestCommands)
#include "testcommands.moc"
