#pragma once

// Where a library comes from: each kind of database answers the same questions, for MusicLibrary to ask.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/Host.h"
#include "player/Chapters.h"
#include "player/DatabaseLocation.h"
#include "player/Playlists.h"
#include "player/SongReader.h"
#include "zemhost/library/Song.h"

namespace zemhost {

enum class LibraryForm {
  Desktop,  // a desktop program's library: it names files of other volumes
  Player,   // a player's database
  Sqlite    // the newest nanos' own: SQLite files
};

class LibrarySource {
 public:
  LibrarySource() = default;
  LibrarySource(const LibrarySource &) = delete;
  LibrarySource &operator=(const LibrarySource &) = delete;
  virtual ~LibrarySource() = default;

  virtual const player::DatabaseLocation &location() const = 0;
  virtual LibraryForm form() const = 0;
  // Of the player; what the source says for a database that lies on none means nothing.
  virtual std::string volumeName() const = 0;
  // The class's object that has loaded the database; nullptr where the class has no part in it.
  virtual const Object *object() const { return nullptr; }

  // Songs go by their position in the library. Nothing is checked beyond the source's own bounds, which give
  // an empty one.
  virtual int32_t songCount() const = 0;
  virtual Song song(int32_t index) const = 0;
  // Its path as the class answers it; where the class has no part in the library, as song() has it.
  virtual std::string answeredPath(int32_t index) const { return song(index).path; }
  virtual uint32_t duration(int32_t index) const = 0;
  virtual uint32_t size(int32_t index) const = 0;
  // One of its texts as song() has it, for those that need no more of many songs.
  virtual std::string text(SongTextField field, int32_t index) const;
  // A text with a number of its own, in UTF-8; none where the song has no such text. And how many there are.
  virtual std::optional<std::string> numberedText(int32_t index, int32_t number) const = 0;
  virtual int32_t numberedTextCount(int32_t index) const = 0;
  // All its texts as the file has them, read without the class.
  virtual std::vector<player::SongText> textsInFile(int32_t index) const = 0;
  // The bytes of a text by which songs of this library are grouped, and whether two songs with the same bytes
  // are the same by this text.
  virtual std::string storedText(SongTextField field, int32_t index) const = 0;
  virtual bool isSame(SongTextField by, int32_t one, int32_t other) const = 0;
  virtual bool hasCounts() const = 0;
  // The chapters of a song; none for most.
  virtual std::vector<player::Chapter> chapters(int32_t /*index*/) const { return {}; }
  // Its facts as of the last synchronisation, as far as the source keeps them apart from what the player
  // counted since.
  virtual player::SongFacts storedFacts(int32_t index) const = 0;

  // Playlists go by their number, entries by their position. What Unicode cannot hold of a name adds to
  // `lost`, if there is one.
  virtual int32_t playlistCount() const = 0;
  virtual std::string playlistName(int32_t playlist, size_t *lost) const = 0;
  virtual player::PlaylistFacts playlistFacts(int32_t playlist) const = 0;
  // Whether the class's methods answer for it too.
  virtual bool isAnsweredByClass(int32_t playlist) const = 0;
  virtual int32_t entryCount(int32_t playlist) const = 0;
  virtual PlaylistEntry entry(int32_t playlist, int32_t position) const = 0;
  // Only its track ID, for those that need no more of many entries.
  virtual std::optional<int32_t> trackID(int32_t playlist, int32_t position) const {
    return entry(playlist, position).trackID;
  }
  // The IDs of its songs as the file has them, read without the class; none where that is all there is.
  virtual std::optional<std::vector<uint32_t>> idsInFile(int32_t /*playlist*/) const { return std::nullopt; }
  // The groups of a list of podcasts; none of others, and where the source keeps none.
  virtual std::vector<player::PodcastGroup> podcastGroups(int32_t /*playlist*/) const { return {}; }

  // The zone of the last synchronisation, in seconds east of UTC.
  virtual std::optional<int32_t> syncZone() const { return std::nullopt; }
};

}  // namespace zemhost
