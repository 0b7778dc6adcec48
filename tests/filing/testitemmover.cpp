#include <QTest>

#include "filing/cabinetopener.h"
#include "filing/moverules.h"
#include "movefixture.h"
#include "store/itemstore.h"
#include "store/pagestore.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

Q_DECLARE_METATYPE(qmr::DropSource)

namespace {

// Where an item of the sample store stands: its parent's key ("DOC1" for a page).
QString parentKeyOf(Session& session, const NodeKey& key)
{
    const Level level = *key.level();
    const qint32 parent = session.items().parentOf(level, key.id());
    return parent < 0 ? QString() : NodeKey::of(*parentLevel(level), parent).text();
}

qint32 cabinet(MoveBench& b, const QString& name, const QString& password = QString())
{
    return FixtureStore(b.home.home()).cabinet(name, password);
}
bool openCabinet(MoveBench& b, qint32 id)
{
    return CabinetOpener::openCabinet(*b.context, id);
}

QStringList split(const char* list)
{
    return QString(list).split(',', Qt::SkipEmptyParts);
}

} // namespace

// Moves of items and pages, the rules they follow, and the passwords of cabinets.
class TestItemMover : public QObject
{
    Q_OBJECT
private slots:
    // The sample store: cabinet 1 (drawers 1 Bank and 2 Taxes; folders 1 Checking and
    // 2 Savings in Bank, 3 "2025" in Taxes; documents 1 and 2 in Checking, 3 in 2025;
    // pages 1 and 2 in document 1, page 3 in document 3), cabinet 2 locked with "secret"
    // (drawer 3, folder 4).
    void eachMove_data()
    {
        // `move`: the item, the target, its parent after.
        columns<DropSource, QStringList, QStringList, QStringList>(
            {"source", "move", "view", "navigator"});
        const auto row = [](const char* name, DropSource source, const char* move, const char* view,
                            const char* navigator = "") {
            test::row(name, source, QString(move).split(' '), split(view), split(navigator));
        };
        const auto tree = DropSource::Tree;
        const auto list = DropSource::PageList;
        row("drawer into the other cabinet, with its password", tree, "DRW2 CAB2 CAB2",
            "EXPAND CAB2,MOVE DRW2 CAB2", "OPEN2");
        row("drawer onto its own cabinet", tree, "DRW2 CAB1 CAB1", "EXPAND CAB1", "OPEN1");
        row("folder into another drawer", DropSource::List, "FLD3 DRW1 DRW1",
            "EXPAND DRW1,MOVE FLD3 DRW1");
        row("folder onto its own drawer", tree, "FLD1 DRW1 DRW1", "EXPAND DRW1");
        row("document into another folder", tree, "DOC3 FLD2 FLD2", "EXPAND FLD2,MOVE DOC3 FLD2");
        row("document onto its own folder", tree, "DOC1 FLD1 FLD1", "EXPAND FLD1");
        row("page from the tree's drag into another document", tree, "PAG3 DOC1 DOC1",
            "EXPAND DOC1");
        row("page out of the page list", list, "PAG3 DOC1 DOC1",
            "EXPAND DOC1,REMOVE 3,SELECT DOC3");
        row("page onto its own document", list, "PAG1 DOC1 DOC1", "EXPAND DOC1");
        row("page of the window onto a folder does nothing", list, "PAG3 FLD1 DOC3", "EXPAND FLD1");
        row("drawer onto a folder is refused", tree, "DRW2 FLD1 CAB1", "");
    }
    void eachMove()
    {
        auto [source, move] = fetch<DropSource, QStringList>("source", "move");
        MoveBench b;
        b.state.selection().lastNodeKey = QStringLiteral("DOC3");
        b.choosers.queuePassword(QStringLiteral("secret"));
        const NodeKey moved = NodeKey::parse(move.at(0));
        const QString before = parentKeyOf(*b.session, moved);
        const int pagesBefore = b.session->pages().count(1);

        NodeKey into = NodeKey::parse(move.at(1));
        b.mover->processDrop(source, move.at(0), into);

        QCOMPARE(parentKeyOf(*b.session, moved), move.at(2));
        QTEST(b.moves.calls, "view");
        QTEST(b.nav.calls, "navigator");
        QCOMPARE(into.text(), move.at(1));
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        // A page that arrives is announced, at the end of its new document; its file stays.
        const bool pageMoved = moved.level() == Level::Page && before != move.at(2);
        QCOMPARE(b.notices.pages, pageMoved ? QVector<qint32>{moved.id()} : QVector<qint32>());
        if (pageMoved) {
            QCOMPARE(b.page(moved.id()).pageNumber, 3);
            QCOMPARE(b.session->pages().count(1), pagesBefore + 1);
            QVERIFY(QFile::exists(b.pagePath(moved.id())));
        }
    }

    void movedPageGoesAfterTheHighestNumber_data()
    {
        columns<QVariantList, int>({"numbers", "expected"}); // the target document's pages
        row("empty document", QVariantList(), 1);
        row("numbers with a gap", QVariantList{1, 7, 3}, 8);
        row("only shortcuts numbered 0", QVariantList{0, 0}, 1);
        row("a page without a number", QVariantList{QVariant(), 2}, 3);
    }
    void movedPageGoesAfterTheHighestNumber()
    {
        QFETCH(QVariantList, numbers);
        MoveBench b;
        FixtureStore fixture(b.home.home());
        for (const QVariant& n : numbers)
            fixture.pageRow(2, n); // document 2 has no pages in the sample
        fixture.close();
        QVERIFY(b.mover->movePage(3, 2, DropSource::Tree));
        QCOMPARE(b.page(3).documentId, 2);
        QTEST(b.page(3).pageNumber, "expected");
        QCOMPARE(b.page(1).pageNumber, 1); // the document it left keeps its numbers
    }

    void drawerMoveAsksThePasswordFirst_data()
    {
        columns<QVariant, QStringList>({"typed", "messages"}); // typed null: Cancel
        row("cancelled", QVariant(), QStringList());
        row("wrong", QVariant("Secret"), QStringList{"Access Denied"});
        row("right", QVariant("secret"), QStringList());
    }
    void drawerMoveAsksThePasswordFirst()
    {
        auto [typed, messages] = fetch<QVariant, QStringList>("typed", "messages");
        MoveBench b;
        b.choosers.queuePassword(typed.isNull() ? std::nullopt
                                                : std::optional<QString>(typed.toString()));
        for (const QString& m : messages)
            b.prompter.expect(m);
        // Drawer 3 is in the locked cabinet already: the password comes before that test.
        QVERIFY(!b.mover->moveDrawer(3, 2));
        QCOMPARE(b.choosers.passwordAsks(), 1);
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        QCOMPARE(b.session->items().cabinetOfDrawer(3), 2);
        // Only the right password opens the cabinet, for the rest of the run; without it
        // nothing moves into the cabinet either.
        const bool right = typed == QVariant("secret");
        QCOMPARE(b.session->locks().inOpenList(2), right);
        if (!right) {
            QVERIFY(!b.mover->moveDrawer(1, 2));
            QCOMPARE(b.session->items().cabinetOfDrawer(1), 1);
        }
    }

    void aMoveKeepsWhatIsBelowAndTestsNoName()
    {
        MoveBench b;
        // A second "Bank" in cabinet 2, then the first one moved beside it.
        const qint32 other =
            b.session->items().insertItem(Level::Drawer, 2, QStringLiteral("Bank"));
        b.choosers.queuePassword(QStringLiteral("secret"));
        QVERIFY(b.mover->moveDrawer(1, 2));
        QCOMPARE(b.session->items().cabinetOfDrawer(1), 2);
        QCOMPARE(b.session->items().cabinetOfDrawer(other), 2);
        // Its folders, documents and pages went with it.
        QCOMPARE(b.session->items().drawerOfFolder(1), 1);
        QCOMPARE(b.session->items().folderOfDocument(1), 1);
        QCOMPARE(b.session->pages().documentOf(2), 1);
        // Items that are gone do not move, and nothing is told.
        const QStringList told = b.moves.calls;
        QVERIFY(!b.mover->moveFolder(99, 1));
        QVERIFY(!b.mover->moveDocument(99, 1));
        QVERIFY(!b.mover->movePage(99, 1, DropSource::PageList));
        QCOMPARE(b.moves.calls, told);
        QVERIFY(b.notices.pages.isEmpty());
    }
    // "KEY": can the item be dragged; "SOURCE>TARGET": can it be dropped there.
    void rules_data()
    {
        columns<QString, bool>({"rule", "can"});
        const auto rows = [](std::initializer_list<const char*> rules, bool can) {
            for (const char* rule : rules)
                row(*rule ? rule : "nothing", QString(rule), can);
        };
        rows({"DRW3", "FLD12", "DOC1", "PAG7"}, true);
        // A cabinet never moves; found items, the roots, nothing and "drw" in lower case.
        rows({"CAB1", "ROOT", "ROOTFOUND", "FCB1", "FDW2", "FFD3", "FDC4", "", "drw3"}, false);
        // One level up, and a page also on a folder; "PAG" is a file from outside.
        rows({"DRW3>CAB12", "FLD3>DRW1", "DOC3>FLD1", "PAG3>DOC1", "PAG3>FLD1", "PAG>DOC1",
              "PAG>FLD1"},
             true);
        // Everything else is refused: a level too high or too low, the root, found items.
        rows({"PAG>CAB1", "PAG>ROOT", "FDC3>FLD1", "PAG>DRW1", "DRW3>DRW1", "DRW3>ROOT",
              "FLD3>CAB1", "FLD3>FLD1", "DOC3>DRW1", "DOC3>DOC1", "PAG3>PAG1", "PAG3>DRW1",
              "CAB1>ROOT", "DRW3>FCB1", "PAG3>FDC1", "FDW3>CAB1", "DRW3>"},
             false);
    }
    void rules()
    {
        QFETCH(QString, rule);
        const QStringList st = rule.split('>');
        QTEST(st.size() == 1 ? MoveRules::canDrag(rule) : MoveRules::canDrop(st.at(0), st.at(1)),
              "can");
    }

    void cabinetPasswords_data()
    {
        // `password` empty: NULL in the store; `typed` invalid: cancelled.
        columns<QString, QVariant, bool, bool>({"password", "typed", "opens", "denied"});
        row("right", QString("Secret"), QVariant("Secret"), true, false);
        row("wrong case", QString("Secret"), QVariant("secret"), false, true);
        row("empty", QString("Secret"), QVariant(""), false, true);
        row("cancel", QString("Secret"), QVariant(), false, false);
        row("no password opens without asking", QString(), QVariant(), true, false);
    }
    void cabinetPasswords()
    {
        auto [password, typed, opens, denied] =
            fetch<QString, QVariant, bool, bool>("password", "typed", "opens", "denied");
        MoveBench b;
        const qint32 id = cabinet(b, "Locked", password);
        if (password.isEmpty())
            b.session->db().execute("UPDATE Cabinet SET Password = NULL WHERE CabinetId = ?", {id});
        QCOMPARE(b.session->locks().isCabinetOpen(id), password.isEmpty());
        b.choosers.queuePassword(typed.isValid() ? std::optional<QString>(typed.toString())
                                                 : std::nullopt);
        if (denied)
            b.prompter.expect("Access Denied");
        QCOMPARE(openCabinet(b, id), opens);
        QVERIFY2(b.prompter.verify(), qPrintable(b.prompter.report()));
        QCOMPARE(b.session->locks().isCabinetOpen(id), opens);
        QCOMPARE(b.nav.calls, opens ? QStringList{QString("OPEN%1").arg(id)} : QStringList{});
        if (opens) {
            // Once open, no second question and no second rebuild.
            QVERIFY(openCabinet(b, id));
            QCOMPARE(b.choosers.passwordAsks(), password.isEmpty() ? 0 : 1);
            QCOMPARE(b.nav.calls.size(), 1);
        }
    }

    void fullListAsksAgain()
    {
        MoveBench b;
        QVERIFY(b.session->locks().isCabinetOpen(4242)); // no row, no password
        for (int i = 0; i < CabinetLock::kSlots; ++i)
            QVERIFY(openCabinet(b, cabinet(b, QString("C%1").arg(i))));
        const qint32 last = cabinet(b, "Last", "pw");
        b.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(openCabinet(b, last));
        QVERIFY(!b.session->locks().isCabinetOpen(last));
        b.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(openCabinet(b, last));
        QCOMPARE(b.choosers.passwordAsks(), 2);
    }
};

QMR_TEST(TestItemMover)
#include "testitemmover.moc"
