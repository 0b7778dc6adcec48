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
        // `clicks`, by ',', end on the item deleted; `counts`: rows left, cabinets to pages;
        // `starts`: what the progress was started with.
        columns<QString, QString, QString, QStringList>({"clicks", "question", "counts", "starts"});
        row("cabinet", "CAB1", "Delete 'Home Papers'?", "1/1/1/0/0",
            QStringList{"start Delete cabinet 1..2", "start Delete cabinet 1..6"});
        row("drawer", "CAB1,DRW1", "Delete 'Bank'?", "2/2/2/1/1",
            QStringList{"start Delete drawer 1..5"});
        row("folder", "CAB1,DRW1,FLD1", "Delete 'Checking'?", "2/3/3/1/1",
            QStringList{"start Delete folder 1..4"});
        row("document", "CAB1,DRW1,FLD1,DOC1", "Delete 'March statement'?", "2/3/4/2/1",
            QStringList{"start Delete document 1..4"});
    }
    void everyLevelFromTheTree()
    {
        const auto [path, question, counts, starts] =
            fetch<QString, QString, QString, QStringList>("clicks", "question", "counts", "starts");
        const QStringList clicks = path.split(',');
        const NodeKey key = NodeKey::parse(clicks.last());
        SampleWindow h;
        h.addFoundBranch();
        h.clickPath(clicks);
        h.prompter.expect(question, Prompter::Answer::Yes);
        h.trigger(QString("mnuPopup%1Delete").arg(levelInfo(*key.level()).word));
        QMR_VERIFY_PROMPTS(h);
        QCOMPARE(::counts(h), counts);
        QCOMPARE(h.progress.starts(), starts);
        QCOMPARE(h.progress.log.last(), QStringLiteral("end"));
        QVERIFY(!h.tree()->node(key.text()));
        QVERIFY(!h.tree()->node(NodeKey::found(*key.level(), key.id()).text()));
        // The window has moved up to the parent, which lists what is left.
        QCOMPARE(h.tree()->selectedKey(),
                 clicks.size() > 1 ? clicks.at(clicks.size() - 2) : "ROOT");
        QVERIFY(h.window->list()->isVisible());
        QVERIFY(!h.window->list()->itemOf(key));
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

        h.click("ROOT");
        // Cancelled: no question; a wrong password: a message and nothing deleted.
        using Try = std::tuple<std::optional<QString>, const char*, Prompter::Answer>;
        for (const auto& [password, text, answer] :
             {Try{std::nullopt, "", Prompter::Answer::Ok},
              Try{QStringLiteral("wrong"), "Access Denied", Prompter::Answer::Ok},
              Try{QStringLiteral("secret"), "Delete 'Private'?", Prompter::Answer::Yes}}) {
            QCOMPARE(counts(h), QStringLiteral("2/3/3/3/3"));
            h.selectInList("Private", true);
            h.choosers.queuePassword(password);
            if (*text)
                h.prompter.expect(text, answer);
            h.trigger("mnuPopupCabinetDelete");
            QMR_VERIFY_PROMPTS(h);
        }
        QCOMPARE(h.choosers.passwordAsks(), 3);
        QCOMPARE(counts(h), QStringLiteral("1/2/2/3/3"));
        QCOMPARE(h.listTexts(), QStringList{"Home Papers"});
        QVERIFY(!h.tree()->node("CAB2"));
    }

    // No and Cancel change nothing; Yes deletes, from the tree its current page, from the
    // page list the one current or all selected; another document's page stays. A shortcut is
    // named as one; that its file stays is the store's to check.
    void pages()
    {
        NavHarness h;
        qint32 shortcut = -1;
        h.loadWith([&shortcut](FixtureStore& store) {
            store.page(1, 3);
            store.page(1, 4);
            shortcut = shortcutPage(store, 2, 0, "/home/u/reply.pdf");
        });
        h.clickPath({"CAB1", "DRW1", "FLD1", "DOC1"});
        h.setSource(ContextSource::Tree);
        for (const auto answer : {Prompter::Answer::No, Prompter::Answer::Cancel}) {
            for (const char* action : {"mnuPopupDocumentDelete", "mnuPopupPageDelete"}) {
                h.prompter.expect(
                    action[8] == 'D' ? "Delete 'March statement'?" : "Delete 'Page 1'?", answer);
                currentPage(h, 0);
                h.trigger(action);
                QMR_VERIFY_PROMPTS(h);
            }
        }
        QCOMPARE(counts(h), QStringLiteral("2/3/4/3/6"));
        QVERIFY(h.tree()->node("DOC1"));
        QVERIFY(QFile::exists(h.session->paths().computedPagePath(1)));
        QVERIFY(h.progress.log.isEmpty());
        QCOMPARE(pageRows(h), 4);
        for (const auto& [source, all, question, left, start] :
             {std::tuple{ContextSource::Tree, true, "Delete 'Page 1'?", 3, "1..3"},
              std::tuple{ContextSource::PageList, false, "Delete 'Page 3'?", 2, "1..3"},
              std::tuple{ContextSource::PageList, true, "Delete 2 pages?", 0, "1..6"}}) {
            currentPage(h, all ? 0 : 1);
            if (all)
                h.pageView()->selectAll();
            h.setSource(source);
            h.prompter.expect(question, Prompter::Answer::Yes);
            h.trigger("mnuPopupPageDelete");
            QMR_VERIFY_PROMPTS(h);
            QCOMPARE(h.progress.starts().last(), QString("start Delete page ") + start);
            QCOMPARE(pageRows(h), left);
            QCOMPARE(h.session->pages().count(1), left);
        }
        QCOMPARE(h.session->pages().count(3), 1);
        h.click("DOC2");
        currentPage(h, 0);
        h.setSource(ContextSource::PageList);
        QCOMPARE(h.navigator().selectedPageIds(), QVector<qint32>{shortcut});
        h.prompter.expect("Delete shortcut to 'reply.pdf'?", Prompter::Answer::Yes);
        h.trigger("mnuPopupPageDelete");
        QMR_VERIFY_PROMPTS(h);
        QVERIFY(!h.session->pages().page(shortcut));
    }

    // A page with a file of its own is named by its number, or by its file's name at number 0.
    void pageNames()
    {
        PageRow page;
        page.filename = QStringLiteral("/srv/a/scan.jpg");
        for (const auto& [number, name] : {std::pair{2, "Page 2"}, std::pair{0, "scan.jpg"}}) {
            page.pageNumber = number;
            QCOMPARE(DeleteCommand::pageName(page), QString(name));
        }
    }
};

QMR_TEST(TestDeleteCommand)
#include "testdeletecommand.moc"
