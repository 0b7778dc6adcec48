#include "core/brokenpipes.h"

#include <csignal>

namespace qmr {

namespace {

void onBrokenPipe(int)
{
}

} // namespace

void surviveBrokenPipes()
{
    struct sigaction action = {};
    action.sa_handler = onBrokenPipe;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART; // a slow call that the signal interrupts goes on
    ::sigaction(SIGPIPE, &action, nullptr);
}

} // namespace qmr
