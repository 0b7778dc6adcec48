#pragma once

#include <optional>

#include "core/prompter.h"

class QWidget;

namespace qmr {

// Message boxes with the program's caption.
class BoxPrompter : public Prompter
{
public:
    explicit BoxPrompter(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    Answer ask(const QString& text, Buttons buttons) override;
    Answer askWithDefault(const QString& text, Buttons buttons, Answer defaultAnswer) override;

private:
    Answer show(const QString& text, Buttons buttons, std::optional<Answer> defaultAnswer);

    QWidget* m_parent;
};

} // namespace qmr
