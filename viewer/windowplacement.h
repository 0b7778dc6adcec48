#pragma once

#include <QRect>
#include <QString>

class QWidget;

namespace qmr {

class Settings;

// The place of a window of its own that is kept in the settings under its form name, as the
// main window keeps its own: restored when it opens, moved and made smaller where needed so
// that it lies wholly on a screen, and saved when it closes.
class WindowPlacement
{
public:
    // `wanted` moved, and shrunk where it is larger, to lie within `available`.
    static QRect onScreen(const QRect& wanted, const QRect& available);
    // The saved place of `formName`, or without one the window's size centred over its
    // parent window; either way wholly on the screen it comes to.
    static void restore(QWidget* window, const Settings& settings, const QString& formName);
    static void save(const QWidget* window, Settings& settings, const QString& formName);
};

} // namespace qmr
