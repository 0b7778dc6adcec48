#include "core/selectionrecord.h"

namespace qmr {

void SelectionRecord::clear()
{
    node = NodeKey();
    name.clear();
    parentId = -1;
}

void SelectionRecord::set(const NodeKey& key, const QString& text, qint32 parent)
{
    node = key;
    name = text;
    parentId = parent;
}

qint32 SelectionRecord::idOf(Level level) const
{
    return node.level() == level ? node.id() : -1;
}

} // namespace qmr
