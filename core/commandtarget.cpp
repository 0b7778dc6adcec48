#include "core/commandtarget.h"

namespace qmr {

NodeKey CommandTarget::contextKey() const
{
    return m_source == ContextSource::Tree ? m_view.treeSelectedKey() : m_view.listSelectedKey();
}

qint32 CommandTarget::targetId(Level level) const
{
    const qint32 id = m_record.idOf(level);
    if (id != -1)
        return id;
    const NodeKey key = contextKey();
    return key.level() == level ? key.id() : -1;
}

NodeKey CommandTarget::contextParentKey() const
{
    return m_view.treeParentKey(contextKey());
}

} // namespace qmr
