#pragma once

#include <QString>

#include "core/nodekey.h"
#include "core/targetview.h"

namespace qmr {

// What Insert and Delete run in the tree and in the container list, by the selected item's
// level. The tree's Insert adds a child of the node, the list's a sibling of the item (and a
// document in the list takes a new page); Delete removes the item in both. The root's Delete,
// the found branch and any other control run nothing ("").
class CommandKeys
{
public:
    static QString insertCommand(ContextSource control, const NodeKey& key);
    static QString deleteCommand(ContextSource control, const NodeKey& key);
};

} // namespace qmr
