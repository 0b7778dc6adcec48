#pragma once

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

private:
    QWidget* m_parent;
};

} // namespace qmr
