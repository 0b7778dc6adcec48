#include "core/navigatorcallbacks.h"
#include "store/cabinetlock.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

#include <QTest>

using namespace qmr;

namespace {

class RebuildRecorder : public NavigatorCallbacks
{
public:
    void AddCabinetToNavTree(qint32, const QString&) override {}
    void AddDrawerToNavTree(qint32, qint32, const QString&) override {}
    void AddFolderToNavTree(qint32, qint32, const QString&) override {}
    void AddDocumentToNavTree(qint32, qint32, const QString&, const QDate&) override {}
    void UpdateCabinetName(qint32, const QString&) override {}
    void UpdateDrawerName(qint32, const QString&) override {}
    void UpdateFolderName(qint32, const QString&) override {}
    void UpdateDocumentName(qint32, const QString&, const QDate&) override {}
    void ShowDrawersInListView(qint32) override {}
    void RebuildCabinetNode(qint32 id, const QString& name) override
    {
        rebuilt << QStringLiteral("%1:%2").arg(id).arg(name);
    }
    QStringList rebuilt;
};

} // namespace

class TestCabinetLock : public QObject
{
    Q_OBJECT
private slots:
    void answers_data()
    {
        QTest::addColumn<QVariant>("typed"); // invalid: cancelled
        QTest::addColumn<bool>("opens");
        QTest::addColumn<bool>("denied");
        QTest::newRow("right") << QVariant("Secret") << true << false;
        QTest::newRow("wrong case") << QVariant("secret") << false << true;
        QTest::newRow("empty") << QVariant("") << false << true;
        QTest::newRow("cancel") << QVariant() << false << false;
    }
    void answers()
    {
        QFETCH(QVariant, typed);
        QFETCH(bool, opens);
        QFETCH(bool, denied);
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 id = store.cabinet("Locked", "Secret");
        CabinetLock lock(store.db());
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        RebuildRecorder nav;
        QVERIFY(!lock.isCabinetOpen(id));
        choosers.queuePassword(typed.isValid() ? std::optional<QString>(typed.toString())
                                               : std::nullopt);
        if (denied)
            prompter.expect("Access Denied");
        QCOMPARE(lock.openCabinet(id, choosers, prompter, &nav), opens);
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
        QCOMPARE(lock.isCabinetOpen(id), opens);
        QCOMPARE(nav.rebuilt, opens ? QStringList{QString("%1:Locked").arg(id)} : QStringList{});
        if (opens) {
            // Once open, no second question.
            QVERIFY(lock.openCabinet(id, choosers, prompter, &nav));
            QCOMPARE(choosers.passwordAsks(), 1);
        }
    }

    void noPasswordOpensWithoutAsking()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        const qint32 id = store.cabinet("Open");
        store.db().execute("UPDATE Cabinet SET Password = NULL WHERE CabinetId = ?", {id});
        CabinetLock lock(store.db());
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        RebuildRecorder nav;
        QVERIFY(lock.isCabinetOpen(id));
        QVERIFY(lock.openCabinet(id, choosers, prompter, &nav));
        QCOMPARE(choosers.passwordAsks(), 0);
        QCOMPARE(nav.rebuilt.size(), 1); // the node is rebuilt once
        QVERIFY(lock.openCabinet(id, choosers, prompter, &nav));
        QCOMPARE(nav.rebuilt.size(), 1);
        QVERIFY(lock.isCabinetOpen(4242)); // no row, no password
    }

    void fullListAsksAgain()
    {
        test::TestHome home;
        test::FixtureStore store(home.home());
        CabinetLock lock(store.db());
        test::ScriptedPrompter prompter;
        test::ScriptedChoosers choosers;
        for (int i = 0; i < CabinetLock::kSlots; ++i)
            QVERIFY(lock.openCabinet(store.cabinet(QString("C%1").arg(i)), choosers, prompter,
                                     nullptr));
        const qint32 last = store.cabinet("Last", "pw");
        choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(lock.openCabinet(last, choosers, prompter, nullptr));
        QVERIFY(!lock.isCabinetOpen(last));
        choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(lock.openCabinet(last, choosers, prompter, nullptr));
        QCOMPARE(choosers.passwordAsks(), 2);
    }
};

QMR_TEST(TestCabinetLock)
#include "testcabinetlock.moc"
