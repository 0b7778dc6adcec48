#include "app/progresswindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "app/barwidget.h"

namespace qmr {

ProgressWindow::ProgressWindow(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmProgress"));
    setWindowTitle(tr("Progress"));
    // The main window waits while work runs: events still pass at every 20th step, but no
    // second command and no close can start in the middle of this one.
    setWindowModality(Qt::ApplicationModal);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* layout = new QVBoxLayout(this);
    m_status = new QLabel(tr("Status"), this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setMinimumWidth(320);
    layout->addWidget(m_status);
    m_bar = new BarWidget(this);
    m_bar->setObjectName(QStringLiteral("shpBackground"));
    layout->addWidget(m_bar);
    auto* row = new QHBoxLayout();
    row->addStretch(1);
    m_cancel = new QPushButton(tr("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cancel->hide();
    row->addWidget(m_cancel);
    layout->addLayout(row);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        // The running loop sees the flag at its next test and ends the progress itself.
        m_stopped = true;
        m_closeAllowed = true;
    });
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    // The newest status comes to the line when it has not for a while, also when no further
    // step follows.
    m_statusLater.setSingleShot(true);
    connect(&m_statusLater, &QTimer::timeout, this, &ProgressWindow::showStatus);
}

QString ProgressWindow::status() const
{
    return m_latest;
}

void ProgressWindow::showStatus()
{
    m_statusLater.stop();
    m_status->setText(m_latest);
    m_statusShown.start();
}

void ProgressWindow::start(const QString& title, int minimum, int maximum)
{
    m_stopped = false;
    m_closeAllowed = false;
    m_cancel->hide();
    m_latest = title;
    showStatus();
    m_bar->setRange(minimum, maximum);
    m_bar->draw(0);
    show();
    QCoreApplication::processEvents();
}

void ProgressWindow::step(const QString& status)
{
    m_latest = status;
    if (!m_statusShown.isValid() || m_statusShown.elapsed() >= kStatusEveryMs)
        showStatus();
    else if (!m_statusLater.isActive())
        m_statusLater.start(kStatusEveryMs - int(m_statusShown.elapsed()));
    if (m_bar->position() < m_bar->maximum()) {
        if (m_bar->draw(m_bar->position() + 1))
            QCoreApplication::processEvents();
    }
}

void ProgressWindow::stopProgress()
{
    m_closeAllowed = true;
    m_statusLater.stop();
    m_bar->draw(m_bar->maximum());
    hide();
    // Idle, the window keeps no native window: a screen reader would list it as one of the
    // program's windows. It goes once the events under way are through (one of them may be
    // this window's own); the next start makes it again.
    QTimer::singleShot(0, this, [this] {
        if (!isVisible())
            destroy();
    });
}

void ProgressWindow::end()
{
    stopProgress();
    m_stopped = true;
}

void ProgressWindow::showCancel()
{
    m_cancel->show();
    adjustSize();
}

void ProgressWindow::closeEvent(QCloseEvent* event)
{
    if (!m_closeAllowed) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void ProgressWindow::keyPressEvent(QKeyEvent* event)
{
    // Esc would close a dialog; here it means Cancel, and only when Cancel is offered.
    if (event->key() == Qt::Key_Escape) {
        if (m_cancel->isVisible())
            m_cancel->click();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace qmr
