#pragma once

#include <QColor>
#include <QPalette>
#include <QSize>
#include <QString>

class QWidget;

namespace qmr {
class AppHome;
}

namespace qmr::test {

// Pictures of windows on a filled store, as PNG files that anyone can look at without a
// display. They go to $QMR_SHOTS_DIR (default: shots/ in the working directory). Each folder's
// test class named "Shots" makes them; the ctest label "shots" runs them all.
QString shotsDirectory();
// Saves the window's picture as NAME.png; fails the test when nothing was drawn.
void saveShot(QWidget* window, const QString& name);
// A dark theme's palette: dark grounds, light text, a blue selection.
QPalette darkPalette();
// A page that looks scanned (a coloured letterhead, lines of text, its number) written as the
// file of page `id`, without a thumbnail, so that the pane makes one.
void scannedPage(const AppHome& home, qint32 id, int number, const QSize& size, QColor head);

} // namespace qmr::test
