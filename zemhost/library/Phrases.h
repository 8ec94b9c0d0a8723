#pragma once

// How reports and messages name the things of a library.

#include <cstdint>
#include <string>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// `song 24 "Lost Reel" by Idris Calloway`.
std::string songLabel(int32_t index, const Song &song);

// `playlist 2 "Night Train"`.
std::string playlistLabel(int32_t number, const std::string &name);

// That a song's file is not there, or is not taken since it lies outside the player.
std::string missingFileText(int32_t index, const Song &song, const SongFile &file);

// What the form of a database says of its origin.
std::string variantText(LibraryForm form);

}  // namespace zemhost
