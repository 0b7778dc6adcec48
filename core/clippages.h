#pragma once

#include <QVector>
#include <QtGlobal>

namespace qmr {

// The pages that Cut marked, in the order they stood in the page list. They stay in their
// document until the next paste moves them; empty when nothing is cut.
struct ClipPages
{
    QVector<qint32> ids;

    bool isEmpty() const { return ids.isEmpty(); }
    int count() const { return int(ids.size()); }
    void clear() { ids.clear(); }
};

} // namespace qmr
