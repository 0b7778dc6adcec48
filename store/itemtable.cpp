#include "store/itemtable.h"

#include <array>

namespace qmr {

const ItemTable& ItemTable::of(Level level)
{
    static constexpr std::array<ItemTable, 5> tables{{
        {"Cabinet", "CabinetId", ""},
        {"Drawer", "DrawerId", "CabinetId"},
        {"Folder", "FolderId", "DrawerId"},
        {"Document", "DocumentId", "FolderId"},
        {"Page", "PageId", "DocumentId"},
    }};
    return tables[static_cast<int>(level)];
}

} // namespace qmr
