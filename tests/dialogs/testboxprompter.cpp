#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "dialogs/boxprompter.h"
#include "tests/support/datarow.h"
#include "tests/support/modalwatch.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// How the person leaves the box when it is not by one of its buttons.
enum Leave { Escape = -1, Enter = -2, Close = -3 };

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
        // action: a QMessageBox button or a Leave; defaultAnswer -1: none named.
        test::columns<int, int, int, int>({"buttons", "action", "defaultAnswer", "answer"});
        using B = Prompter::Buttons;
        using A = Prompter::Answer;
        using SB = QMessageBox::StandardButton;
        const auto row = [](const char* tag, B buttons, int action, A answer,
                            int defaultAnswer = -1) {
            test::row(tag, int(buttons), action, defaultAnswer, int(answer));
        };
        row("ok, escape", B::Ok, Escape, A::Ok);
        row("yes no, escape", B::YesNo, Escape, A::No);
        row("yes no cancel, escape", B::YesNoCancel, Escape, A::Cancel);
        row("save discard cancel, escape", B::SaveDiscardCancel, Escape, A::Cancel);
        row("ok", B::Ok, SB::Ok, A::Ok);
        row("yes", B::YesNo, SB::Yes, A::Yes);
        row("no", B::YesNo, SB::No, A::No);
        row("cancel", B::YesNoCancel, SB::Cancel, A::Cancel);
        row("save", B::SaveDiscardCancel, SB::Save, A::Yes);
        row("discard", B::SaveDiscardCancel, SB::Discard, A::No);
        row("closing the box is the mildest answer", B::YesNoCancel, Close, A::Cancel);
        row("enter, yes/no/cancel, default no", B::YesNoCancel, Enter, A::No, int(A::No));
        row("enter, yes/no/cancel, default cancel", B::YesNoCancel, Enter, A::Cancel,
            int(A::Cancel));
        row("enter, yes/no/cancel, plain", B::YesNoCancel, Enter, A::Yes);
        row("enter, save/discard/cancel, plain", B::SaveDiscardCancel, Enter, A::Yes);
        row("enter, ok", B::Ok, Enter, A::Ok);
    }
    void answers()
    {
        auto [buttons, action, defaultAnswer] =
            test::fetch<int, int, int>("buttons", "action", "defaultAnswer");
        using SB = QMessageBox::StandardButton;
        using B = Prompter::Buttons;
        const QHash<int, QList<SB>> kinds{
            {int(B::Ok), {SB::Ok}},
            {int(B::YesNo), {SB::Yes, SB::No}},
            {int(B::YesNoCancel), {SB::Yes, SB::No, SB::Cancel}},
            {int(B::SaveDiscardCancel), {SB::Save, SB::Discard, SB::Cancel}}};
        QList<SB> shown = kinds.value(buttons);
        QVERIFY(!shown.isEmpty());
        QString caption, text;
        QList<SB> seen;
        test::whenModal(this, [&](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (!box)
                return;
            caption = box->windowTitle();
            text = box->text();
            for (QAbstractButton* b : box->buttons())
                seen << box->standardButton(b);
            if (action == Escape || action == Enter)
                QTest::keyClick(box, action == Escape ? Qt::Key_Escape : Qt::Key_Return);
            else if (action == Close)
                box->close();
            else
                box->button(SB(action))->click();
        });
        const QString question = QStringLiteral("Delete 'Bank'?");
        BoxPrompter prompter;
        const Prompter::Answer got =
            defaultAnswer < 0
                ? prompter.ask(question, B(buttons))
                : prompter.askWithDefault(question, B(buttons), Prompter::Answer(defaultAnswer));
        QTEST(int(got), "answer");
        QCOMPARE(caption, QStringLiteral("Quillmere"));
        QCOMPARE(text, question);
        std::sort(seen.begin(), seen.end());
        std::sort(shown.begin(), shown.end());
        QCOMPARE(seen, shown);
    }
};

QMR_TEST(TestBoxPrompter)
#include "testboxprompter.moc"
