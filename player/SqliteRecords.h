#pragma once

// What the SQLite files of the newest players say of songs and playlists, joined from their tables. Dates are
// seconds since the start of 1904 as everywhere, and in UTC.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/Chapters.h"
#include "player/SongFacts.h"
#include "player/SongReader.h"

namespace player {

struct SqliteSong {
  int64_t pid = 0;                                          // the persistent ID as its tables have it
  std::optional<int64_t> place;                             // in the list of all songs, from 0
  std::string title, artist, album, genre, composer, kind;  // UTF-8; empty when there is none
  std::string path;                     // from the player's root, ":iPod_Control:Music:F24:VULT.mp3"
  std::vector<SongText> texts;          // the others, with the numbers that they have in other databases
  std::vector<std::string> lossyTexts;  // those that are not valid UTF-8: "title"
  SongFacts facts;                      // but for `id`, which these players have not
  std::optional<uint32_t> sampleRate;   // hertz
  std::vector<Chapter> chapters;        // none for most
};

enum class SqliteListKind { Library, Ordinary, Smart, Folder };

struct SqliteList {
  // A song's persistent ID, and its position among the songs; none when no song has the ID.
  struct Entry {
    int64_t pid = 0;
    std::optional<size_t> song;
  };

  int64_t pid = 0;
  SqliteListKind kind = SqliteListKind::Ordinary;
  std::string name;
  size_t lost = 0;          // places of the name that are not valid UTF-8
  bool isCategory = false;  // one of the player's own hidden lists: rules, and no entries of its own
  std::optional<uint32_t> created;
  std::optional<uint32_t> modified;
  std::optional<int64_t> parent;     // the folder it lies in
  std::optional<int64_t> nameOrder;  // its place among the names
  std::optional<uint32_t> category;  // 2 films, 3 TV shows, 4 music, 5 audiobooks, 7 rentals
  std::string criteria;              // of a smart list, from "SLst" on
  std::optional<bool> usesRules, isLimited, isLive, onlyChecked, reverse;
  std::optional<uint32_t> limitKind, limitOrder, limit;
  std::vector<Entry> entries;
};

}  // namespace player
