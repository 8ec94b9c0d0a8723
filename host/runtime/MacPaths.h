#pragma once

// Names and paths of the Mac beside those of this machine. A Mac name may hold a '/' where a name on the disk
// holds a ':', and parts of a Mac path stand between colons.

#include <cstddef>
#include <filesystem>
#include <string>

#include "platform/carbon/MacNames.h"

namespace zemhost {

// The most bytes of a name that plug-ins can be given, 63.
constexpr size_t kLongestMacName = carbon::kLongestName;

// The Mac name of a volume mounted at a directory: the directory's own, shortened to whole characters of
// kLongestMacName bytes. "System" for the root directory of the machine, which is a volume without being
// declared.
std::string volumeName(const std::filesystem::path &root);

// A colon-separated path or a name on it as the disk has it: "iPod:AC/DC" is "iPod/AC:DC".
inline std::string diskPath(const std::string &macPath) { return carbon::exchanged(macPath); }

}  // namespace zemhost
