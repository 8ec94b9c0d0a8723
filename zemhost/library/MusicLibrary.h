#pragma once

// One library as a person sees it, in a person's units and texts, whatever it was read from.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/library/LibrarySource.h"
#include "zemhost/library/OpenDatabase.h"
#include "zemhost/library/SongFiles.h"

namespace zemhost {

class MusicLibrary {
 public:
  MusicLibrary(Host host, std::shared_ptr<const LibrarySource> source);
  // Of a database that the class has loaded. Sets the object's ResultEncode, which must stay as it is while
  // this class is used.
  explicit MusicLibrary(OpenDatabase database);

  const Host &host() const { return host_; }
  const std::shared_ptr<const LibrarySource> &source() const { return source_; }
  const player::DatabaseLocation &location() const { return source_->location(); }
  LibraryForm form() const { return source_->form(); }
  std::string volumeName() const { return source_->volumeName(); }
  // The class's object that has loaded the database; nullptr where the class has no part in it.
  const Object *object() const { return source_->object(); }

  int32_t songCount() const { return source_->songCount(); }
  int32_t playlistCount() const { return source_->playlistCount(); }

  // One song; no bounds are checked beyond the source's own, which give an empty one.
  Song song(int32_t index) const {
    Song song = source_->song(index);
    song.covers = covers_.get();
    return song;
  }
  // Its path as the class answers it, which drops characters; no file is found by that.
  std::string answeredPath(int32_t index) const { return source_->answeredPath(index); }
  const Covers &covers() const { return *covers_; }
  // Only one of its texts, as song() has it.
  std::string text(SongTextField field, int32_t index) const { return source_->text(field, index); }
  // Only these two of a song's numbers, for adding up.
  uint32_t duration(int32_t index) const { return source_->duration(index); }
  uint32_t size(int32_t index) const { return source_->size(index); }
  // A text with a number of its own, in UTF-8; none where the song has no such text. And how many there are.
  std::optional<std::string> numberedText(int32_t index, int32_t number) const {
    return source_->numberedText(index, number);
  }
  int32_t numberedTextCount(int32_t index) const { return source_->numberedTextCount(index); }
  // A song's texts as they stand in the file, read without the class.
  std::vector<player::SongText> textsInFile(int32_t index) const { return source_->textsInFile(index); }
  // The bytes of a text by which songs are grouped, and whether two songs with the same bytes are the same by
  // this text.
  std::string storedText(SongTextField field, int32_t index) const {
    return source_->storedText(field, index);
  }
  bool isSame(SongTextField by, int32_t one, int32_t other) const { return source_->isSame(by, one, other); }
  // Whether the player left counts since the last synchronisation that fit the database.
  bool hasCounts() const { return source_->hasCounts(); }
  // The chapters of a song; none for most.
  std::vector<player::Chapter> chapters(int32_t index) const { return source_->chapters(index); }
  // Its facts as of the last synchronisation, as far as they are kept apart from what the player counted
  // since.
  player::SongFacts storedFacts(int32_t index) const { return source_->storedFacts(index); }

  // The file of a song's path, whether or not it is there: the only way to one.
  SongFile file(const std::string &path) const { return files_->find(path); }
  // Opens it for reading; no descriptor, and errno, when that fails.
  carbon::Descriptor open(const SongFile &file) const { return files_->open(file); }

  // A playlist's name and entries, by its number. What Unicode cannot hold of the name adds to `lost`.
  std::string playlistName(int32_t playlist, size_t *lost = nullptr) const {
    return source_->playlistName(playlist, lost);
  }
  player::PlaylistFacts playlistFacts(int32_t playlist) const { return source_->playlistFacts(playlist); }
  // Whether the class's methods answer for it too.
  bool isAnsweredByClass(int32_t playlist) const { return source_->isAnsweredByClass(playlist); }
  int32_t entryCount(int32_t playlist) const { return source_->entryCount(playlist); }
  PlaylistEntry entry(int32_t playlist, int32_t position) const { return source_->entry(playlist, position); }
  // Only its track ID, for those that need no more of many entries.
  std::optional<int32_t> trackID(int32_t playlist, int32_t position) const {
    return source_->trackID(playlist, position);
  }
  Totals playlistTotals(int32_t playlist) const;
  // The IDs of its songs as the file has them, read without the class; none where that is all there is.
  std::optional<std::vector<uint32_t>> idsInFile(int32_t playlist) const {
    return source_->idsInFile(playlist);
  }
  // The groups of a list of podcasts; none of others, and where the library keeps none.
  std::vector<player::PodcastGroup> podcastGroups(int32_t playlist) const {
    return source_->podcastGroups(playlist);
  }

  // The zone of the last synchronisation, in seconds east of UTC.
  std::optional<int32_t> syncZone() const { return source_->syncZone(); }

 private:
  Host host_;
  std::shared_ptr<const LibrarySource> source_;
  std::shared_ptr<SongFiles> files_;  // remembers folders
  std::shared_ptr<const Covers> covers_;
};

}  // namespace zemhost
