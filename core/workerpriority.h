#pragma once

namespace qmr {

// Work done beside the window (thumbnails, copies of page files, the tidying of the home) runs
// below the window's scheduling priority, so that on a machine busy with other programs the
// window still answers at once. Thread priorities of Qt change nothing for ordinary threads on
// Linux; a thread's niceness does.
class WorkerPriority
{
public:
    // How much nicer than the window a worker runs.
    static constexpr int kNicer = 4;

    // Makes the calling thread nicer by kNicer (at most to the lowest priority); later calls on
    // the same thread change nothing, so that a pooled thread is lowered once.
    static void lowerCurrentThread();
    // The calling thread's niceness; 0 when it cannot be read.
    static int currentNiceness();
};

} // namespace qmr
