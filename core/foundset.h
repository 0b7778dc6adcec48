#pragma once

#include "core/pagefilter.h"

namespace qmr {

// What a found document's page list keeps of the running search: what it asked of the
// pages. A new search empties it first, and sets it when it searches any cabinet.
struct FoundSet
{
    PageFilter pageFilter;

    void clear() { pageFilter = PageFilter(); }
};

} // namespace qmr
