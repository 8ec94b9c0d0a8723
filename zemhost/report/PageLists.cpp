#include "zemhost/report/PageLists.h"

#include <map>
#include <utility>
#include <vector>

#include "zemhost/library/ListedSongs.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/library/PodcastGroups.h"
#include "zemhost/library/SmartLists.h"
#include "zemhost/report/PageJson.h"

namespace zemhost {

namespace {

// The folder that each playlist lies in, by number; -1: none. A folder that lies in itself, by whatever way,
// lies in none.
std::vector<int32_t> foldersOf(const std::vector<player::PlaylistFacts> &lists) {
  std::map<uint64_t, int32_t> numbers;  // of folders, by persistent ID
  for (size_t list = 0; list < lists.size(); ++list) {
    if (lists[list].kind == player::PlaylistKind::Folder && lists[list].persistentId)
      numbers.try_emplace(*lists[list].persistentId, static_cast<int32_t>(list));
  }
  std::vector<int32_t> folders(lists.size(), -1);
  for (size_t list = 0; list < lists.size(); ++list) {
    const auto found = lists[list].folder ? numbers.find(*lists[list].folder) : numbers.end();
    if (found != numbers.end()) folders[list] = found->second;
  }
  // Each list is walked up from once; one that meets its own walk closes a ring, which is opened there.
  std::vector<size_t> walkOf(lists.size());  // 0: none yet
  for (size_t start = 0; start < lists.size(); ++start) {
    size_t list = start;
    while (walkOf[list] == 0) {
      walkOf[list] = start + 1;
      if (folders[list] < 0) break;
      const auto up = static_cast<size_t>(folders[list]);
      if (walkOf[up] == start + 1) folders[list] = -1;
      list = up;
    }
  }
  return folders;
}

std::string indexes(const std::vector<int32_t> &songs, const SongSelection &selection) {
  std::string json = "[";
  for (const int32_t song : songs) {
    if (json.size() > 1) json += ',';
    const std::optional<size_t> place = selection.placeOf(song);
    json += place ? std::to_string(*place) : "-1";
  }
  return json + "]";
}

// Episodes by the names of their podcasts, in the order in which the names come.
class Podcasts {
 public:
  explicit Podcasts(const SongSelection &selection)
      : selection_(selection), isTaken_(selection.songs().size()) {}

  void add(const std::string &name, int32_t song) {
    const std::optional<size_t> place = selection_.placeOf(song);
    if (!place || isTaken_[*place]) return;
    isTaken_[*place] = true;
    const auto [found, isNew] = numbers_.try_emplace(name, names_.size());
    if (isNew) {
      names_.push_back(name);
      episodes_.emplace_back();
    }
    episodes_[found->second].push_back(song);
  }

  std::string json(const Privacy &privacy) const {
    std::vector<std::string> podcasts;
    for (size_t i = 0; i < names_.size(); ++i) {
      podcasts.push_back(joined({member("name", pageJson(privacy.text(names_[i]))),
                                 member("episodes", indexes(episodes_[i], selection_))},
                                "{}"));
    }
    return joined(podcasts, "[]");
  }

 private:
  const SongSelection &selection_;
  std::vector<bool> isTaken_;
  std::map<std::string, size_t> numbers_;
  std::vector<std::string> names_;
  std::vector<std::vector<int32_t>> episodes_;
};

}  // namespace

std::string pagePlaylistName(const MusicLibrary &library, int32_t playlist, const Privacy &privacy) {
  const bool isOfAll = library.playlistFacts(playlist).kind == player::PlaylistKind::Library;
  return privacy.isAsked() && isOfAll ? "Library" : privacy.text(library.playlistName(playlist));
}

std::string pagePlaylists(const MusicLibrary &library, const SongSelection &selection, int32_t chosen,
                          const Privacy &privacy) {
  std::vector<player::PlaylistFacts> lists;
  lists.reserve(static_cast<size_t>(library.playlistCount()));
  for (int32_t list = 0; list < library.playlistCount(); ++list) lists.push_back(library.playlistFacts(list));
  const std::vector<int32_t> folders = foldersOf(lists);
  const SmartLists smart(library);
  std::vector<std::string> playlists;
  for (int32_t list = 0; list < library.playlistCount(); ++list) {
    if (chosen >= 0 && list != chosen) continue;
    const player::PlaylistFacts &facts = lists[static_cast<size_t>(list)];
    const int32_t folder = chosen < 0 ? folders[static_cast<size_t>(list)] : -1;
    const std::optional<int64_t> created = daysOf(facts.created);
    const auto songs = chosen < 0 ? storedSongs(library, list) : listedSongs(library, list);
    const std::string rules = facts.rules ? pageJson(privacy.text(smart.text(*facts.rules))) : "null";
    playlists.push_back(
        joined({member("name", pageJson(pagePlaylistName(library, list, privacy))),
                member("kind", pageJson(playlistKindText(facts.kind))), member("rules", rules),
                member("parent", folder < 0 ? "null" : std::to_string(folder)),
                member("songs", indexes(songs, selection)),
                member("created", created ? std::to_string(*created) : "null")},
               "{}"));
  }
  return joined(playlists, "[]");
}

std::string pagePodcasts(const MusicLibrary &library, const SongSelection &selection,
                         const Privacy &privacy) {
  constexpr uint32_t kPodcast = 4;  // among the bits of a media type
  Podcasts podcasts(selection);
  for (int32_t list = 0; list < library.playlistCount(); ++list) {
    if (library.playlistFacts(list).kind != player::PlaylistKind::Podcasts) continue;
    for (const EntryGroup &group : entryGroups(library, list)) {
      for (const int32_t position : group.positions) {
        const int32_t song = library.entry(list, position).song;
        if (song < 0) continue;
        podcasts.add(group.name.empty() ? library.text(SongTextField::Album, song) : group.name, song);
      }
    }
  }
  for (const int32_t index : selection.songs()) {
    const Song song = library.song(index);
    if ((song.facts.mediaType.value_or(0) & kPodcast) != 0) podcasts.add(song.album, index);
  }
  return podcasts.json(privacy);
}

}  // namespace zemhost
