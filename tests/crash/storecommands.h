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
    CommandStore(const AppHome& home, quint32 seed);
    ~CommandStore();
    // Runs command `step`; "" when it went as a person would expect, else what went wrong.
    QString run(int step);
    Database& db();

private:
    struct Parts;
    std::unique_ptr<Parts> m;
};

} // namespace qmr::crash
