#include "filing/deletecommand.h"
#include "navharness.h"

using namespace qmr;
using namespace qmr::test;

namespace {

QString counts(NavHarness& h)
{
    QStringList counts;
    for (const char* table : {"Cabinet", "Drawer", "Folder", "Document", "Page"})
        counts << h.session->db().scalar(QString("SELECT COUNT(*) FROM %1").arg(table)).toString();
    return counts.join('/');
}

int pageRows(NavHarness& h)
{
    return h.pageView()->model()->rowCount();
}

// Makes the pane's row current.
void currentPage(NavHarness& h, int row)
{
    h.pageView()->setCurrentIndex(h.pageView()->model()->index(row, 0));
}

} // namespace

class TestDeleteCommand : public QObject
{
    Q_OBJECT
private slots:
    void everyLevelFromTheTree_data()
    {
        // `gone`: the tree's node, with its found copy; `counts`: rows left, cabinets to pages;
        // `selected`: the tree's node afterwards; `starts`: what the progress was started with.
        columns<QStringList, QString, QString, QString, QString, QString, QStringList>(
            {"clicks", "action", "question", "gone", "counts", "selected", "starts"});
        row("cabinet", QStringList{"CAB1"}, "mnuPopupCabinetDelete", "Delete 'Home Papers'?",
            "CAB1", "1/1/1/0/0", "ROOT",
            QStringList{"start Delete cabinet 1..2", "start Delete cabinet 1..6"});
        row("drawer", QStringList{"CAB1", "DRW1"}, "mnuPopupDrawerDelete", "Delete 'Bank'?", "DRW1",
            "2/2/2/1/1", "CAB1", QStringList{"start Delete drawer 1..5"});
        row("folder", QStringList{"CAB1", "DRW1", "FLD1"}, "mnuPopupFolderDelete",
            "Delete 'Checking'?", "FLD1", "2/3/3/1/1", "DRW1",
            QStringList{"start Delete folder 1..4"});
        row("document", QStringList{"CAB1", "DRW1", "FLD1", "DOC1"}, "mnuPopupDocumentDelete",
            "Delete 'March statement'?", "DOC1", "2/3/4/2/1", "FLD1",
            QStringList{"start Delete document 1..4"});
    }
    void everyLevelFromTheTree()
    {
        const auto [clicks, action, question, gone, counts, selected, starts] =
            fetch<QStringList, QString, QString, QString, QString, QString, QStringList>(
                {"clicks", "action", "question", "gone", "counts", "selected", "starts"});
        SampleWindow h;
        h.addFoundBranch();
        h.clickPath(clicks);
        const PagePaths& paths = h.session->paths();
        QVERIFY(QFile::exists(paths.computedPagePath(1)));
        h.prompter.expect(question, Prompter::Answer::Yes);
        h.trigger(action);
        QMR_VERIFY_PROMPTS(h);
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

    void fromTheListALockedCabinetAfterItsPassword()
    {
        SampleWindow h({"CAB1", "DRW1"});
        h.selectInList("Savings", true);
        h.prompter.expect("Delete 'Savings'?", Prompter::Answer::Yes);
        h.trigger("mnuPopupFolderDelete");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(h.listTexts(), QStringList{"Checking"});
        QVERIFY(!h.tree()->node("FLD2"));
        QCOMPARE(h.tree()->selectedKey(), QStringLiteral("DRW1")); // the tree stays
        QCOMPARE(counts(h), QStringLiteral("2/3/3/3/3"));

        h.click("ROOT");
        h.selectInList("Private", true);
        h.choosers.queuePassword(std::nullopt); // cancelled: no question
        h.trigger("mnuPopupCabinetDelete");
        QMR_VERIFY_PROMPTS(h);
        h.choosers.queuePassword(QStringLiteral("wrong"));
        h.prompter.expect("Access Denied");
        h.trigger("mnuPopupCabinetDelete");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(counts(h), QStringLiteral("2/3/3/3/3"));
        h.choosers.queuePassword(QStringLiteral("secret"));
        h.prompter.expect("Delete 'Private'?", Prompter::Answer::Yes);
        h.selectInList("Private", true);
        h.trigger("mnuPopupCabinetDelete");
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(counts(h), QStringLiteral("1/2/2/3/3"));
        QCOMPARE(h.listTexts(), QStringList{"Home Papers"});
        QVERIFY(!h.tree()->node("CAB2"));
    }

    void noCancelAndClosingChangeNothing_data()
    {
        columns<int>({"answer"});
        row("no", int(Prompter::Answer::No));
        row("cancel", int(Prompter::Answer::Cancel));
    }
    void noCancelAndClosingChangeNothing()
    {
        const auto [answer] = fetch<int>({"answer"});
        SampleWindow h({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.setSource(ContextSource::Tree);
        for (const char* action : {"mnuPopupDocumentDelete", "mnuPopupPageDelete"}) {
            h.prompter.reset();
            h.prompter.expect(action[8] == 'D' ? "Delete 'March statement'?" : "Delete 'Page 1'?",
                              Prompter::Answer(answer));
            currentPage(h, 0);
            h.trigger(action);
            QMR_VERIFY_PROMPTS(h);
        }
        QCOMPARE(counts(h), QStringLiteral("2/3/4/3/3"));
        QVERIFY(h.tree()->node("DOC1"));
        QCOMPARE(pageRows(h), 2);
        QVERIFY(QFile::exists(h.session->paths().computedPagePath(1)));
        QVERIFY(h.progress.log.isEmpty());
    }

    void pages_data()
    {
        // `all`: every page selected, else the second one current; `left`: rows of the pane.
        columns<int, bool, QString, int, QString>({"source", "all", "question", "left", "start"});
        row("several from the page list", int(ContextSource::PageList), true, "Delete 3 pages?", 0,
            "start Delete page 1..9");
        row("one from the page list", int(ContextSource::PageList), false, "Delete 'Page 2'?", 2,
            "start Delete page 1..3");
        row("the current one from the tree", int(ContextSource::Tree), true, "Delete 'Page 1'?", 2,
            "start Delete page 1..3");
    }
    void pages()
    {
        const auto [source, all, question, left, start] =
            fetch<int, bool, QString, int, QString>({"source", "all", "question", "left", "start"});
        NavHarness h;
        h.loadWith([](FixtureStore& store) { store.page(1, 3); });
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        QCOMPARE(pageRows(h), 3);
        currentPage(h, all ? 0 : 1);
        if (all)
            h.pageView()->selectAll();
        h.setSource(ContextSource(source));
        h.prompter.expect(question, Prompter::Answer::Yes);
        h.trigger("mnuPopupPageDelete");
        QMR_VERIFY_PROMPTS(h);
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
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write("%PDF") == 4);
        f.close();
        qint32 id = -1;
        h.loadWith([&](FixtureStore& store) {
            store.db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, "
                               "Filetype) VALUES (2, 0, ?, 'Y', 'pdf')",
                               {file});
            id = store.db().lastInsertId();
        });
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC2"});
        currentPage(h, 0);
        h.setSource(ContextSource::PageList);
        QCOMPARE(h.navigator().selectedPageIds(), QVector<qint32>{id});
        h.prompter.expect("Delete shortcut to 'reply.pdf'?", Prompter::Answer::Yes);
        h.trigger("mnuPopupPageDelete");
        QMR_VERIFY_PROMPTS(h);
        QVERIFY(!h.session->pages().page(id));
        QVERIFY(QFile::exists(file));
    }

    void pageNames_data()
    {
        columns<bool, int, QString, QString>({"shortcut", "number", "filename", "name"});
        row("numbered", false, 7, "", "Page 7");
        row("own file, numbered", false, 2, "/srv/a/scan.jpg", "Page 2");
        row("own file, number 0", false, 0, "/srv/a/scan.jpg", "scan.jpg");
        row("shortcut", true, 0, "/home/u/reply.pdf", "reply.pdf");
    }
    void pageNames()
    {
        PageRow page;
        std::tie(page.shortcut, page.pageNumber, page.filename) =
            fetch<bool, int, QString>({"shortcut", "number", "filename"});
        QTEST(DeleteCommand::pageName(page), "name");
    }
};

QMR_TEST(TestDeleteCommand)
#include "testdeletecommand.moc"
