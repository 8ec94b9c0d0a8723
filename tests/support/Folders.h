#pragma once

// Where the tests find what they read. The paths are compiled into one source, so that the objects of all
// others are the same in every folder that the tree is built in.

#include <filesystem>

namespace support {

// The plug-in that this build made.
std::filesystem::path PluginFile();
// The samples that this build made: `player`, a mounted player, and `big-endian.library`.
std::filesystem::path SamplesFolder();
// The documents of the tree.
std::filesystem::path DocumentsFolder();
// Files that are not part of the tree; there may be none.
std::filesystem::path SharedFolder();

}  // namespace support
