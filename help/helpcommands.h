#pragma once

#include <QCoreApplication>

#include <optional>

#include "core/commandtable.h"
#include "help/helplocator.h"
#include "store/commandcontext.h"

namespace qmr {

// Help > Help Topics (also F1) and Help > About.
class HelpCommands
{
    Q_DECLARE_TR_FUNCTIONS(qmr::HelpCommands)

public:
    // `locator`: where the help file is looked for; the run's places when none is given.
    explicit HelpCommands(const CommandContext& context,
                          std::optional<HelpLocator> locator = std::nullopt);
    // The context is held by reference: a temporary one would be gone before its use.
    HelpCommands(CommandContext&& context,
                 std::optional<HelpLocator> locator = std::nullopt) = delete;

    void addTo(CommandTable& table);

    // Shows the help window, or says that the help file is missing.
    void helpTopics();
    void about();

private:
    const CommandContext& m_context;
    std::optional<HelpLocator> m_locator;
};

} // namespace qmr
