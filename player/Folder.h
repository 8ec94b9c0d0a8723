#pragma once

// Files of a player by the names that it gives them, without regard to case.

#include <filesystem>
#include <optional>
#include <string>

namespace player {

// Whether the path's last part is this ASCII name.
bool isNamed(const std::filesystem::path &path, const char *name);

// What a directory calls `name`: exactly so, else without regard to case, else nothing. Throws PlayerError,
// naming the directory, when it cannot be searched, and std::bad_alloc without memory.
std::optional<std::filesystem::path> childNamed(const std::filesystem::path &directory, const char *name);

// Whether the path's last part is the name of the folder in which a player keeps its own files.
bool isControlFolder(const std::filesystem::path &path);

// That folder of the player with this root; nothing when it has none. Throws as childNamed().
std::optional<std::filesystem::path> controlFolderOf(const std::filesystem::path &root);

// Throws PlayerError, naming it as `name`, when symbolic links lead from a path below a folder out of that
// folder. A path that cannot be followed to its end leads nowhere, and is left to whoever opens it.
void expectInside(const std::filesystem::path &folder, const std::filesystem::path &path,
                  const std::string &name);

}  // namespace player
