#pragma once

// What programs that were killed have left in a folder.

#include <string>
#include <vector>

namespace zemhost {

// Removes from an open folder the temporary files and folders (TemporaryPath.h) that nobody uses any more:
// those of this user that are not locked, on a disk of this machine, where a lock shows every program that
// lives. Returns the names of those of which it cannot be known; what is in use is not among them.
std::vector<std::string> removeLeftovers(int folder);

}  // namespace zemhost
