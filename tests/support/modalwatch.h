#pragma once

#include <QApplication>
#include <QDialog>
#include <QStringList>
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

// What `look` finds wrong with the modal window that `open` brings up (given with where it is,
// "what (objectName)"), which is then closed; a window that never comes up is a fault too.
inline QStringList modalFaults(const QString& what, const std::function<void()>& open,
                               const std::function<QStringList(QWidget*, const QString&)>& look)
{
    QStringList faults;
    bool seen = false;
    QObject watch; // no look after the return
    whenModal(&watch, [&](QWidget* w) {
        seen = true;
        faults << look(w, what + " (" + w->objectName() + ")");
        faults.removeAll(QString());
        if (auto* dialog = qobject_cast<QDialog*>(w))
            dialog->reject();
        else
            w->close();
    });
    open();
    if (!seen)
        faults << what + ": no window came up";
    return faults;
}

} // namespace qmr::test
