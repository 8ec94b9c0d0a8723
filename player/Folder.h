#pragma once

// Files of a player by the names that it gives them, without regard to case.

#include <filesystem>
#include <optional>

namespace player {

// Whether the path's last part is this ASCII name.
bool isNamed(const std::filesystem::path &path, const char *name);

// What a directory calls `name`: exactly so, else without regard to case, else nothing. Throws PlayerError,
// naming the directory, when it cannot be searched.
std::optional<std::filesystem::path> childNamed(const std::filesystem::path &directory, const char *name);

}  // namespace player
