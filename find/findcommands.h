#pragma once

#include "core/commandtable.h"
#include "store/commandcontext.h"

class QAction;

namespace qmr {

class FoundResults;

// Find (the button, File > Find..., F3 and Ctrl+F) and the found branch's own menu.
class FindCommands
{
public:
    FindCommands(const CommandContext& context, FoundResults& results);

    // cmdFind, mnuFileFind, mnuPopupFoundClear, mnuPopupFoundProperties.
    void addTo(CommandTable& table);
    // Gives the Find entry its keys, F3 and Ctrl+F, for the whole window.
    static void bindKeys(QAction* findEntry);

    // Shows the find dialog; a search in it shows its result in the found branch.
    void find();
    // Takes the found branch away; the list on show stays as it is.
    void clearResults();

private:
    CommandContext m_context;
    FoundResults& m_results;
};

} // namespace qmr
