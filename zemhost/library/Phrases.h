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

// How the size of a song's file compares with what the database states. An empty file is short whatever that
// is; a database that states none says nothing of others.
enum class SizeOfFile { AsStated, Short, Long };
SizeOfFile comparedSize(const SongFile &file, const Song &song);

// That a song's file has another size than the database states; the fault alone, or with the song and the
// file.
std::string otherSizeFault(const Song &song, const SongFile &file);
std::string otherSizeText(int32_t index, const Song &song, const SongFile &file);

// That a song's file, or a folder on its way, is there and cannot be read; `error` says why. The
// fault alone, or with the song and the file.
std::string unreadableFault(int error);
std::string unreadableText(int32_t index, const Song &song, const SongFile &file, int error);

// What the form of a database says of its origin.
std::string variantText(LibraryForm form);

}  // namespace zemhost
