#include <QTest>

#include "core/progress.h"
#include "core/viewsettings.h"
#include "filing/cabinetopener.h"
#include "store/commandcontext.h"
#include "store/session.h"
#include "tests/support/fixturestore.h"
#include "tests/support/navrecorder.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// A session on a store with one locked cabinet, the seams scripted.
struct OpenerHarness
{
    test::TestHome home;
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    test::NavRecorder nav;
    SilentProgress progress;
    std::unique_ptr<Session> session;
    std::unique_ptr<ViewSettings> view;

    OpenerHarness()
    {
        session = std::make_unique<Session>(home.home(), home.settings());
        test::FixtureStore(home.home()).close();
        session->db().open(home.file("qmr.mdb"));
        view = std::make_unique<ViewSettings>(home.settings());
    }
    CommandContext context()
    {
        return CommandContext{*session, prompter, choosers, progress, *view, nullptr, &nav};
    }
    qint32 cabinet(const QString& name, const QString& password = QString())
    {
        test::FixtureStore store(home.home());
        return store.cabinet(name, password);
    }
};

} // namespace

class TestCabinetOpener : public QObject
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
        OpenerHarness h;
        const qint32 id = h.cabinet("Locked", "Secret");
        QVERIFY(!h.session->locks().isCabinetOpen(id));
        h.choosers.queuePassword(typed.isValid() ? std::optional<QString>(typed.toString())
                                                 : std::nullopt);
        if (denied)
            h.prompter.expect("Access Denied");
        QCOMPARE(CabinetOpener::openCabinet(h.context(), id), opens);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.session->locks().isCabinetOpen(id), opens);
        QCOMPARE(h.nav.calls, opens ? QStringList{QString("OPEN%1").arg(id)} : QStringList{});
        if (opens) {
            // Once open, no second question and no second rebuild.
            QVERIFY(CabinetOpener::openCabinet(h.context(), id));
            QCOMPARE(h.choosers.passwordAsks(), 1);
            QCOMPARE(h.nav.calls.size(), 1);
        }
    }

    void noPasswordOpensWithoutAsking()
    {
        OpenerHarness h;
        const qint32 id = h.cabinet("Open");
        h.session->db().execute("UPDATE Cabinet SET Password = NULL WHERE CabinetId = ?", {id});
        QVERIFY(h.session->locks().isCabinetOpen(id));
        QVERIFY(CabinetOpener::openCabinet(h.context(), id));
        QCOMPARE(h.choosers.passwordAsks(), 0);
        QCOMPARE(h.nav.calls.size(), 1); // the node is rebuilt once
        QVERIFY(CabinetOpener::openCabinet(h.context(), id));
        QCOMPARE(h.nav.calls.size(), 1);
        QVERIFY(h.session->locks().isCabinetOpen(4242)); // no row, no password
    }

    void fullListAsksAgain()
    {
        OpenerHarness h;
        for (int i = 0; i < CabinetLock::kSlots; ++i)
            QVERIFY(CabinetOpener::openCabinet(h.context(), h.cabinet(QString("C%1").arg(i))));
        const qint32 last = h.cabinet("Last", "pw");
        h.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(CabinetOpener::openCabinet(h.context(), last));
        QVERIFY(!h.session->locks().isCabinetOpen(last));
        h.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(CabinetOpener::openCabinet(h.context(), last));
        QCOMPARE(h.choosers.passwordAsks(), 2);
    }
};

QMR_TEST(TestCabinetOpener)
#include "testcabinetopener.moc"
