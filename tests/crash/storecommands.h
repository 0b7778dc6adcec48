#pragma once

#include <memory>

#include "core/apphome.h"

namespace qmr {
class Database;
}

namespace qmr::crash {

// Makes the home with the drawer templates, samples and outside files that the commands use.
void prepareHome(const AppHome& home);

// A home opened as the program opens it, and the store's writing commands run on it by
// number: command `step` does the same thing wherever and however often it runs, given the
// same store. New items and properties go through the item dialogs (new drawers with their
// templates), pages are renumbered one at a time and whole, samples become cabinets, items
// are moved, pages cut and pasted, files dropped, pasted and imported.
class CommandStore
{
public:
    static std::unique_ptr<CommandStore> open(const AppHome& home, quint32 seed);
    virtual ~CommandStore() = default;
    // Runs command `step`; "" when it went as a person would expect, else what went wrong.
    virtual QString run(int step) = 0;
    virtual Database& db() = 0;
};

} // namespace qmr::crash
