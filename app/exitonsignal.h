#pragma once

#include <QObject>
#include <QPointer>

#include "core/quitsignals.h"

namespace qmr {

class NavWindow;

// SIGTERM, SIGINT and SIGHUP end the run as File > Exit does, without its question. A signal
// that comes while the program is busy does not cut into the work: the window that waits for
// an answer is answered as Esc would answer it (a question gets its mildest answer, a dialog
// is cancelled, a walk that offers Cancel is cancelled), and the run ends once the program is
// back in its main loop with nothing open in front of the main window.
class ExitOnSignal : public QObject
{
    Q_OBJECT
public:
    // Made before the home is locked, so that no signal leaves the lock behind.
    explicit ExitOnSignal(QObject* parent = nullptr);

    // The window whose exit ends the run; a signal that came before waits for it.
    void attach(NavWindow* window);
    bool requested() const { return m_requested; }

private:
    void request();
    // Called each time an event loop is about to wait for events.
    void loopIdle();
    // Esc to what stands in front: the open popup menu, else the modal window.
    static bool dismissFront();

    QuitSignals m_signals;
    QPointer<NavWindow> m_window;
    bool m_requested = false;
    bool m_done = false;
};

} // namespace qmr
