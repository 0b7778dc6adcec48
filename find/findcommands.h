#pragma once

#include "core/commandtable.h"
#include "store/commandcontext.h"

namespace qmr {

class FoundResults;

// Find (the button, File > Find..., F3 and Ctrl+F) and the found branch's own menu.
class FindCommands
{
public:
    FindCommands(const CommandContext& context, FoundResults& results);
    // The context is held by reference: a temporary one would be gone before its use.
    FindCommands(CommandContext&& context, FoundResults& results) = delete;

    // cmdFind, mnuFileFind, mnuPopupFoundClear, mnuPopupFoundProperties.
    void addTo(CommandTable& table);

    // Shows the find dialog; a search in it shows its result in the found branch.
    void find();
    // Takes the found branch away; the list on show stays as it is.
    void clearResults();

private:
    const CommandContext& m_context;
    FoundResults& m_results;
};

} // namespace qmr
