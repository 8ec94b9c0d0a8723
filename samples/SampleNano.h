// The sample songs and playlists as a newest nano keeps them: in SQLite files.
#pragma once

#include <filesystem>
#include <string>

namespace samples {

// Writes the five files into a folder, which must be there and hold none of them. Throws std::runtime_error,
// naming the file, when one cannot be written.
void WriteSampleNano(const std::filesystem::path &folder);

// What this nano counted since the last synchronisation: the file "Play Counts". Its clock is two hours ahead
// of UTC.
std::string SampleNanoPlayCounts();

}  // namespace samples
