#include "exchange/consoleprogress.h"

namespace qmr {

namespace {

constexpr int kWidth = 79;
constexpr qint64 kRedrawMs = 100;

} // namespace

ConsoleProgress::~ConsoleProgress()
{
    end();
}

int ConsoleProgress::percent() const
{
    const int span = m_max - m_min + 1;
    return span > 0 ? qBound(0, m_position * 100 / span, 100) : 0;
}

void ConsoleProgress::start(const QString& title, int minimum, int maximum)
{
    m_min = minimum;
    m_max = maximum;
    m_position = 0;
    m_lastTenth = -1;
    print(title, true);
}

void ConsoleProgress::step(const QString& status)
{
    if (m_position < m_max)
        ++m_position;
    print(status, false);
}

void ConsoleProgress::print(const QString& status, bool force)
{
    QString line = QStringLiteral("[%1%] %2/%3 %4")
                       .arg(percent(), 3)
                       .arg(m_position)
                       .arg(qMax(0, m_max - m_min + 1))
                       .arg(status);
    if (m_terminal) {
        if (!force && m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < kRedrawMs &&
            m_position < m_max)
            return;
        m_sinceDrawn.start();
        if (line.size() > kWidth)
            line = line.left(kWidth - 3) + QStringLiteral("...");
        m_out << '\r' << line.leftJustified(kWidth) << Qt::flush;
        m_lineOpen = true;
        return;
    }
    const int tenth = percent() / 10;
    if (!force && tenth == m_lastTenth)
        return;
    m_lastTenth = tenth;
    m_out << line << '\n' << Qt::flush;
}

void ConsoleProgress::end()
{
    if (m_lineOpen)
        m_out << '\n' << Qt::flush;
    m_lineOpen = false;
}

} // namespace qmr
