// The questions asked of the records, answered by walking them.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/model/Records.h"

namespace model {

// The first song with the ID, looked for from the first one on; 0 when there is none.
int32_t FindRefIdx(const std::vector<Song> &songs, int32_t id);

// What two songs' objects are compared by.
enum class By { Idx = 0, Text = 1, Enc = 2 };

// Whether two songs are the same in object 3 (album, then artist too), 4, 5, 6 or 12; any other is never.
bool CompareSongsObjects(const std::vector<Song> &songs, int32_t object, int32_t a, int32_t b, By mode);

// Numbers the unnumbered cells by comparing every pair of songs.
void SetSongsObjectIndex(std::vector<Song> &songs);

int32_t SongsID(const Database &database, int32_t index);
int32_t SongsProp(const Database &database, int32_t index, int32_t num);
void SetSongsProp(Database &database, int32_t index, int32_t num, uint32_t value);
int32_t CountSongUnknown(const Database &database, int32_t index);
Cell SongsObjectInfo(const Database &database, int32_t index, int32_t object);
void SetSongsObjectInfo(Database &database, int32_t index, int32_t object, const std::string &text,
                        uint32_t encoding);
Cell SongsUnknownObjectInfo(const Database &database, int32_t index, int32_t object);
Cell PlayListNameInfo(const Database &database, int64_t playlist);

bool IsSong(const Database &database, int32_t index);
// Playlists by their number in the file, from 0 on.
bool IsPlaylist(const Database &database, int64_t playlist);
bool IsEntry(const Database &database, int64_t playlist, int32_t position);

}  // namespace model
