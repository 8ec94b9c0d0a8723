#pragma once

// Files of a player that are no database of songs.

#include <filesystem>
#include <string>
#include <string_view>

namespace player {

// Bytes at the beginning of a file that tell all of them apart, or all there are in a shorter one.
constexpr size_t kForeignHead = 16;

// What a file is that begins with these bytes, else by its name: "Play Counts, what the player counted since
// the last synchronisation". Empty when neither says.
std::string foreignFileText(std::string_view head, const std::filesystem::path &file);

}  // namespace player
