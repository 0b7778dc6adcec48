#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "dialogs/boxprompter.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// Presses Enter in the next message box, after noting its caption.
void pressEnter(QString* caption)
{
    QTimer::singleShot(20, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            pressEnter(caption);
            return;
        }
        *caption = box->windowTitle();
        QTest::keyClick(box, Qt::Key_Return);
    });
}

} // namespace

class TestBoxPrompter : public QObject
{
    Q_OBJECT
private slots:
    void enterPressesTheDefault_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("defaultAnswer"); // -1: the box's own choice
        QTest::addColumn<int>("answer");
        using B = Prompter::Buttons;
        using A = Prompter::Answer;
        QTest::newRow("yes/no/cancel, default no")
            << int(B::YesNoCancel) << int(A::No) << int(A::No);
        QTest::newRow("yes/no, default no") << int(B::YesNo) << int(A::No) << int(A::No);
        QTest::newRow("yes/no/cancel, default cancel")
            << int(B::YesNoCancel) << int(A::Cancel) << int(A::Cancel);
        QTest::newRow("yes/no/cancel, plain") << int(B::YesNoCancel) << -1 << int(A::Yes);
        QTest::newRow("ok") << int(B::Ok) << -1 << int(A::Ok);
    }
    void enterPressesTheDefault()
    {
        QFETCH(int, buttons);
        QFETCH(int, defaultAnswer);
        QFETCH(int, answer);
        BoxPrompter prompter;
        QString caption;
        pressEnter(&caption);
        const Prompter::Answer got =
            defaultAnswer < 0
                ? prompter.ask("Exit the Quillmere?", Prompter::Buttons(buttons))
                : prompter.askWithDefault("Exit the Quillmere?", Prompter::Buttons(buttons),
                                          Prompter::Answer(defaultAnswer));
        QCOMPARE(int(got), answer);
        QCOMPARE(caption, QStringLiteral("Quillmere"));
    }
};

QMR_TEST(TestBoxPrompter)
#include "testboxprompter.moc"
