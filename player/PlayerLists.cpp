#include "player/PlayerLists.h"

namespace player {

PlayerLists::PlayerLists(int content, const FileAccount &account, const std::filesystem::path &database,
                         const std::filesystem::path &root)
    : stored_(content, account) {
  onTheGo_ = readOnTheGo(database, root.empty() ? database.parent_path() : root, account.tracks);
  const bool isAnyThere = !onTheGo_.lists.empty() || !onTheGo_.warnings.empty();
  if (account.tracks == account.declaredTracks || !isAnyThere) return;
  onTheGo_ = {
      {},
      {database.string() +
       ": songs are missing from it, so the playlists made on the player are left out: they name songs by "
       "their places"}};
}

}  // namespace player
