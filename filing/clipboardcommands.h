#pragma once

#include "core/commandtable.h"
#include "filing/pageclipboard.h"

namespace qmr {

struct CommandContext;

// The menu entries of the page clipboard: Cut, Copy and Paste of the page list (also
// Ctrl+X, Ctrl+C and Ctrl+V there) and Paste of a document.
class ClipboardCommands
{
public:
    // `context` is the navigator's, which outlives this.
    explicit ClipboardCommands(const CommandContext& context);

    void addTo(CommandTable& table);
    // Whether Paste has something to put, for the menus that enable it.
    bool canPaste() const { return m_clipboard.canPaste(); }
    PageClipboard& clipboard() { return m_clipboard; }

private:
    PageClipboard m_clipboard;
};

} // namespace qmr
