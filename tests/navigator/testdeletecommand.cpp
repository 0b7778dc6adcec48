#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "navharness.h"
#include "filing/deletecommand.h"
#include "store/itemstore.h"
#include "store/pagepaths.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::NavHarness;

namespace {

void trigger(NavHarness& h, const QString& action)
{
    QAction* a = h.window->menus().action(action);
    QVERIFY2(a && a->isEnabled(), qPrintable(action));
    a->trigger();
}

int rows(NavHarness& h, const char* table)
{
    return h.session->db().scalar(QString("SELECT COUNT(*) FROM %1").arg(table)).toInt();
}

QString counts(NavHarness& h)
{
    return QString("%1/%2/%3/%4/%5")
        .arg(rows(h, "Cabinet"))
        .arg(rows(h, "Drawer"))
        .arg(rows(h, "Folder"))
        .arg(rows(h, "Document"))
        .arg(rows(h, "Page"));
}

// The found branch as a search would leave it for document 1.
void addFoundBranch(NavHarness& h)
{
    NavTree* t = h.tree();
    QIcon none;
    t->addNode("", "ROOTFOUND", "Found", none);
    t->addNode("ROOTFOUND", "FCB1", "Home Papers", none);
    t->addNode("FCB1", "FDW1", "Bank", none);
    t->addNode("FDW1", "FFD1", "Checking", none);
    t->addNode("FFD1", "FDC1", "March statement", none);
}

void selectInList(NavHarness& h, const QString& text)
{
    QListWidgetItem* item = h.window->list()->findItems(text, Qt::MatchExactly).value(0);
    QVERIFY2(item, qPrintable(text));
    h.window->list()->setCurrentItem(item);
    h.setSource(ContextSource::List);
}

int pageRows(NavHarness& h)
{
    return h.pageView()->model()->rowCount();
}

} // namespace

class TestDeleteCommand : public QObject
{
    Q_OBJECT
private slots:
    void everyLevelFromTheTree_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("gone");       // tree node, with its found copy
        QTest::addColumn<QString>("counts");     // rows left, cabinets to pages
        QTest::addColumn<QString>("selected");   // the tree's node afterwards
        QTest::addColumn<QStringList>("starts"); // what the progress was started with
        QTest::newRow("cabinet") << QStringList{"CAB1"} << "mnuPopupCabinetDelete"
                                 << "Delete 'Home Papers'?"
                                 << "CAB1"
                                 << "1/1/1/0/0"
                                 << "ROOT"
                                 << QStringList{"start Delete cabinet 1..2",
                                                "start Delete cabinet 1..6"};
        QTest::newRow("drawer") << QStringList{"CAB1", "DRW1"} << "mnuPopupDrawerDelete"
                                << "Delete 'Bank'?"
                                << "DRW1"
                                << "2/2/2/1/1"
                                << "CAB1" << QStringList{"start Delete drawer 1..5"};
        QTest::newRow("folder") << QStringList{"CAB1", "DRW1", "FLD1"} << "mnuPopupFolderDelete"
                                << "Delete 'Checking'?"
                                << "FLD1"
                                << "2/3/3/1/1"
                                << "DRW1" << QStringList{"start Delete folder 1..4"};
        QTest::newRow("document") << QStringList{"CAB1", "DRW1", "FLD1", "DOC1"}
                                  << "mnuPopupDocumentDelete"
                                  << "Delete 'March statement'?"
                                  << "DOC1"
                                  << "2/3/4/2/1"
                                  << "FLD1" << QStringList{"start Delete document 1..4"};
    }
    void everyLevelFromTheTree()
    {
        QFETCH(QStringList, clicks);
        QFETCH(QString, action);
        QFETCH(QString, question);
        QFETCH(QString, gone);
        QFETCH(QString, counts);
        QFETCH(QString, selected);
        QFETCH(QStringList, starts);
        NavHarness h;
        h.loadSample();
        addFoundBranch(h);
        h.clickPath(clicks);
        const PagePaths& paths = h.session->paths();
        QVERIFY(QFile::exists(paths.computedPagePath(1)));
        h.prompter.expect(question, Prompter::Answer::Yes);
        trigger(h, action);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(::counts(h), counts);
        QCOMPARE(h.progress.starts(), starts);
        QCOMPARE(h.progress.log.last(), QStringLiteral("end"));
        QVERIFY(!h.tree()->node(gone));
        const NodeKey key = NodeKey::parse(gone);
        QVERIFY(!h.tree()->node(NodeKey::found(*key.level(), key.id()).text()));
        // The window has moved up to the parent, which lists what is left.
        QCOMPARE(h.tree()->selectedKey(), selected);
        QVERIFY(h.window->list()->isVisible());
        QVERIFY(!h.window->list()->itemOf(key));
        QVERIFY(!QFile::exists(paths.computedPagePath(1)));
        QVERIFY(!QFile::exists(paths.computedThumbPath(1)));
        // The focus is back in the tree, which spoke last.
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(h.tree()));
    }

    void fromTheList()
    {
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1"});
        selectInList(h, "Savings");
        h.prompter.expect("Delete 'Savings'?", Prompter::Answer::Yes);
        trigger(h, "mnuPopupFolderDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.listTexts(), QStringList{"Checking"});
        QVERIFY(!h.tree()->node("FLD2"));
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW1")); // the tree stays
        QCOMPARE(ItemStore(h.session->db()).count(Level::Folder), 3);
    }

    void noCancelAndClosingChangeNothing_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("no") << int(Prompter::Answer::No);
        QTest::newRow("cancel") << int(Prompter::Answer::Cancel);
    }
    void noCancelAndClosingChangeNothing()
    {
        QFETCH(int, answer);
        NavHarness h;
        h.loadSample();
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.setSource(ContextSource::Tree);
        for (const char* action : {"mnuPopupDocumentDelete", "mnuPopupPageDelete"}) {
            h.prompter.reset();
            h.prompter.expect(action[8] == 'D' ? "Delete 'March statement'?" : "Delete 'Page 1'?",
                              Prompter::Answer(answer));
            h.pageView()->setCurrentIndex(h.pageView()->model()->index(0, 0));
            trigger(h, action);
            QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        }
        QCOMPARE(counts(h), QStringLiteral("2/3/4/3/3"));
        QVERIFY(h.tree()->node("DOC1"));
        QCOMPARE(pageRows(h), 2);
        QVERIFY(QFile::exists(h.session->paths().computedPagePath(1)));
        QVERIFY(h.progress.log.isEmpty());
    }

    void lockedCabinetAsksItsPasswordFirst()
    {
        NavHarness h;
        h.loadSample();
        h.click("ROOT");
        selectInList(h, "Private");
        h.choosers.queuePassword(std::nullopt); // cancelled: no question
        trigger(h, "mnuPopupCabinetDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        h.choosers.queuePassword(QStringLiteral("wrong"));
        h.prompter.expect("Access Denied");
        trigger(h, "mnuPopupCabinetDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(counts(h), QStringLiteral("2/3/4/3/3"));
        h.choosers.queuePassword(QStringLiteral("secret"));
        h.prompter.expect("Delete 'Private'?", Prompter::Answer::Yes);
        selectInList(h, "Private");
        trigger(h, "mnuPopupCabinetDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(counts(h), QStringLiteral("1/2/3/3/3"));
        QCOMPARE(h.listTexts(), QStringList{"Home Papers"});
        QVERIFY(!h.tree()->node("CAB2"));
    }

    void pages_data()
    {
        QTest::addColumn<int>("source");
        QTest::addColumn<bool>("all"); // every page selected, else the second one current
        QTest::addColumn<QString>("question");
        QTest::addColumn<int>("left"); // rows of the pane afterwards
        QTest::addColumn<QString>("start");
        QTest::newRow("several from the page list")
            << int(ContextSource::PageList) << true << "Delete 3 pages?" << 0
            << "start Delete page 1..9";
        QTest::newRow("one from the page list")
            << int(ContextSource::PageList) << false << "Delete 'Page 2'?" << 2
            << "start Delete page 1..3";
        QTest::newRow("the current one from the tree")
            << int(ContextSource::Tree) << true << "Delete 'Page 1'?" << 2
            << "start Delete page 1..3";
    }
    void pages()
    {
        QFETCH(int, source);
        QFETCH(bool, all);
        QFETCH(QString, question);
        QFETCH(int, left);
        QFETCH(QString, start);
        NavHarness h;
        {
            test::FixtureStore store(h.home.home());
            store.fillSample();
            store.page(1, 3);
        }
        h.load();
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        QAbstractItemView* pane = h.pageView();
        QCOMPARE(pageRows(h), 3);
        if (all) {
            pane->setCurrentIndex(pane->model()->index(0, 0));
            pane->selectAll();
        } else {
            pane->setCurrentIndex(pane->model()->index(1, 0));
        }
        h.setSource(ContextSource(source));
        h.prompter.expect(question, Prompter::Answer::Yes);
        trigger(h, "mnuPopupPageDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.progress.starts(), QStringList{start});
        QCOMPARE(pageRows(h), left);
        QCOMPARE(h.session->pages().count(1), left);
        QCOMPARE(h.session->pages().count(3), 1); // another document's page stays
    }

    void shortcutPageKeepsItsFile()
    {
        NavHarness h;
        QTemporaryDir outside;
        const QString file = outside.filePath("reply.pdf");
        {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("%PDF");
        }
        test::FixtureStore store(h.home.home());
        store.fillSample();
        store.db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, "
                           "Filetype) VALUES (2, 0, ?, 'Y', 'pdf')",
                           {file});
        const qint32 id = store.db().lastInsertId();
        store.close();
        h.load();
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC2"});
        QAbstractItemView* pane = h.pageView();
        pane->setCurrentIndex(pane->model()->index(0, 0));
        h.setSource(ContextSource::PageList);
        QCOMPARE(h.navigator().selectedPageIds(), QVector<qint32>{id});
        h.prompter.expect("Delete shortcut to 'reply.pdf'?", Prompter::Answer::Yes);
        trigger(h, "mnuPopupPageDelete");
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QVERIFY(!h.session->pages().page(id));
        QVERIFY(QFile::exists(file));
    }

    void pageNames_data()
    {
        QTest::addColumn<bool>("shortcut");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("filename");
        QTest::addColumn<QString>("name");
        QTest::newRow("numbered") << false << 7 << ""
                                  << "Page 7";
        QTest::newRow("own file, numbered") << false << 2 << "/srv/a/scan.jpg"
                                            << "Page 2";
        QTest::newRow("own file, number 0") << false << 0 << "/srv/a/scan.jpg"
                                            << "scan.jpg";
        QTest::newRow("shortcut") << true << 0 << "/home/u/reply.pdf"
                                  << "reply.pdf";
    }
    void pageNames()
    {
        QFETCH(bool, shortcut);
        QFETCH(int, number);
        QFETCH(QString, filename);
        QFETCH(QString, name);
        PageRow page;
        page.shortcut = shortcut;
        page.pageNumber = number;
        page.filename = filename;
        QCOMPARE(DeleteCommand::pageName(page), name);
    }
};

QMR_TEST(TestDeleteCommand)
#include "testdeletecommand.moc"
