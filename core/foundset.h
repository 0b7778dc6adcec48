#pragma once

#include "core/pagefilter.h"
#include "core/pagewords.h"

namespace qmr {

// What a found document's page list keeps of the running search: what it asked of the
// pages, and the words on the pages it looked for (their pages are marked, their places boxed
// in the viewer). A new search empties it first, and sets it when it searches any cabinet.
struct FoundSet
{
    PageFilter pageFilter;
    PageWords pageWords;

    void clear()
    {
        pageFilter = PageFilter();
        pageWords = PageWords();
    }
};

} // namespace qmr
