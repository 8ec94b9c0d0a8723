#pragma once

// The records of a library as every command sees them, whatever they were read from.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/PlayCounts.h"
#include "player/SongFacts.h"
#include "zemhost/library/Covers.h"

namespace zemhost {

constexpr int32_t kAlbumArtistText = 22;  // the number of a text that every source has

struct Song {
  std::optional<int32_t> id;  // by which entries refer to it; none in a library without such numbers
  std::string title, artist, album, genre, composer, fileType;  // UTF-8; empty when the song has none
  std::string path;                                             // on the device, colon-separated
  std::vector<std::string> lossyTexts;  // those of its texts that Unicode cannot hold whole: "title"
  uint32_t track = 0;
  uint32_t trackTotal = 0;
  uint32_t duration = 0;  // milliseconds
  uint32_t size = 0;      // bytes
  uint32_t year = 0;
  uint32_t bitRate = 0;     // kilobits per second
  uint32_t sampleRate = 0;  // hertz
  uint32_t modified = 0;    // when its file changed; seconds since the start of 1904, in no time zone
  // What the player's files say; all unknown when its place in them is not sure.
  player::SongFacts facts;
  std::optional<player::PlayCount>
      sinceSync;                   // of this, what the player counted since the last synchronisation
  bool isUnnamed = false;          // a file that no song of the library names; known by its tags alone
  const Covers *covers = nullptr;  // of its library, which must outlive it

  // Whether it has a cover; no value where that is not known. The list of covers is read when it is first
  // asked for.
  std::optional<bool> hasCover() const { return covers == nullptr ? std::nullopt : covers->has(facts); }
};

// The texts by which songs are told apart.
enum class SongTextField { Title, Artist, Album, Genre, Composer };

// The text of a song's record, whichever source's it is: UTF-8, empty when the song has none. The record owns
// it.
template <typename Record>
const std::string &textOf(const Record &song, SongTextField field) {
  switch (field) {
    case SongTextField::Title:
      return song.title;
    case SongTextField::Artist:
      return song.artist;
    case SongTextField::Album:
      return song.album;
    case SongTextField::Genre:
      return song.genre;
    case SongTextField::Composer:
      break;
  }
  return song.composer;
}

// What a list adds up to.
struct Totals {
  uint64_t songs = 0;
  uint64_t duration = 0;  // milliseconds
  uint64_t size = 0;      // bytes

  void add(uint32_t songDuration, uint32_t songSize) {
    ++songs;
    duration += songDuration;
    size += songSize;
  }
};

struct PlaylistEntry {
  std::string id;                  // of its song, as the library writes it
  std::optional<int32_t> trackID;  // the same as a number, in a library that has such
  int32_t song = -1;               // library index; -1 when no song has the ID
};

}  // namespace zemhost
