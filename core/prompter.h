#pragma once

#include <QString>
#include <QtGlobal>

namespace qmr {

// Every message box and question of the program goes through this seam, so that tests can
// state which texts appear and how they are answered.
class Prompter
{
public:
    // SaveDiscardCancel asks about unsaved work: Save answers Yes, Discard answers No.
    enum class Buttons { Ok, YesNo, YesNoCancel, OkCancel, SaveDiscardCancel };
    enum class Answer { Ok, Yes, No, Cancel };

    virtual ~Prompter() = default;
    virtual Answer ask(const QString& text, Buttons buttons) = 0;
    // The same, with the button that Enter presses named (where Enter must not go on, such as
    // No for the exit question). A prompter without that notion asks as ask() does.
    virtual Answer askWithDefault(const QString& text, Buttons buttons, Answer defaultAnswer)
    {
        Q_UNUSED(defaultAnswer);
        return ask(text, buttons);
    }

    void tell(const QString& text) { ask(text, Buttons::Ok); }
    // Questions go on only at Yes.
    bool confirm(const QString& text, Buttons buttons = Buttons::YesNoCancel)
    {
        return ask(text, buttons) == Answer::Yes;
    }
    bool confirm(const QString& text, Buttons buttons, Answer defaultAnswer)
    {
        return askWithDefault(text, buttons, defaultAnswer) == Answer::Yes;
    }

    static QString caption();
};

} // namespace qmr
