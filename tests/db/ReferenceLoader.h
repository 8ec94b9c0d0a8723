// A second reader of database files, written for plainness alone: it copies every text, searches every track
// ID from the first song on and compares every pair of songs. The tests hold the real one against it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "db/CiTunesDB.h"

namespace db_test {

struct ReferenceCell {
  int32_t idx = 0;
  uint32_t enc = 0;
  std::string text{};

  friend bool operator==(const ReferenceCell &, const ReferenceCell &) = default;
};

struct ReferenceSong {
  int32_t id = 0;
  int32_t res[4] = {};
  uint32_t number = 0;
  uint32_t total = 0;
  uint32_t duration = 0;
  uint32_t filesize = 0;
  uint32_t bitrate = 0;
  uint32_t samplerate = 0;
  uint8_t moviefileflag = 0;
  uint32_t mediaType = 0;
  uint32_t year = 0;
  ReferenceCell trackInfo = {-100, static_cast<uint32_t>(-100), ""};
  ReferenceCell title = {-1, 0, ""};
  ReferenceCell path = {-1, 0, ""};
  ReferenceCell album = {-1, 0, ""};
  ReferenceCell artist = {-1, 0, ""};
  ReferenceCell genre = {-1, 0, ""};
  ReferenceCell filetype{};
  ReferenceCell composer = {-1, 0, ""};
  std::vector<ReferenceCell> unknown{};

  friend bool operator==(const ReferenceSong &, const ReferenceSong &) = default;
};

struct ReferenceEntry {
  int32_t ref = 0;
  int32_t idx = 0;
  int32_t ply = 0;
  int32_t flg = 0;

  friend bool operator==(const ReferenceEntry &, const ReferenceEntry &) = default;
};

struct ReferencePlaylist {
  int32_t listType = 0;
  int32_t listTypeII = 0;
  ReferenceCell name = {-1, 0, ""};
  std::vector<ReferenceEntry> entries{};

  friend bool operator==(const ReferencePlaylist &, const ReferencePlaylist &) = default;
};

struct ReferenceDatabase {
  int32_t libType = 0;
  std::vector<ReferenceSong> songs{};
  std::vector<ReferencePlaylist> playlists{};

  friend bool operator==(const ReferenceDatabase &, const ReferenceDatabase &) = default;
};

// Reads the file into an empty database. Returns 1, or 0 for a file that is rejected.
int32_t ReferenceLoad(std::string file, ReferenceDatabase &database);

// Numbers the unnumbered cells by comparing every pair of songs.
void NumberByPairs(std::vector<ReferenceSong> &songs);

// The first song with the ID, looked for from the first one on; 0 when there is none.
int32_t FindByWalking(const std::vector<ReferenceSong> &songs, int32_t id);

// What the real database holds, in the same records.
ReferenceSong Plain(const CSongList &song);
ReferenceDatabase Plain(const CiTunesDB &database);

// Every field of it, a record a line.
std::string Describe(const ReferenceDatabase &database);

}  // namespace db_test
