#include "app/splashwindow.h"

#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "app/barwidget.h"

namespace qmr {

SplashWindow::SplashWindow(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(tr("Starting"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    auto* title = new QLabel(tr("Quillmere"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 2);
    big.setBold(true);
    title->setFont(big);
    layout->addWidget(title);
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    layout->addWidget(m_status);
    m_bar = new BarWidget(this);
    m_bar->setObjectName(QStringLiteral("shpBackground"));
    layout->addWidget(m_bar);
    setFixedWidth(360);
    setAutoFillBackground(true);
}

void SplashWindow::setStatus(const QString& status)
{
    m_status->setText(status);
}

QString SplashWindow::status() const
{
    return m_status->text();
}

void SplashWindow::showSplash(const QString& status, int minimum, int maximum)
{
    setStatus(status);
    m_bar->setRange(minimum, maximum);
    m_bar->draw(0);
    show();
    raise();
    QCoreApplication::processEvents();
}

void SplashWindow::splashStep(const QString& status)
{
    setStatus(status);
    if (m_bar->position() < m_bar->maximum())
        m_bar->draw(m_bar->position() + 1);
    // The bar paints while the start-up keeps the one thread busy.
    QCoreApplication::processEvents();
}

void SplashWindow::finish()
{
    close();
    destroy();
}

} // namespace qmr
