#pragma once

#include <functional>

namespace qmr {

class Prompter;

// Runs a command; a store or file failure inside it becomes a message and ends the command,
// and the program goes on. False when the command failed.
bool guarded(Prompter& prompter, const std::function<void()>& command);

} // namespace qmr
