#include "tests/support/scriptedprompter.h"

namespace qmr::test {

void ScriptedPrompter::expect(const QString& text, Answer answer)
{
    m_expected.push_back({text, answer});
}

Prompter::Answer ScriptedPrompter::askWithDefault(const QString& text, Buttons buttons,
                                                  Answer defaultAnswer)
{
    static const char* const names[] = {"Ok", "Yes", "No", "Cancel"};
    const Answer answer = ask(text, buttons);
    m_defaults.last() = QLatin1String(names[static_cast<int>(defaultAnswer)]);
    return answer;
}

Prompter::Answer ScriptedPrompter::ask(const QString& text, Buttons buttons)
{
    m_seen << text;
    m_defaults << QString();
    if (m_expected.empty() || m_expected.front().text != text) {
        m_unexpected << text;
        return buttons == Buttons::Ok ? Answer::Ok : Answer::Cancel;
    }
    const Answer answer = m_expected.front().answer;
    m_expected.pop_front();
    return answer;
}

bool ScriptedPrompter::verify() const
{
    return m_expected.empty() && m_unexpected.isEmpty();
}

QString ScriptedPrompter::report() const
{
    QStringList missing;
    for (const Expected& e : m_expected)
        missing << e.text;
    return QStringLiteral("unexpected: [%1]; still expected: [%2]")
        .arg(m_unexpected.join(QStringLiteral(" | ")), missing.join(QStringLiteral(" | ")));
}

void ScriptedPrompter::reset()
{
    m_expected.clear();
    m_seen.clear();
    m_defaults.clear();
    m_unexpected.clear();
}

} // namespace qmr::test
