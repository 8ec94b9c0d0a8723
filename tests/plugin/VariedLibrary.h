// A database that has something for every method.
#pragma once

#include <cstdint>
#include <string>

#include "samples/DatabaseWriter.h"

namespace plugin_test {

constexpr int32_t kVariedSongs = 5;
constexpr int32_t kVariedPlaylists = 3;

// The bytes of a file with songs and playlists of every kind: all fields, none, shared and extreme track IDs,
// repeated and other objects, raw and concatenated texts; entries of known, unknown and repeated IDs, and no
// entries.
std::string VariedLibrary(samples::Variant variant);

}  // namespace plugin_test
