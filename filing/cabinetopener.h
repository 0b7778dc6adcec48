#pragma once

#include <QtGlobal>

namespace qmr {

struct CommandContext;

// The way into a cabinet for the commands that mean to go in (a click, properties, a drag):
// asks for its password when it has one and it is not open yet, records it open, and has the
// navigator rebuild and fill its node.
class CabinetOpener
{
public:
    // False when the user cancelled or typed a wrong password (they have been told).
    static bool openCabinet(const CommandContext& context, qint32 cabinetId);
};

} // namespace qmr
