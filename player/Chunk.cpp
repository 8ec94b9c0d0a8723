#include "player/Chunk.h"

#include <algorithm>
#include <cstdio>

namespace player {

namespace {

constexpr uint32_t packed(std::string_view tag) {
  uint32_t number = 0;
  for (const char c : tag) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

struct KnownTag {
  uint32_t player;
  uint32_t desktop;
  Level level;
  std::string_view meaning;
};
constexpr std::array<KnownTag, kKnownKinds> kKnownTags = {
    {{packed("mhbd"), packed("hdfm"), Level::File, "file"},
     {packed("mhsd"), packed("hdsm"), Level::DataSet, "data set"},
     {packed("mhlt"), packed("htlm"), Level::List, "track list"},
     {packed("mhit"), packed("htim"), Level::Record, "track"},
     {packed("mhlp"), packed("hplm"), Level::List, "playlist list"},
     {packed("mhyp"), packed("hpim"), Level::Record, "playlist"},
     {packed("mhip"), packed("hptm"), Level::Entry, "playlist entry"},
     {packed("mhod"), packed("hohm"), Level::Object, "object"},
     {packed("mhla"), packed("halm"), Level::List, "album list"},
     {packed("mhia"), packed("haim"), Level::Record, "album"}}};

bool isLetter(char c) { return c >= 'a' && c <= 'z'; }

}  // namespace

size_t kindOf(std::string_view tag) {
  const uint32_t number = packed(tag);
  for (size_t i = 0; i < kKnownTags.size(); ++i) {
    if (number == kKnownTags[i].player || number == kKnownTags[i].desktop) return i;
  }
  return kOther;
}

Level levelOf(size_t kind, std::string_view tag) {
  if (kind != kOther) return kKnownTags[kind].level;
  return tag[2] == 'l' ? Level::List : Level::Record;
}

std::string_view meaningOf(size_t kind) { return kind == kOther ? "chunk" : kKnownTags[kind].meaning; }

std::string hex(uint64_t number) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(number));
  return text.data();
}

std::string described(const Chunk &chunk) {
  return "the " + std::string(meaningOf(chunk.kind)) + " (" + std::string(chunk.tagText()) + ") at " +
         hex(chunk.at);
}

bool isTag(std::string_view tag) {
  return std::all_of(tag.begin(), tag.end(), isLetter) &&
         (tag.starts_with("mh") || (tag[0] == 'h' && tag[3] == 'm'));
}

}  // namespace player
