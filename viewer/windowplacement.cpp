#include "viewer/windowplacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include "core/settings.h"

namespace qmr {

QRect WindowPlacement::onScreen(const QRect& wanted, const QRect& available)
{
    if (available.isEmpty())
        return wanted;
    QRect r(wanted.topLeft(), wanted.size().boundedTo(available.size()).expandedTo(QSize(1, 1)));
    if (r.right() > available.right())
        r.moveRight(available.right());
    if (r.bottom() > available.bottom())
        r.moveBottom(available.bottom());
    if (r.left() < available.left())
        r.moveLeft(available.left());
    if (r.top() < available.top())
        r.moveTop(available.top());
    return r;
}

void WindowPlacement::restore(QWidget* window, const Settings& settings, const QString& formName)
{
    QRect wanted(window->pos(), window->size());
    bool maximised = false;
    if (settings.contains(formName + QLatin1String(".WindowState"))) {
        const Placement p = settings.restorePlacement(
            formName, Placement{wanted.top(), wanted.left(), wanted.height(), wanted.width(), 0});
        if (p.width > 0 && p.height > 0)
            wanted = QRect(p.left, p.top, p.width, p.height);
        maximised = p.windowState == 2;
    } else if (const QWidget* parent = window->parentWidget()) {
        wanted.moveCenter(parent->window()->geometry().center());
    }
    // A place saved on a screen that has gone, or one larger than the screen it is on, would
    // leave part of the window out of reach.
    const QScreen* screen = QGuiApplication::screenAt(wanted.center());
    if (!screen)
        screen = window->parentWidget() ? window->parentWidget()->screen() : window->screen();
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    // The frame a window manager adds stays on the screen too: that of the window once it
    // is shown, before that the one its parent window has.
    const QWidget* framed = window->isVisible()      ? window
                            : window->parentWidget() ? window->parentWidget()->window()
                                                     : nullptr;
    if (framed && !framed->isVisible())
        framed = nullptr;
    const QMargins frame =
        framed ? QMargins(framed->geometry().left() - framed->frameGeometry().left(),
                          framed->geometry().top() - framed->frameGeometry().top(),
                          framed->frameGeometry().right() - framed->geometry().right(),
                          framed->frameGeometry().bottom() - framed->geometry().bottom())
               : QMargins();
    window->setGeometry(screen ? onScreen(wanted, screen->availableGeometry().marginsRemoved(frame))
                               : wanted);
    if (maximised)
        window->setWindowState(window->windowState() | Qt::WindowMaximized);
}

void WindowPlacement::save(const QWidget* window, Settings& settings, const QString& formName)
{
    // A maximised window keeps the rectangle it had before, for when it is made smaller.
    const QRect g = window->geometry();
    settings.savePlacement(formName, Placement{g.top(), g.left(), g.height(), g.width(),
                                               window->isMaximized() ? 2 : 0});
}

} // namespace qmr
