#pragma once

#include <QStringList>

#include "core/progress.h"

namespace qmr::test {

// A silent progress that notes what it is told: "start Delete drawer 1..7", each step's text,
// and "end".
class RecordingProgress : public SilentProgress
{
public:
    void start(const QString& title, int minimum, int maximum) override
    {
        log << QStringLiteral("start %1 %2..%3").arg(title).arg(minimum).arg(maximum);
        SilentProgress::start(title, minimum, maximum);
    }
    void step(const QString& status) override { log << status; }
    void end() override
    {
        log << QStringLiteral("end");
        SilentProgress::end();
    }
    // The "start ..." lines only.
    QStringList starts() const { return log.filter(QStringLiteral("start ")); }

    QStringList log;
};

} // namespace qmr::test
