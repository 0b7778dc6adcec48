#include "core/navigatorcallbacks.h"

namespace qmr {

void NavigatorCallbacks::announce(const QVector<CreatedItem>& items)
{
    for (const CreatedItem& item : items)
        itemAdded(item);
}

} // namespace qmr
