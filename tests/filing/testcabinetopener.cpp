#include <QTest>

#include "core/progress.h"
#include "core/runstate.h"
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

// A session on an empty store, the seams scripted.
struct OpenerHarness
{
    test::TestHome home;
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    test::NavRecorder nav;
    SilentProgress progress;
    std::unique_ptr<Session> session;
    RunState state;
    std::unique_ptr<ViewSettings> view;

    OpenerHarness()
    {
        session = std::make_unique<Session>(home.home(), home.settings());
        test::FixtureStore(home.home()).close();
        session->db().open(home.file("qmr.mdb"));
        view = std::make_unique<ViewSettings>(home.settings());
    }
    bool open(qint32 id)
    {
        return CabinetOpener::openCabinet(
            CommandContext{*session, state, prompter, choosers, progress, *view, nullptr, &nav},
            id);
    }
    qint32 cabinet(const QString& name, const QString& password = QString())
    {
        return test::FixtureStore(home.home()).cabinet(name, password);
    }
};

} // namespace

class TestCabinetOpener : public QObject
{
    Q_OBJECT
private slots:
    void answers_data()
    {
        QTest::addColumn<QString>("password"); // empty: NULL in the store
        QTest::addColumn<QVariant>("typed");   // invalid: cancelled
        QTest::addColumn<bool>("opens");
        QTest::addColumn<bool>("denied");
        QTest::newRow("right") << "Secret" << QVariant("Secret") << true << false;
        QTest::newRow("wrong case") << "Secret" << QVariant("secret") << false << true;
        QTest::newRow("empty") << "Secret" << QVariant("") << false << true;
        QTest::newRow("cancel") << "Secret" << QVariant() << false << false;
        QTest::newRow("no password opens without asking") << "" << QVariant() << true << false;
    }
    void answers()
    {
        QFETCH(QString, password);
        QFETCH(QVariant, typed);
        QFETCH(bool, opens);
        OpenerHarness h;
        const qint32 id = h.cabinet("Locked", password);
        if (password.isEmpty())
            h.session->db().execute("UPDATE Cabinet SET Password = NULL WHERE CabinetId = ?", {id});
        QCOMPARE(h.session->locks().isCabinetOpen(id), password.isEmpty());
        h.choosers.queuePassword(typed.isValid() ? std::optional<QString>(typed.toString())
                                                 : std::nullopt);
        QFETCH(bool, denied);
        if (denied)
            h.prompter.expect("Access Denied");
        QCOMPARE(h.open(id), opens);
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.session->locks().isCabinetOpen(id), opens);
        QCOMPARE(h.nav.calls, opens ? QStringList{QString("OPEN%1").arg(id)} : QStringList{});
        if (opens) {
            // Once open, no second question and no second rebuild.
            QVERIFY(h.open(id));
            QCOMPARE(h.choosers.passwordAsks(), password.isEmpty() ? 0 : 1);
            QCOMPARE(h.nav.calls.size(), 1);
        }
    }

    void fullListAsksAgain()
    {
        OpenerHarness h;
        QVERIFY(h.session->locks().isCabinetOpen(4242)); // no row, no password
        for (int i = 0; i < CabinetLock::kSlots; ++i)
            QVERIFY(h.open(h.cabinet(QString("C%1").arg(i))));
        const qint32 last = h.cabinet("Last", "pw");
        h.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(h.open(last));
        QVERIFY(!h.session->locks().isCabinetOpen(last));
        h.choosers.queuePassword(QStringLiteral("pw"));
        QVERIFY(h.open(last));
        QCOMPARE(h.choosers.passwordAsks(), 2);
    }
};

QMR_TEST(TestCabinetOpener)
#include "testcabinetopener.moc"
