// Ctrl-C and the wish of the system that the process ends.
#pragma once

namespace orvo::host {

/// The first SIGINT or SIGTERM only sets a flag and breaks waiting calls; a second one ends the process. A
/// file that grows past the size limit is a failing write, not a signal. So it is from the start, before the
/// libraries make themselves ready.
bool Interrupted();

}  // namespace orvo::host
