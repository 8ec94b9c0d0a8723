#include "zemhost/library/SmartLists.h"

#include <array>
#include <chrono>
#include <ctime>
#include <utility>

#include "zemhost/library/PlaylistWords.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

std::string SmartLists::text(const player::SmartRules &rules) const {
  return rulesText(rules, [this](uint64_t id) {
    const auto list = listOf(id);
    return list ? library_.playlistName(*list) : std::string();
  });
}

player::SmartSong SmartLists::song(int32_t index) const {
  Song song = library_.song(index);
  player::SmartSong smart{library_.storedFacts(index), {}};
  if (!smart.facts.rateWord) smart.facts.rateWord = song.sampleRate << 16;
  smart.texts = {{1, std::move(song.title)}, {3, std::move(song.album)},    {4, std::move(song.artist)},
                 {5, std::move(song.genre)}, {6, std::move(song.fileType)}, {12, std::move(song.composer)}};
  if (library_.form() == LibraryForm::Desktop) return smart;  // its texts have other numbers
  for (player::SongText &text : library_.textsInFile(index))
    smart.texts.try_emplace(text.type, std::move(text.text));
  return smart;
}

std::vector<size_t> SmartLists::songsOf(int32_t playlist) const {
  std::vector<size_t> songs;
  const int32_t count = library_.entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const int32_t song = library_.entry(playlist, position).song;
    if (song >= 0) songs.push_back(static_cast<size_t>(song));
  }
  return songs;
}

std::optional<int32_t> SmartLists::listOf(uint64_t persistentId) const {
  if (!lists_) {
    lists_.emplace();
    const int32_t count = library_.playlistCount();
    for (int32_t list = 0; list < count; ++list) {
      if (const auto id = library_.playlistFacts(list).persistentId) lists_->try_emplace(*id, list);
    }
  }
  const auto found = lists_->find(persistentId);
  return found == lists_->end() ? std::nullopt : std::optional(found->second);
}

std::optional<bool> SmartLists::isIn(uint64_t persistentId, size_t song) const {
  const auto list = listOf(persistentId);
  if (!list) return std::nullopt;
  const auto [members, isNew] = members_.try_emplace(*list);
  if (isNew) {
    members->second.resize(static_cast<size_t>(library_.songCount()));
    for (const size_t one : songsOf(*list)) members->second[one] = true;
  }
  return members->second[song];
}

player::SmartResult SmartLists::evaluate(const player::SmartRules &rules, uint32_t now) const {
  player::SmartSource source;
  source.songs = static_cast<size_t>(library_.songCount());
  source.song = [this](size_t index) { return song(static_cast<int32_t>(index)); };
  source.isIn = [this](uint64_t list, size_t index) { return isIn(list, index); };
  source.fold = foldedText;
  source.now = now;
  return player::evaluate(rules, source);
}

std::optional<uint32_t> endOfDay(const std::string &day) {
  using namespace std::chrono;
  const std::string pattern = "0000-00-00";
  if (day.size() != pattern.size()) return std::nullopt;
  for (size_t i = 0; i < day.size(); ++i) {
    const bool isDigit = day[i] >= '0' && day[i] <= '9';
    if (pattern[i] == '0' ? !isDigit : day[i] != pattern[i]) return std::nullopt;
  }
  const int year = std::stoi(day.substr(0, 4));
  const auto month = static_cast<unsigned>(std::stoi(day.substr(5, 2)));
  const auto number = static_cast<unsigned>(std::stoi(day.substr(8, 2)));
  const year_month_day date{std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{number}};
  if (!date.ok()) return std::nullopt;
  const local_days start = local_days{std::chrono::year{1904} / January / 1};
  const int64_t end = duration_cast<seconds>(local_days{date} - start).count() + 86'400;
  return end > 0 && end <= UINT32_MAX ? std::optional(static_cast<uint32_t>(end)) : std::nullopt;
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 16> text{};
  (void)std::strftime(text.data(), text.size(), "%Y-%m-%d", &local);
  return text.data();
}

}  // namespace zemhost
