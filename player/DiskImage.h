#pragma once

// A disk, or the image of one, that is given in place of a player that is mounted.

#include <string>

namespace player {

// What an open file or device is, by its first bytes, and how to get at what it holds: "it is a volume in
// HFS+; mount it ...". Empty when it is neither a disk with a table of partitions nor a volume. Throws
// std::system_error when it cannot be read.
std::string diskImageText(int file, const std::string &name);

}  // namespace player
