#pragma once

#include <QStringList>
#include <deque>

#include "core/prompter.h"

namespace qmr::test {

// A prompter that expects given texts in order and answers them as scripted. Any text that
// was not expected is recorded and fails verify().
class ScriptedPrompter : public Prompter
{
public:
    void expect(const QString& text, Answer answer = Answer::Ok);
    Answer ask(const QString& text, Buttons buttons) override;
    Answer askWithDefault(const QString& text, Buttons buttons, Answer defaultAnswer) override;
    // The button that Enter would press for each text seen, in order ("" where the question
    // named none).
    const QStringList& defaults() const { return m_defaults; }

    // True when every expected text came, in order, and nothing else did.
    bool verify() const;
    QString report() const;
    const QStringList& seen() const { return m_seen; }
    void reset();

private:
    struct Expected
    {
        QString text;
        Answer answer;
    };
    std::deque<Expected> m_expected;
    QStringList m_seen;
    QStringList m_defaults;
    QStringList m_unexpected;
};

} // namespace qmr::test
