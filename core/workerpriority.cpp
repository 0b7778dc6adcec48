#include "core/workerpriority.h"

#include <algorithm>
#include <cerrno>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qmr {

namespace {

// On Linux a thread is a task of its own, and PRIO_PROCESS with its id sets its niceness alone.
id_t currentTask()
{
    return static_cast<id_t>(::syscall(SYS_gettid));
}

} // namespace

void WorkerPriority::lowerCurrentThread()
{
    thread_local bool lowered = false;
    if (lowered)
        return;
    lowered = true;
    const int now = currentNiceness();
    // Raising the niceness needs no privilege; a failure leaves the thread as it was.
    (void)::setpriority(PRIO_PROCESS, currentTask(), std::min(now + kNicer, 19));
}

int WorkerPriority::currentNiceness()
{
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, currentTask());
    return nice == -1 && errno != 0 ? 0 : nice;
}

} // namespace qmr
