#pragma once

#include "core/clippages.h"
#include "core/findrecord.h"
#include "core/foundset.h"
#include "core/selectionrecord.h"

namespace qmr {

// What one run remembers between commands and keeps nowhere on disk: the selection, the
// last search's criteria and what it asked of the pages, and the pages cut for a paste.
// Owned once by start-up (or a test) beside the store, and passed to the commands that use it.
class RunState
{
public:
    SelectionRecord& selection() { return m_selection; }
    FindRecord& findRecord() { return m_find; }
    // What the last search asked of the pages, for its found documents.
    FoundSet& foundSet() { return m_foundSet; }
    // The pages cut and waiting for a paste.
    ClipPages& clipPages() { return m_clipPages; }

private:
    SelectionRecord m_selection;
    FindRecord m_find;
    FoundSet m_foundSet;
    ClipPages m_clipPages;
};

} // namespace qmr
