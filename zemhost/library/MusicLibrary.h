#pragma once

// One database as a person sees it: read through the class's own methods, in a person's units and texts.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/library/Covers.h"
#include "zemhost/library/OpenDatabase.h"
#include "zemhost/library/SongFiles.h"

namespace zemhost {

// What the class answers of a song, and beside it what only the player's own files say.
struct Song {
  int32_t id = 0;
  std::string title, artist, album, genre, composer, fileType;  // UTF-8; empty when the song has none
  std::string path;                                             // on the device, colon-separated
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
  const Covers *covers = nullptr;  // of its library, which must outlive it

  // Whether it has a cover; no value where that is not known. The list of covers is read when it is first
  // asked for.
  std::optional<bool> hasCover() const { return covers == nullptr ? std::nullopt : covers->has(facts); }
};

// What a list adds up to.
struct Totals {
  uint64_t songs = 0;
  uint64_t duration = 0;  // milliseconds
  uint64_t size = 0;      // bytes

  void add(uint32_t songDuration, uint32_t songSize);
};

struct PlaylistEntry {
  int32_t trackID = 0;
  int32_t song = -1;  // library index; -1 when no song carries the track ID
};

class MusicLibrary {
 public:
  // Sets the object's ResultEncode, which must stay as it is while this class is used.
  explicit MusicLibrary(OpenDatabase database);

  const player::DatabaseLocation &location() const;
  const Object &object() const;
  const Host &host() const;

  int32_t libType() const;
  int32_t songCount() const;
  int32_t playlistCount() const;

  // One song; no bounds are checked beyond the class's own, which give an empty one.
  Song song(int32_t index) const;
  // The names of those of a song's texts that Unicode cannot hold whole: "title".
  std::vector<std::string> lossyTexts(int32_t index) const;
  // A song's texts as they stand in the file, read without the class.
  std::vector<player::SongText> textsInFile(int32_t index) const;
  // The file of a song's path, whether or not it is there: the only way to one.
  SongFile file(const std::string &path) const;
  // Opens it for reading; no descriptor, and errno, when that fails.
  carbon::Descriptor open(const SongFile &file) const;
  // The covers of the songs.
  const Covers &covers() const;
  // Whether the player left counts since the last synchronisation that fit the database.
  bool hasCounts() const;
  // Only these two of a song's numbers, for adding up.
  uint32_t duration(int32_t index) const;
  uint32_t size(int32_t index) const;

  // A playlist's name and entries, by the class's number. What Unicode cannot hold of the name adds to
  // `lost`.
  std::string playlistName(int32_t playlist, size_t *lost = nullptr) const;
  int32_t entryCount(int32_t playlist) const;
  // The class reads song 0 for an entry whose track ID no song carries; here such an entry names no song.
  PlaylistEntry entry(int32_t playlist, int32_t position) const;
  Totals playlistTotals(int32_t playlist) const;

 private:
  struct State;

  std::shared_ptr<const State> state_;
};

}  // namespace zemhost
