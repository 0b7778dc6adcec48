#pragma once

namespace qmr {

// A write into a pipe or socket whose reader has gone (a scanner backend's reader after a
// cancel, a mail server that hung up) fails with EPIPE, which the command reports, instead of
// ending the program. The signal gets a handler that does nothing rather than being ignored:
// SANE's thread helper puts an ignored SIGPIPE back to its default, the end of the program,
// after every scan, and leaves a handler alone. Programs started from here get the default
// back, as they expect.
void surviveBrokenPipes();

} // namespace qmr
