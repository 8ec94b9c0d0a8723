#pragma once

// The files in the folders where a player keeps its music, whatever its database says of them.

#include <filesystem>
#include <functional>

namespace player {

struct MusicFileSink {
  std::function<void(const std::filesystem::path &)> onFile;  // without symbolic links on its way
  // A folder or file that cannot be read, and the system's error; the walk goes on with the next.
  std::function<void(const std::filesystem::path &, int)> onFailure;
};

// Hands on every regular file below the music folder of the player with this root, in no order; nothing when
// it has none, or one that lies outside the player. Symbolic links are not followed. Throws std::bad_alloc
// without memory.
void eachMusicFile(const std::filesystem::path &root, const MusicFileSink &sink);

// The same of all folders in which players keep sounds: that of their own files, but for what they say aloud,
// and that of recordings.
void eachFileOfPlayer(const std::filesystem::path &root, const MusicFileSink &sink);

}  // namespace player
