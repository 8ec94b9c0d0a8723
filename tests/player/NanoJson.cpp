#include <string>

#include "player/Error.h"
#include "player/SqliteLibrary.h"
#include "tests/player/Printers.h"

namespace {

using player::Json;

Json jsonOfSong(const player::SqliteSong &song) {
  Json json = player::jsonOf(song.facts);
  json.erase("id");
  json.update({{"pid", song.pid},
               {"place", player::jsonOf(song.place)},
               {"title", song.title},
               {"artist", song.artist},
               {"album", song.album},
               {"genre", song.genre},
               {"composer", song.composer},
               {"kind", song.kind},
               {"path", song.path},
               {"lossy", song.lossyTexts},
               {"recent_plays", player::jsonOf(song.facts.recentPlays)},
               {"recent_skips", player::jsonOf(song.facts.recentSkips)},
               {"sample_rate", player::jsonOf(song.sampleRate)}});
  json["texts"] = Json::array();
  for (const player::SongText &text : song.texts) json["texts"].push_back({text.type, text.text});
  json["chapters"] = Json::array();
  for (const player::Chapter &chapter : song.chapters)
    json["chapters"].push_back({chapter.start, chapter.title, player::hexOf(chapter.url)});
  return json;
}

Json jsonOfList(const player::SqliteList &list) {
  constexpr const char *kKinds[] = {"library", "ordinary", "smart", "folder"};
  Json json = {{"pid", list.pid},
               {"kind", kKinds[static_cast<size_t>(list.kind)]},
               {"name", list.name},
               {"lost", list.lost > 0},
               {"created", player::jsonOf(list.created)},
               {"modified", player::jsonOf(list.modified)},
               {"parent", player::jsonOf(list.parent)},
               {"category", player::jsonOf(list.category)},
               {"criteria", player::hexOf(list.criteria)},
               {"uses_rules", player::jsonOf(list.usesRules)},
               {"is_limited", player::jsonOf(list.isLimited)},
               {"is_live", player::jsonOf(list.isLive)},
               {"only_checked", player::jsonOf(list.onlyChecked)},
               {"reverse", player::jsonOf(list.reverse)},
               {"limit_kind", player::jsonOf(list.limitKind)},
               {"limit_order", player::jsonOf(list.limitOrder)},
               {"limit", player::jsonOf(list.limit)}};
  json["entries"] = Json::array();
  for (const player::SqliteList::Entry &entry : list.entries)
    json["entries"].push_back({entry.pid, player::jsonOf(entry.song)});
  return json;
}

}  // namespace

namespace player {

Json nanoJson(const std::string &path) {
  try {
    const player::SqliteLibrary library(player::sqliteFilesBeside(path));
    Json json = {{"version", library.version()},
                 {"has_counts", library.hasCounts()},
                 {"categories", library.categories()},
                 {"songs", Json::array()},
                 {"lists", Json::array()}};
    for (const player::SqliteSong &song : library.songs()) json["songs"].push_back(jsonOfSong(song));
    for (const player::SqliteList &list : library.lists()) json["lists"].push_back(jsonOfList(list));
    return json;
  } catch (const player::PlayerError &) {
    return {};
  }
}

}  // namespace player
