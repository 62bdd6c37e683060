// Ctrl-C and the wish of the system that the process ends.
#pragma once

namespace orvo::host {

/// From now on the first SIGINT or SIGTERM only sets a flag and breaks waiting calls; a second one ends the
/// process. A file that grows past the size limit is a failing write, not a signal.
void WatchSignals();
bool Interrupted();

}  // namespace orvo::host
