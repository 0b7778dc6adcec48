#pragma once

#include <QObject>

#include "core/progress.h"

namespace qmr {

// The progress of a viewer that a scan drives: while the scan saves its pages, the viewer's
// own progress stays quiet, so that the scan's window keeps its place and its Cancel; at any
// other time it is the program's progress window.
class QuietProgress : public QObject, public Progress
{
public:
    explicit QuietProgress(Progress& real) : m_real(real) {}

    void setQuiet(bool quiet) { m_quiet = quiet; }
    bool isQuiet() const { return m_quiet; }

    void start(const QString& title, int minimum, int maximum) override;
    void step(const QString& status) override;
    void end() override;
    void showCancel() override;
    bool stopped() const override;

private:
    Progress& m_real;
    bool m_quiet = false;
};

} // namespace qmr
