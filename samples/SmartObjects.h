// Writes the rules of smart playlists, and the small files that stand beside a player's database.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "samples/DatabaseWriter.h"

namespace samples {

// What the rules of a list are used for, with the numbers that players have for units and orders.
struct SmartSettings {
  bool live = true;
  bool useRules = true;
  bool limited = false;
  uint8_t unit = 3;    // songs
  uint32_t order = 2;  // at random
  uint32_t limit = 25;
  bool onlyChecked = false;
  bool reversed = false;
};

// One rule: `text` when the action is one of texts, else the two values.
struct SmartRule {
  uint32_t field = 0;
  uint32_t action = 0;
  std::u16string text{};
  struct Value {
    uint64_t value = 0;
    int64_t date = 0;
    uint64_t unit = 1;
  };
  Value from{};
  Value to{};
  std::vector<SmartRule> group{};  // when there are any they stand for the rule
  bool any = false;                // how these are joined
};

// Stands for the day on which rules are looked at.
constexpr uint64_t kSmartNow = 0x2dae2dae2dae2dae;

// A group of rules, all or any of which must hold: the bytes from "SLst" on, of either variant.
std::string SmartCriteria(const std::vector<SmartRule> &rules, bool any = false);

// The two objects that make a list smart.
std::vector<DataObject> SmartObjects(Variant variant, const SmartSettings &settings,
                                     const std::vector<SmartRule> &rules, bool any = false);

// The file OTGPlaylistInfo of a list made on the player, from the positions of its songs.
std::string OnTheGoFile(const std::vector<uint32_t> &positions, Variant variant = Variant::LittleEndian);

// The file DeviceInfo with up to three names: of the player, its user and the computer.
std::string DeviceInfoFile(const std::vector<std::u16string> &names);

// One chapter of a song, with its beginning in milliseconds, and the object that holds them.
struct ChapterMark {
  uint32_t start = 0;
  std::u16string title{};
  std::string url{};
};
DataObject ChapterObject(const std::vector<ChapterMark> &chapters);
// The same without the object around it, as the newest nanos have it.
std::string ChapterAtoms(const std::vector<ChapterMark> &chapters);

}  // namespace samples
