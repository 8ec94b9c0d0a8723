// What the reader of a player makes of playlists, their rules, chapters and the small files beside a
// database. The first byte chooses the kind of file that follows.

#include <string>
#include <string_view>
#include <sys/mman.h>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "platform/carbon/Descriptor.h"
#include "player/Chapters.h"
#include "player/Device.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/OnTheGo.h"
#include "player/PlayerLists.h"
#include "player/SmartEvaluation.h"

namespace {

using fuzz::Require;

constexpr size_t kSongs = 3;
constexpr size_t kSettings = 72;  // bytes before the rules, where an input has both

// Each group but the first stands for one rule of an earlier one, so no walk over them goes round.
void CheckGroups(const player::SmartRules &rules, size_t bytes) {
  Require(!rules.groups.empty(), "rules without a group");
  std::vector<size_t> uses(rules.groups.size());
  size_t texts = 0;
  for (size_t i = 0; i < rules.groups.size(); ++i) {
    for (const player::SmartRule &rule : rules.groups[i].rules) {
      texts += rule.text.size();
      if (rule.group == 0) continue;
      Require(rule.group > i && rule.group < uses.size(), "a group stands before the one that holds it");
      ++uses[rule.group];
    }
    Require(i == 0 || uses[i] == 1, "a group stands for several rules, or for none");
  }
  Require(texts <= bytes / 2 * 3, "the texts are longer than the rules");
}

player::SmartSource Source() {
  player::SmartSource source;
  source.songs = kSongs;
  source.song = [](size_t place) {
    player::SmartSong song;
    song.facts.rating = static_cast<uint8_t>(20 * place);
    song.facts.plays = static_cast<uint32_t>(place);
    song.facts.duration = 60000;
    if (place == 1) song.texts.emplace(4, std::string(1, 'A'));
    return song;
  };
  source.isIn = [](uint64_t list, size_t song) -> std::optional<bool> {
    return list == 1 ? std::optional(song == 0) : std::nullopt;
  };
  source.fold = [](std::string_view text) { return std::string(text); };
  source.now = 3236155200;
  return source;
}

void CheckRules(const player::SmartRules &rules, size_t bytes) {
  CheckGroups(rules, bytes);
  const player::SmartResult result = player::evaluate(rules, Source());
  Require(result.certain.size() + result.possible.size() + result.undecided.size() <= kSongs,
          "a song is chosen twice");
  Require(!result.count || *result.count <= kSongs, "more songs than there are");
  std::vector<size_t> stored = result.certain;
  stored.insert(stored.end(), result.possible.begin(), result.possible.end());
  const player::SmartDifference same = player::difference(result, stored);
  Require(same.missing.empty() && same.extra.empty(), "what was chosen differs from itself");
}

void ReadRules(std::string_view bytes) {
  const std::string_view settings = bytes.substr(0, kSettings);
  const std::string_view criteria = bytes.substr(settings.size());
  CheckRules(player::readSmartRules(settings, criteria), criteria.size());
  CheckRules(player::readDesktopRules(settings, criteria), criteria.size());
}

void ReadPlaylists(std::string_view bytes) {
  const carbon::Descriptor file(memfd_create("input", MFD_CLOEXEC));
  Require(file.number() >= 0, "no file in memory");
  player::writeAll(file.number(), bytes);
  const player::FileAccount account = player::walkChunks(file.number());
  const player::PlayerLists lists(file.number(), account, "database", {});
  Require(lists.stored().count() == account.playlists, "a playlist was counted and is none");
  size_t entries = 0;
  for (size_t list = 0; list < lists.stored().count(); ++list) {
    const player::PlaylistFacts facts = lists.stored().facts(list);
    Require((list == 0) == (facts.kind == player::PlaylistKind::Library), "a list is not of its kind");
    if (facts.rules) CheckRules(*facts.rules, bytes.size());
    entries += lists.stored().songIds(list).size();
    for (const player::PodcastGroup &group : lists.stored().podcastGroups(list))
      entries += group.songs.size();
  }
  Require(entries <= bytes.size() / 16, "more entries than the file holds");
  player::syncZoneOf(file.number());
}

void ReadOnTheGo(std::string_view bytes) {
  try {
    Require(player::onTheGoPositions(bytes).size() <= bytes.size() / 4, "more entries than the file holds");
  } catch (const player::PlayerError &) {
    return;  // one line about what is wrong
  }
}

void ReadDevice(std::string_view bytes) {
  player::Device device;
  player::addSysInfo(bytes, device);
  player::addSysInfoExtended(bytes, device);
  player::addDeviceInfo(bytes, device);
  player::addPreferences(bytes, device);
  player::findModel(device);
  Require(device.modelNumber.size() + device.serialNumber.size() <= bytes.size() * 3,
          "texts longer than the file");
}

}  // namespace

FUZZ_TARGET(player_lists) {
  if (size == 0) return;
  const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  switch (data[0] % 5) {
    case 0:
      ReadPlaylists(bytes);
      break;
    case 1:
      ReadRules(bytes);
      break;
    case 2:
      ReadOnTheGo(bytes);
      break;
    case 3:
      ReadDevice(bytes);
      break;
    default:
      Require(player::readChapters(bytes).size() <= bytes.size() / 20, "more chapters than the bytes hold");
  }
}
