// The records of a second, plain-minded model of the class: what a database holds, as simple values. Nothing
// in this folder includes or links the product.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace model {

struct Cell {
  int32_t idx = 0;
  uint32_t enc = 0;
  std::string text{};

  friend bool operator==(const Cell &, const Cell &) = default;
};

struct Song {
  int32_t error = 0;
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
  Cell trackInfo = {-100, static_cast<uint32_t>(-100), ""};
  Cell title = {-1, 0, ""};
  Cell path = {-1, 0, ""};
  Cell album = {-1, 0, ""};
  Cell artist = {-1, 0, ""};
  Cell genre = {-1, 0, ""};
  Cell filetype{};
  Cell comment{};
  Cell composer = {-1, 0, ""};
  std::vector<Cell> unknown{};

  friend bool operator==(const Song &, const Song &) = default;
};

struct Entry {
  int32_t ref = 0;
  int32_t idx = 0;
  int32_t ply = 0;
  int32_t flg = 0;

  friend bool operator==(const Entry &, const Entry &) = default;
};

struct Playlist {
  int32_t error = 0;
  int32_t listType = 0;
  int32_t listTypeII = 0;
  Cell name = {-1, 0, ""};
  std::vector<Entry> entries{};

  friend bool operator==(const Playlist &, const Playlist &) = default;
};

struct Database {
  int32_t libType = 0;
  int32_t useSJIS = 0;
  std::vector<Song> songs{};
  std::vector<Playlist> plays{};
  std::string volumeName{};

  // Where the walk over the last file stood at its end; the next one goes on from there.
  int32_t listType = 0;
  int32_t infoType = 0;
  int32_t odcount = 0;
  int64_t tarSong = -1;  // positions, -1 for none
  int64_t tarPlay = -1;

  friend bool operator==(const Database &, const Database &) = default;
};

}  // namespace model
