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

} // namespace

class TestBoxPrompter : public QObject
{
    Q_OBJECT
private slots:
    // Every box has the system's caption and the buttons its kind names; each way of leaving
    // it gives its answer: a button, Escape and closing give the mildest answer, Enter the
    // default (the box's own choice when the question names none).
    void answers_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<QString>("action");    // a button, "Escape", "Enter" or "close"
        QTest::addColumn<int>("defaultAnswer"); // -1: none named
        QTest::addColumn<int>("answer");
        using B = Prompter::Buttons;
        using A = Prompter::Answer;
        const auto row = [](const char* tag, B buttons, const char* action, A answer,
                            int defaultAnswer = -1) {
            QTest::newRow(tag) << int(buttons) << QString(action) << defaultAnswer << int(answer);
        };
        row("ok, escape", B::Ok, "Escape", A::Ok);
        row("yes no, escape", B::YesNo, "Escape", A::No);
        row("yes no cancel, escape", B::YesNoCancel, "Escape", A::Cancel);
        row("save discard cancel, escape", B::SaveDiscardCancel, "Escape", A::Cancel);
        row("ok", B::Ok, "Ok", A::Ok);
        row("yes", B::YesNo, "Yes", A::Yes);
        row("no", B::YesNo, "No", A::No);
        row("yes of three", B::YesNoCancel, "Yes", A::Yes);
        row("no of three", B::YesNoCancel, "No", A::No);
        row("cancel", B::YesNoCancel, "Cancel", A::Cancel);
        row("save", B::SaveDiscardCancel, "Save", A::Yes);
        row("discard", B::SaveDiscardCancel, "Discard", A::No);
        row("closing the box is the mildest answer", B::YesNoCancel, "close", A::Cancel);
        row("enter, yes/no/cancel, default no", B::YesNoCancel, "Enter", A::No, int(A::No));
        row("enter, yes/no, default no", B::YesNo, "Enter", A::No, int(A::No));
        row("enter, yes/no/cancel, default cancel", B::YesNoCancel, "Enter", A::Cancel,
            int(A::Cancel));
        row("enter, yes/no/cancel, plain", B::YesNoCancel, "Enter", A::Yes);
        row("enter, save/discard/cancel, plain", B::SaveDiscardCancel, "Enter", A::Yes);
        row("enter, ok", B::Ok, "Enter", A::Ok);
    }
    void answers()
    {
        QFETCH(int, buttons);
        QFETCH(QString, action);
        QFETCH(int, defaultAnswer);
        QFETCH(int, answer);
        using SB = QMessageBox::StandardButton;
        const QHash<QString, SB> named{{"Ok", SB::Ok},     {"Yes", SB::Yes},
                                       {"No", SB::No},     {"Cancel", SB::Cancel},
                                       {"Save", SB::Save}, {"Discard", SB::Discard}};
        using B = Prompter::Buttons;
        const QHash<int, QList<SB>> kinds{
            {int(B::Ok), {SB::Ok}},
            {int(B::YesNo), {SB::Yes, SB::No}},
            {int(B::YesNoCancel), {SB::Yes, SB::No, SB::Cancel}},
            {int(B::SaveDiscardCancel), {SB::Save, SB::Discard, SB::Cancel}}};
        QList<SB> shown = kinds.value(buttons);
        QVERIFY(!shown.isEmpty());
        BoxPrompter prompter;
        Seen seen;
        answerNextBox(&seen, [&](QMessageBox* box) {
            if (action == "Escape" || action == "Enter")
                QTest::keyClick(box, action == "Escape" ? Qt::Key_Escape : Qt::Key_Return);
            else if (action == "close")
                box->close();
            else
                box->button(named.value(action))->click();
        });
        const QString text = QStringLiteral("Delete 'Bank'?");
        const Prompter::Answer got = defaultAnswer < 0
                                         ? prompter.ask(text, Prompter::Buttons(buttons))
                                         : prompter.askWithDefault(text, Prompter::Buttons(buttons),
                                                                   Prompter::Answer(defaultAnswer));
        QCOMPARE(int(got), answer);
        QCOMPARE(seen.caption, QStringLiteral("Quillmere"));
        QCOMPARE(seen.text, text);
        std::sort(seen.buttons.begin(), seen.buttons.end());
        std::sort(shown.begin(), shown.end());
        QCOMPARE(seen.buttons, shown);
    }
};

QMR_TEST(TestBoxPrompter)
#include "testboxprompter.moc"
