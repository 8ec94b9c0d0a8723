#include <fcntl.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/Device.h"
#include "player/PlayerLists.h"
#include "player/PlayerSongs.h"
#include "player/SmartEvaluation.h"
#include "tests/player/Printers.h"

namespace {

using player::Json;
using player::jsonOf;

Json jsonOf(const player::RuleValue &value) { return Json::array({value.value, value.date, value.unit}); }

constexpr uint32_t kNoon = 3236155200;  // on a day of 2006, when rules are looked at

Json jsonOf(const player::SmartRules &rules) {
  Json groups = Json::array();
  for (const player::RuleGroup &group : rules.groups) {
    Json list = Json::array();
    for (const player::SmartRule &rule : group.rules) {
      list.push_back({{"field", rule.field},
                      {"action", rule.action},
                      {"text", rule.text},
                      {"from", jsonOf(rule.from)},
                      {"to", jsonOf(rule.to)},
                      {"group", rule.group}});
    }
    groups.push_back({{"any", group.isAny}, {"cut", group.isCut}, {"rules", list}});
  }
  return {{"live", rules.isLive},
          {"uses_rules", rules.usesRules},
          {"limited", rules.isLimited},
          {"unit", static_cast<int>(rules.limitUnit)},
          {"order", static_cast<int>(rules.limitOrder)},
          {"limit", rules.limit},
          {"only_checked", rules.onlyChecked},
          {"reversed", rules.isReversed},
          {"groups", groups}};
}

// ASCII is enough for a comparison of two readers.
std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char &c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return lower;
}

class Library {
 public:
  explicit Library(const std::string &path)
      : path_(path),
        file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)),
        account_(player::walkChunks(file_.number())),
        songs_(file_.number(), account_, player::locateDatabase(path)),
        lists_(file_.number(), account_, path, {}) {}

  Json json() const {
    Json lists = Json::array();
    for (size_t i = 0; i < lists_.stored().count(); ++i) lists.push_back(listJson(i));
    Json made = Json::array();
    for (const player::OnTheGoList &list : lists_.onTheGo()) made.push_back({list.number, list.songs});
    Json chapters = Json::array();
    for (size_t i = 0; i < songs_.count(); ++i) {
      Json song = Json::array();
      for (const player::Chapter &chapter : songs_.chapters(i))
        song.push_back({chapter.start, chapter.title, chapter.url});
      chapters.push_back(std::move(song));
    }
    return {{"songs_at", account_.tracksAt},
            {"announced", account_.declaredTracks},
            {"grouped_at", account_.groupedListsAt},
            {"lists", lists},
            {"on_the_go", made},
            {"warnings", lists_.warnings().size()},
            {"chapters", chapters},
            {"device", deviceJson()}};
  }

 private:
  Json listJson(size_t place) const {
    const player::PlaylistFacts facts = lists_.stored().facts(place);
    Json podcasts = Json::array();
    for (const player::PodcastGroup &group : lists_.stored().podcastGroups(place))
      podcasts.push_back({group.name, group.songs});
    return {{"at", account_.playlistsAt[place]},
            {"kind", static_cast<int>(facts.kind)},
            {"created", jsonOf(facts.created)},
            {"modified", jsonOf(facts.modified)},
            {"sort_order", jsonOf(facts.sortOrder)},
            {"persistent_id", jsonOf(facts.persistentId)},
            {"folder", jsonOf(facts.folder)},
            {"songs", lists_.stored().songIds(place)},
            {"podcasts", podcasts},
            {"rules", facts.rules ? jsonOf(*facts.rules) : Json()},
            {"chosen", facts.rules ? chosen(*facts.rules) : Json()}};
  }

  std::optional<bool> isIn(uint64_t id, size_t song) const {
    for (size_t i = 0; i < lists_.stored().count(); ++i) {
      if (lists_.stored().facts(i).persistentId != id) continue;
      for (const uint32_t one : lists_.stored().songIds(i)) {
        if (one == songs_.storedFacts(song).id) return true;
      }
      return false;
    }
    return std::nullopt;
  }

  Json chosen(const player::SmartRules &rules) const {
    player::SmartSource source;
    source.songs = songs_.count();
    source.song = [this](size_t place) {
      player::SmartSong song{songs_.storedFacts(place), {}};
      for (player::SongText &text : songs_.texts(place))
        song.texts.try_emplace(account_.bigEndian && text.type == 2 ? 1 : text.type, std::move(text.text));
      return song;
    };
    source.isIn = [this](uint64_t list, size_t song) { return isIn(list, song); };
    source.fold = lowered;
    source.now = kNoon;
    const player::SmartResult result = player::evaluate(rules, source);
    return {{"certain", result.certain},
            {"possible", result.possible},
            {"undecided", result.undecided},
            {"count", jsonOf(result.count)},
            {"depends_on_day", player::dependsOnDay(rules)}};
  }

  Json deviceJson() const {
    const player::Device device =
        player::readDevice(std::filesystem::path(path_).parent_path().parent_path().parent_path());
    return {{"model_number", device.modelNumber},
            {"model", device.model ? Json(device.model->text()) : Json()},
            {"serial", device.serialNumber},
            {"firmware", device.firmware},
            {"name", device.name},
            {"user", device.user},
            {"computer", device.computer},
            {"clock_zone", jsonOf(device.clockZone)},
            {"sync_zone", jsonOf(player::syncZoneOf(file_.number()))},
            {"files", device.files},
            {"warnings", device.warnings.size()}};
  }

  std::string path_;
  carbon::Descriptor file_;
  player::FileAccount account_;
  player::PlayerSongs songs_;
  player::PlayerLists lists_;
};

}  // namespace

namespace player {

Json listsJson(const std::string &path) { return Library(path).json(); }

}  // namespace player
