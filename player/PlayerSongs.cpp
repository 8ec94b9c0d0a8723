#include "player/PlayerSongs.h"

#include <utility>

#include "player/Error.h"
#include "player/Folder.h"

namespace player {

PlayerSongs::PlayerSongs(int content, const FileAccount &account, const DatabaseLocation &location)
    : reader_(content, account.bigEndian, account.tracksAt) {
  const std::filesystem::path counts = playCountsBeside(location.file);
  if (counts.empty()) return;
  try {
    if (!location.volumeRoot.empty()) expectInside(location.volumeRoot, counts, counts.string());
    PlayCountMerge merge(readPlayCounts(counts, reader_.count()),
                         [this](size_t song) { return reader_.facts(song); });
    if (merge.isLeftOver()) throw PlayerError(counts.string() + ": its dates are older than the database");
    merge_ = std::move(merge);
  } catch (const PlayerError &error) {
    warning_ = std::string(error.what()) + "; plays since the last synchronisation are left out";
  }
}

SongFacts PlayerSongs::facts(size_t song) const {
  const SongFacts facts = reader_.facts(song);
  return merge_ ? merge_->merged(song, facts) : facts;
}

}  // namespace player
