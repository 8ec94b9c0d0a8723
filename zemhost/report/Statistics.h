#pragma once

// What the songs of a library add up to: in all, and by what they have in common.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/AlbumLayout.h"

namespace zemhost {

enum class Grouping { Artist, Album, Genre, Year, Decade, Kind, Rating, Month };
enum class Measure { Songs, Time, Size, Plays };

// By the names that options call them, in the order of the enumerations.
const std::vector<std::string> &groupingNames();
const std::vector<std::string> &measureNames();

// Whether the groups have an order of their own, as years have.
bool isInOrder(Grouping by);

// A number of songs added up, as far as they state it.
struct Sum {
  uint64_t total = 0;
  uint64_t stated = 0;  // songs that state it

  void add(const std::optional<uint64_t> &number) {
    if (!number) return;
    total += *number;
    ++stated;
  }
  // No value when none of several songs states it.
  std::optional<uint64_t> known(uint64_t songs) const {
    return stated == 0 && songs != 0 ? std::nullopt : std::optional(total);
  }
};

// What songs add up to.
struct Figures {
  uint64_t songs = 0;
  Sum time;  // milliseconds
  Sum size;  // bytes
  Sum plays;

  // The value of a measure; no value when no song states it.
  std::optional<uint64_t> value(Measure measure) const;
  // The songs that do not state it.
  uint64_t unstated(Measure measure) const;

 private:
  const Sum &sumOf(Measure measure) const;
};

struct FigureGroup {
  // What the songs have in common: a text of the library; "1998", "1990s", "2006-07"; of stars the rating,
  // "0" to "100". Empty where it is not known of them.
  std::string name;
  std::string artist;  // of an album; kCompilations for one of several artists
  Figures figures;
};

class Statistics {
 public:
  // Reads every song once.
  explicit Statistics(const MusicLibrary &library);

  const Figures &all() const { return all_; }

  // The groups by one thing, each song in one of them: those of years, ratings and months ascending, others
  // in the order of their first songs. Songs of which it is not known are one group without a name, the last.
  // Texts are compared as they are; which songs are one album is as AlbumLayout says.
  std::vector<FigureGroup> by(Grouping grouping) const;

 private:
  struct SongFigures {
    std::optional<uint64_t> time, size, plays;
    std::optional<uint32_t> year, rating, added;  // the year, 0 to 100, seconds since the start of 1904
    size_t artist, genre, kind;                   // in texts_
  };

  size_t numberOf(const std::string &text);
  static void add(const SongFigures &song, Figures &figures);
  std::vector<FigureGroup> byAlbum() const;
  std::string nameOf(const SongFigures &song, Grouping grouping) const;

  std::vector<SongFigures> songs_;
  std::vector<AlbumSong> albumSongs_;  // beside them
  std::map<std::string, size_t> numbers_;
  std::vector<const std::string *> texts_;  // those of the map
  Figures all_;
};

// The `top` highest of these groups by a measure, 0: all of them. Those that have an order of their own stay
// in it, others come from the highest down; the group without a name is the last, and no measure takes its
// place among the highest.
std::vector<FigureGroup> highest(std::vector<FigureGroup> groups, Grouping by, Measure measure, size_t top);

}  // namespace zemhost
