#pragma once

#include <QElapsedTimer>
#include <QTextStream>
#include <functional>

#include "core/progress.h"

namespace qmr {

// The progress of a run without a window. On a terminal one line is rewritten in place; into
// a file or a pipe a line is written at every tenth of the way, so that logs stay short.
// Nobody can press Cancel; `stopWhen`, when given, stands in for it.
class ConsoleProgress : public Progress
{
public:
    ConsoleProgress(QTextStream& out, bool terminal, std::function<bool()> stopWhen = {})
        : m_out(out), m_terminal(terminal), m_stopWhen(std::move(stopWhen))
    {
    }
    ~ConsoleProgress() override;

    void start(const QString& title, int minimum, int maximum) override;
    void step(const QString& status) override;
    void end() override;
    void showCancel() override {}
    bool stopped() const override { return m_stopWhen && m_stopWhen(); }

private:
    void print(const QString& status, bool force);
    int percent() const;

    QTextStream& m_out;
    bool m_terminal;
    std::function<bool()> m_stopWhen;
    int m_min = 0;
    int m_max = 0;
    int m_position = 0;
    int m_lastTenth = -1;
    bool m_lineOpen = false;
    QElapsedTimer m_sinceDrawn;
};

} // namespace qmr
