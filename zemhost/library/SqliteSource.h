#pragma once

// The library of a newest nano, as the player's own SQLite files have it. The class has no part in it.

#include <memory>

#include "player/SqliteLibrary.h"
#include "zemhost/library/LibrarySource.h"

namespace zemhost {

class SqliteSource final : public LibrarySource {
 public:
  SqliteSource(player::DatabaseLocation location, std::shared_ptr<const player::SqliteLibrary> library);

  const player::DatabaseLocation &location() const override { return location_; }
  LibraryForm form() const override { return LibraryForm::Sqlite; }
  std::string volumeName() const override;

  int32_t songCount() const override { return static_cast<int32_t>(library_->songs().size()); }
  Song song(int32_t index) const override;
  uint32_t duration(int32_t index) const override;
  uint32_t size(int32_t index) const override;
  std::optional<std::string> numberedText(int32_t index, int32_t number) const override;
  int32_t numberedTextCount(int32_t index) const override;
  std::vector<player::SongText> textsInFile(int32_t index) const override;
  std::string storedText(SongTextField field, int32_t index) const override;
  bool isSame(SongTextField by, int32_t one, int32_t other) const override;
  bool hasCounts() const override { return library_->hasCounts(); }
  std::vector<player::Chapter> chapters(int32_t index) const override { return record(index).chapters; }
  player::SongFacts storedFacts(int32_t index) const override { return record(index).facts; }

  int32_t playlistCount() const override { return static_cast<int32_t>(library_->lists().size()); }
  std::string playlistName(int32_t playlist, size_t *lost) const override;
  player::PlaylistFacts playlistFacts(int32_t playlist) const override;
  bool isAnsweredByClass(int32_t /*playlist*/) const override { return false; }
  int32_t entryCount(int32_t playlist) const override;
  PlaylistEntry entry(int32_t playlist, int32_t position) const override;

 private:
  const player::SqliteSong &record(int32_t index) const;
  const player::SqliteList &list(int32_t playlist) const;

  player::DatabaseLocation location_;
  std::shared_ptr<const player::SqliteLibrary> library_;
};

}  // namespace zemhost
