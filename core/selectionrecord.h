#pragma once

#include <QString>
#include <QtGlobal>

#include "core/level.h"
#include "core/nodekey.h"

namespace qmr {

// Where the user is in the hierarchy, as the last tree click left it: one node at a time (a
// click on a drawer says nothing about its cabinet but its id as the parent).
struct SelectionRecord
{
    NodeKey node;         // empty when nothing is current
    QString name;         // the node's text
    qint32 parentId = -1; // from the key of the node's parent; -1 for a cabinet
    QString lastNodeKey;  // the node handled last by a click; outlives clear()

    // Forgets the node, its name and its parent; lastNodeKey stays.
    void clear();
    void set(const NodeKey& key, const QString& text, qint32 parent);
    // The id of the current node when it is of that level, else -1.
    qint32 idOf(Level level) const;
};

} // namespace qmr
