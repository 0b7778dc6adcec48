#include "scan/quietprogress.h"

namespace qmr {

void QuietProgress::start(const QString& title, int minimum, int maximum)
{
    if (!m_quiet)
        m_real.start(title, minimum, maximum);
}

void QuietProgress::step(const QString& status)
{
    if (!m_quiet)
        m_real.step(status);
}

void QuietProgress::end()
{
    if (!m_quiet)
        m_real.end();
}

void QuietProgress::showCancel()
{
    if (!m_quiet)
        m_real.showCancel();
}

bool QuietProgress::stopped() const
{
    return m_quiet ? false : m_real.stopped();
}

} // namespace qmr
