#pragma once

// A library together with the music files of its player that no song of it names, as songs behind its own:
// what is known of them is what their tags say.

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "zemhost/library/LibrarySource.h"
#include "zemhost/library/SongFiles.h"

namespace zemhost {

class UnnamedSongs final : public LibrarySource {
 public:
  // Without a library (null) all music files of the player count as unnamed. `location` is the library's, or
  // one of the player.
  UnnamedSongs(std::shared_ptr<const LibrarySource> library, player::DatabaseLocation location);

  size_t unnamedCount() const { return unnamed_.size(); }
  // The folders that cannot be read, a line each; and the files of the music folder that are left out, since
  // their extension is of neither music nor video.
  const std::vector<std::string> &problems() const { return problems_; }
  const std::vector<std::string> &remarks() const { return remarks_; }

  const player::DatabaseLocation &location() const override { return location_; }
  LibraryForm form() const override { return library_ ? library_->form() : LibraryForm::Player; }
  std::string volumeName() const override;
  const Object *object() const override { return library_ ? library_->object() : nullptr; }

  int32_t songCount() const override { return named_ + static_cast<int32_t>(unnamed_.size()); }
  Song song(int32_t index) const override;
  uint32_t duration(int32_t index) const override { return song(index).duration; }
  uint32_t size(int32_t index) const override { return song(index).size; }
  std::optional<std::string> numberedText(int32_t index, int32_t number) const override;
  int32_t numberedTextCount(int32_t index) const override;
  std::vector<player::SongText> textsInFile(int32_t index) const override;
  std::string storedText(SongTextField field, int32_t index) const override;
  bool isSame(SongTextField by, int32_t one, int32_t other) const override;
  bool hasCounts() const override { return library_ && library_->hasCounts(); }
  player::SongFacts storedFacts(int32_t index) const override;
  std::string answeredPath(int32_t index) const override;
  std::vector<player::Chapter> chapters(int32_t index) const override;

  int32_t playlistCount() const override { return library_ ? library_->playlistCount() : 0; }
  std::string playlistName(int32_t playlist, size_t *lost) const override {
    return library_->playlistName(playlist, lost);
  }
  player::PlaylistFacts playlistFacts(int32_t playlist) const override {
    return library_->playlistFacts(playlist);
  }
  bool isAnsweredByClass(int32_t playlist) const override { return library_->isAnsweredByClass(playlist); }
  int32_t entryCount(int32_t playlist) const override { return library_->entryCount(playlist); }
  PlaylistEntry entry(int32_t playlist, int32_t position) const override {
    return library_->entry(playlist, position);
  }
  std::optional<std::vector<uint32_t>> idsInFile(int32_t playlist) const override {
    return library_->idsInFile(playlist);
  }
  std::vector<player::PodcastGroup> podcastGroups(int32_t playlist) const override {
    return library_->podcastGroups(playlist);
  }
  std::optional<int32_t> syncZone() const override { return library_ ? library_->syncZone() : std::nullopt; }

 private:
  struct Unnamed {
    Song song;
    std::string albumArtist;
  };

  std::set<std::string> filesOfPlayer(const std::string &root);
  static Unnamed unnamedOf(const std::string &below, SongFiles &files);
  bool isNamed(int32_t index) const { return index < named_; }
  const Unnamed &unnamed(int32_t index) const { return unnamed_[static_cast<size_t>(index - named_)]; }

  std::shared_ptr<const LibrarySource> library_;
  player::DatabaseLocation location_;
  std::vector<std::string> problems_;
  std::vector<std::string> remarks_;
  int32_t named_ = 0;
  std::vector<Unnamed> unnamed_;  // in the order of their paths
  // The library's song that was asked for last, and its place: who plans a copy asks twice.
  mutable std::pair<int32_t, Song> last_{-1, {}};
};

}  // namespace zemhost
