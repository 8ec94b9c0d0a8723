#pragma once

// The small files that stand beside a player's database.

#include <cstddef>
#include <filesystem>
#include <string>

namespace player {

// The path of what a folder calls so, without regard to case; empty when there is none, or when the folder
// cannot be searched.
std::filesystem::path playerFile(const std::filesystem::path &folder, const char *name);

// The bytes of a file. Throws PlayerError, saying what is wrong without the file's name, when it cannot be
// read, is no regular file or has more bytes than `most`, and when a symbolic link leads to it out of the
// player whose disk has this root.
std::string readPlayerFile(const std::filesystem::path &root, const std::filesystem::path &file, size_t most);

}  // namespace player
