#pragma once

#include <QString>

class QAbstractItemView;

namespace qmr {

// What an empty view says in its middle: how it comes to hold something. The text is kept on
// the view (its property "emptyHint") and drawn by the view's paint event while the view has
// no rows, in the palette's placeholder colour so that it reads in every theme.
class EmptyHint
{
public:
    static void set(QAbstractItemView* view, const QString& hint);
    static QString of(const QAbstractItemView* view);
    // Draws the hint on the view's viewport when the view has no rows; from its paintEvent.
    static void paint(QAbstractItemView* view);
};

} // namespace qmr
