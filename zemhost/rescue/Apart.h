#pragma once

// Work on files that may be made to mislead, in a process of its own: what breaks there breaks nothing here.

#include <functional>

namespace zemhost {

// Runs the work in a new process, which may take a minute, five seconds of the processor's time and 128 MiB
// of memory, and returns what it returns, 0 to 254; -1 when it ended otherwise or threw. `meanwhile`, if
// there is one, runs in this process before it waits. Throws HostError when no process can be made.
int runApart(const std::function<int()> &work, const std::function<void()> &meanwhile = {});

}  // namespace zemhost
