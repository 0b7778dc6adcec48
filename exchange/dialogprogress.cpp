#include "exchange/dialogprogress.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QFrame>
#include <QLabel>

namespace qmr {

DialogProgress::DialogProgress(QLabel* status, QFrame* background, QFrame* foreground,
                               QObject* parent)
    : QObject(parent), m_status(status), m_background(background), m_foreground(foreground)
{
    m_background->installEventFilter(this);
    draw(0);
}

double DialogProgress::fraction() const
{
    const int span = m_max - m_min + 1;
    if (span <= 0)
        return 0.0;
    return qBound(0.0, double(m_position) / span, 1.0);
}

void DialogProgress::layoutBar()
{
    const QRect inner = m_background->contentsRect();
    m_foreground->setGeometry(inner.left(), inner.top(), int(inner.width() * fraction()),
                              inner.height());
}

void DialogProgress::draw(int position)
{
    m_position = position;
    layoutBar();
    if (position > 0 && position % 20 == 0)
        QCoreApplication::processEvents();
}

bool DialogProgress::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_background && event->type() == QEvent::Resize)
        layoutBar();
    return QObject::eventFilter(watched, event);
}

void DialogProgress::start(const QString& title, int minimum, int maximum)
{
    m_status->setText(title);
    m_min = minimum;
    m_max = maximum;
    draw(0);
}

void DialogProgress::step(const QString& status)
{
    m_status->setText(status);
    if (m_position < m_max)
        draw(m_position + 1);
}

void DialogProgress::end()
{
    draw(m_max);
    m_stopped = true;
}

QString DialogProgress::fitStatus(const QString& action, const QString& text,
                                  const QFontMetrics& metrics, int width)
{
    const QString whole = action + QLatin1Char(' ') + text;
    if (metrics.horizontalAdvance(whole) <= width)
        return whole;
    // The end of a path says most: characters go from the front until the rest fits.
    const QString lead = action + QStringLiteral(" ...");
    int low = 0;
    int high = int(text.size());
    while (low < high) {
        const int cut = (low + high) / 2;
        if (metrics.horizontalAdvance(lead + text.mid(cut)) <= width)
            high = cut;
        else
            low = cut + 1;
    }
    return lead + text.mid(low);
}

void DialogProgress::showStatus(const QString& action, const QString& text)
{
    m_status->setText(fitStatus(action, text, m_status->fontMetrics(), m_status->width()));
    QCoreApplication::processEvents();
}

} // namespace qmr
