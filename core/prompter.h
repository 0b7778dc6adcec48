#pragma once

#include <QString>

namespace qmr {

// Every message box and question of the program goes through this seam, so that tests can
// state which texts appear and how they are answered.
class Prompter
{
public:
    enum class Buttons { Ok, YesNo, YesNoCancel, OkCancel };
    enum class Answer { Ok, Yes, No, Cancel };

    virtual ~Prompter() = default;
    virtual Answer ask(const QString& text, Buttons buttons) = 0;

    void tell(const QString& text) { ask(text, Buttons::Ok); }
    // Questions go on only at Yes.
    bool confirm(const QString& text, Buttons buttons = Buttons::YesNoCancel)
    {
        return ask(text, buttons) == Answer::Yes;
    }

    static QString caption();
};

} // namespace qmr
