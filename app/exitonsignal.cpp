#include "app/exitonsignal.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QKeyEvent>
#include <QThread>
#include <QWidget>

#include "navigator/navwindow.h"

namespace qmr {

ExitOnSignal::ExitOnSignal(QObject* parent) : QObject(parent)
{
    connect(&m_signals, &QuitSignals::arrived, this, &ExitOnSignal::request);
}

void ExitOnSignal::attach(NavWindow* window)
{
    m_window = window;
}

void ExitOnSignal::request()
{
    if (!m_requested) {
        m_requested = true;
        // Every event loop, the main one and those of dialogs, says when it has nothing more
        // to do; that is where the run can be ended or the next window in the way answered.
        if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
            connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                    &ExitOnSignal::loopIdle);
    }
    dismissFront();
}

bool ExitOnSignal::dismissFront()
{
    QWidget* front = QApplication::activePopupWidget();
    if (front) {
        front->close();
        return true;
    }
    front = QApplication::activeModalWidget();
    if (!front)
        return false;
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(front, &escape);
    return true;
}

void ExitOnSignal::loopIdle()
{
    if (m_done)
        return;
    if (dismissFront())
        return;
    // Only the main loop, not a loop that a command runs for itself (a dialog, a wait).
    if (!m_window || QThread::currentThread()->loopLevel() != 1)
        return;
    m_done = true;
    m_window->exitRun();
}

} // namespace qmr
