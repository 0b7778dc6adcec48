#include <QTest>
#include <stdexcept>

#include "store/commandguard.h"
#include "store/storeerror.h"
#include "tests/support/datarow.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::row;

// A command's failure ends the command with its message, and the program goes on.
class TestCommandGuard : public QObject
{
    Q_OBJECT
private slots:
    void failureIsTold_data()
    {
        test::columns<int, QString>({"failure", "told"}); // 0 none, 1 store, 2 other
        row("done", 0, "");
        row("store failure", 1, "The store is not open.");
        row("other failure", 2, "out of room");
    }
    void failureIsTold()
    {
        const auto [failure, told] = test::fetch<int, QString>("failure", "told");
        test::ScriptedPrompter prompter;
        if (!told.isEmpty())
            prompter.expect(told);
        bool ranToEnd = false;
        const bool done = guarded(prompter, [&] {
            if (failure == 1)
                throw StoreError(told);
            if (failure == 2)
                throw std::runtime_error("out of room");
            ranToEnd = true;
        });
        QCOMPARE(done, failure == 0);
        QCOMPARE(ranToEnd, failure == 0);
        QVERIFY2(prompter.verify(), qPrintable(prompter.report()));
    }
};

QMR_TEST(TestCommandGuard)
#include "testcommandguard.moc"
