#include "zemhost/library/Reconciliation.h"

#include <algorithm>

namespace zemhost {

bool Reconciliation::agrees() const {
  return differingLists.empty() &&
         std::all_of(counts.begin(), counts.end(), [](const RecordCount &count) { return count.agrees(); });
}

std::string Reconciliation::summary() const {
  for (const RecordCount &count : counts) {
    if (count.agrees()) continue;
    return std::to_string(count.declared) + " " + count.what + " are announced, " +
           std::to_string(count.found) + " found, and " + std::to_string(count.answered) + " read";
  }
  return differingLists.empty() ? std::string() : "some playlists are read with another number of entries";
}

Reconciliation reconcile(const player::FileAccount &account, const Object &object) {
  const auto number = [](const Value &value) {
    return static_cast<uint64_t>(std::max<int32_t>(value.integer(), 0));
  };
  const uint64_t songs = number(object.call("CountSongs"));
  const uint64_t playlists = number(object.call("CountPlayLists"));
  const Method entryCount = object.method("CountSongsInPlayList(playlist As Integer) As Integer");
  Reconciliation result;
  uint64_t entries = 0;
  for (uint64_t list = 0; list < playlists; ++list) {
    const uint64_t answered = number(entryCount(static_cast<int32_t>(list)));
    entries += answered;
    if (list >= account.entriesOf.size() || account.entriesOf[static_cast<size_t>(list)] != answered)
      result.differingLists.push_back(static_cast<int32_t>(list));
  }
  result.counts = {{"songs", account.declaredTracks, account.tracks, songs},
                   {"playlists", account.declaredPlaylists, account.playlists, playlists},
                   {"entries", account.declaredEntries, account.entries, entries}};
  return result;
}

}  // namespace zemhost
