#include "app/barwidget.h"

#include <QPainter>

namespace qmr {

BarWidget::BarWidget(QWidget* parent) : QWidget(parent)
{
    setMinimumHeight(14);
}

void BarWidget::setRange(int minimum, int maximum)
{
    m_min = minimum;
    m_max = maximum;
}

double BarWidget::fraction() const
{
    const double span = double(m_max) - double(m_min) + 1.0;
    if (span <= 0)
        return 0.0;
    return qBound(0.0, m_position / span, 1.0);
}

bool BarWidget::draw(int position)
{
    m_position = position;
    update();
    return position % 20 == 0;
}

void BarWidget::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    const QRect trough = rect().adjusted(0, 0, -1, -1);
    p.setPen(palette().color(QPalette::Mid));
    p.setBrush(palette().color(QPalette::Base));
    p.drawRect(trough);
    const int filled = int(fraction() * (trough.width() - 1));
    if (filled > 0)
        p.fillRect(QRect(trough.left() + 1, trough.top() + 1, filled, trough.height() - 1),
                   palette().color(QPalette::Highlight));
}

} // namespace qmr
