#pragma once

#include "core/foundresults.h"

namespace qmr {

class NavIcons;
class NavTree;

// The "Found" branch of tvwMain: copies of the found documents and of the cabinets, drawers
// and folders above them, under keys of their own (FCB, FDW, FFD, FDC), so that an item can
// stand in the tree twice. The copies are never renamed, dragged or dropped on by the user;
// the real item's rename and delete reach them through the navigator.
class FoundBranch : public FoundResults
{
public:
    FoundBranch(NavTree& tree, NavIcons& icons);

    void clear() override;
    void show(const QVector<FoundDocument>& documents) override;

private:
    NavTree& m_tree;
    NavIcons& m_icons;
};

} // namespace qmr
