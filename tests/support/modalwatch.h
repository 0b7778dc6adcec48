#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace qmr::test {

// Runs `act` on the next modal window once it is up (looking every 20 ms, `tries` times); one
// still open five seconds later is closed, so that a failing test cannot hang.
inline void whenModal(QObject* context, std::function<void(QWidget*)> act, int tries = 200)
{
    QTimer::singleShot(20, context, [context, act, tries] {
        if (QWidget* w = QApplication::activeModalWidget()) {
            act(w);
            QTimer::singleShot(5000, w, [w] {
                if (w->isVisible())
                    w->close();
            });
        } else if (tries > 0) {
            whenModal(context, act, tries - 1);
        }
    });
}

} // namespace qmr::test
