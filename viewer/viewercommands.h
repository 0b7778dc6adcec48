#pragma once

#include "core/commandtable.h"
#include "store/commandcontext.h"
#include "viewer/viewerpageopener.h"

namespace qmr {

// The viewer's entries of the main window: File > View Settings, and the page opener that
// the page pane uses.
class ViewerCommands
{
public:
    explicit ViewerCommands(const CommandContext& context) : m_context(context), m_opener(context)
    {
    }
    // The context is held by reference: a temporary one would be gone before its use.
    ViewerCommands(CommandContext&& context) = delete;

    void addTo(CommandTable& commands);
    ViewerPageOpener& pageOpener() { return m_opener; }
    void viewSettings();

private:
    const CommandContext& m_context;
    ViewerPageOpener m_opener;
};

} // namespace qmr
