#pragma once

#include "core/commandtable.h"
#include "store/commandcontext.h"

namespace qmr {

// The mail entries of the main window's menus: File > Email Settings.
class MailCommands
{
public:
    explicit MailCommands(const CommandContext& context) : m_context(context) {}
    // The context is held by reference: a temporary one would be gone before its use.
    MailCommands(CommandContext&& context) = delete;

    void addTo(CommandTable& commands) const;
    void emailSettings() const;

private:
    const CommandContext& m_context;
};

} // namespace qmr
