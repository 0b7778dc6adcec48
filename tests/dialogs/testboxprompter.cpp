#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "dialogs/boxprompter.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// What the box showed, and how the person answered it.
struct Seen
{
    QString caption;
    QString text;
    QList<QMessageBox::StandardButton> buttons;
};

// Answers the next message box with a key or a button once it is up; a box still open after
// five seconds is closed, so that a failing test cannot hang.
void answerNextBox(Seen* seen, std::function<void(QMessageBox*)> act, int tries = 200)
{
    QTimer::singleShot(10, qApp, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            if (tries > 0)
                answerNextBox(seen, act, tries - 1);
            return;
        }
        seen->caption = box->windowTitle();
        seen->text = box->text();
        for (QAbstractButton* b : box->buttons())
            seen->buttons << box->standardButton(b);
        act(box);
        QTimer::singleShot(5000, box, [box] { box->close(); });
    });
}

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
    void buttonsAndEscape_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<QList<QMessageBox::StandardButton>>("shown");
        QTest::addColumn<int>("escape"); // the answer Escape gives
        using B = QMessageBox::StandardButton;
        QTest::newRow("ok") << int(Prompter::Buttons::Ok) << QList<B>{B::Ok}
                            << int(Prompter::Answer::Ok);
        QTest::newRow("yes no") << int(Prompter::Buttons::YesNo) << QList<B>{B::Yes, B::No}
                                << int(Prompter::Answer::No);
        QTest::newRow("yes no cancel")
            << int(Prompter::Buttons::YesNoCancel) << QList<B>{B::Yes, B::No, B::Cancel}
            << int(Prompter::Answer::Cancel);
        QTest::newRow("save discard cancel")
            << int(Prompter::Buttons::SaveDiscardCancel) << QList<B>{B::Save, B::Discard, B::Cancel}
            << int(Prompter::Answer::Cancel);
    }
    void buttonsAndEscape()
    {
        QFETCH(int, buttons);
        QFETCH(QList<QMessageBox::StandardButton>, shown);
        QFETCH(int, escape);
        BoxPrompter prompter;
        Seen seen;
        answerNextBox(&seen, [](QMessageBox* box) { QTest::keyClick(box, Qt::Key_Escape); });
        const Prompter::Answer answer =
            prompter.ask(QStringLiteral("Delete 'Bank'?"), Prompter::Buttons(buttons));
        QCOMPARE(int(answer), escape);
        QCOMPARE(seen.caption, QStringLiteral("Quillmere"));
        QCOMPARE(seen.text, QStringLiteral("Delete 'Bank'?"));
        std::sort(seen.buttons.begin(), seen.buttons.end());
        std::sort(shown.begin(), shown.end());
        QCOMPARE(seen.buttons, shown);
    }

    void eachButtonGivesItsAnswer_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("answer");
        using B = QMessageBox::StandardButton;
        using A = Prompter::Answer;
        QTest::newRow("ok") << int(Prompter::Buttons::Ok) << int(B::Ok) << int(A::Ok);
        QTest::newRow("yes") << int(Prompter::Buttons::YesNo) << int(B::Yes) << int(A::Yes);
        QTest::newRow("no") << int(Prompter::Buttons::YesNo) << int(B::No) << int(A::No);
        QTest::newRow("yes of three")
            << int(Prompter::Buttons::YesNoCancel) << int(B::Yes) << int(A::Yes);
        QTest::newRow("no of three")
            << int(Prompter::Buttons::YesNoCancel) << int(B::No) << int(A::No);
        QTest::newRow("cancel") << int(Prompter::Buttons::YesNoCancel) << int(B::Cancel)
                                << int(A::Cancel);
        QTest::newRow("save") << int(Prompter::Buttons::SaveDiscardCancel) << int(B::Save)
                              << int(A::Yes);
        QTest::newRow("discard") << int(Prompter::Buttons::SaveDiscardCancel) << int(B::Discard)
                                 << int(A::No);
    }
    void eachButtonGivesItsAnswer()
    {
        QFETCH(int, buttons);
        QFETCH(int, pressed);
        QFETCH(int, answer);
        BoxPrompter prompter;
        Seen seen;
        answerNextBox(&seen, [pressed](QMessageBox* box) {
            box->button(QMessageBox::StandardButton(pressed))->click();
        });
        QCOMPARE(int(prompter.ask(QStringLiteral("Go on?"), Prompter::Buttons(buttons))), answer);
    }

    void closingTheBoxIsTheMildestAnswer()
    {
        BoxPrompter prompter;
        Seen seen;
        answerNextBox(&seen, [](QMessageBox* box) { box->close(); });
        QCOMPARE(prompter.ask(QStringLiteral("Save?"), Prompter::Buttons::YesNoCancel),
                 Prompter::Answer::Cancel);
    }

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
        QTest::newRow("save/discard/cancel, plain")
            << int(B::SaveDiscardCancel) << -1 << int(A::Yes);
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
