// Does one work of each kind between marks that callgrind understands, so that the instructions of each can
// be counted; bench/count_instructions.py runs it. Without callgrind the marks do nothing.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <valgrind/callgrind.h>

#include "bench/BareHost.h"
#include "bench/Libraries.h"
#include "db/CiTunesDB.h"
#include "unicode/ZemUnicode.h"

namespace {

constexpr uint32_t kLoaded = 1000;
constexpr int32_t kCalls = 10000;  // so many that it does not matter where the IDs' slots happen to fall
constexpr int32_t kFirstID = 52;   // the IDs of the generated songs are every other number from here
constexpr int32_t kUTF8 = 0x08000100;
constexpr int32_t kUTF16 = 0x0100;

// The work is done once before it is counted: the dynamic linker has then found what it calls.
template <typename Work>
void Count(const char *name, Work work) {
  work();
  CALLGRIND_ZERO_STATS;
  CALLGRIND_TOGGLE_COLLECT;
  work();
  CALLGRIND_TOGGLE_COLLECT;
  CALLGRIND_DUMP_STATS_AT(name);
}

void Load(bench::Instance &instance, uint32_t songs, bench::Texts texts) {
  if (!instance.Load(bench::Item(bench::LibraryFile(songs, texts)))) std::abort();
}

void CountLoads() {
  using bench::Texts;
  const auto count = [](Texts texts, uint32_t songs, const std::string &more) {
    Count(("Load " + std::string(bench::NameOf(texts)) + more).c_str(), [=] {
      bench::Instance instance;
      Load(instance, songs, texts);
    });
  };
  for (const Texts texts :
       {Texts::kUsual, Texts::kBigEndian, Texts::kDistinct, Texts::kHostile, Texts::kCrafted}) {
    count(texts, kLoaded, "");
    if (texts == Texts::kHostile || texts == Texts::kCrafted)
      count(texts, 4 * kLoaded, ", 4 times the songs");
  }
}

void CountCalls() {
  bench::Instance instance;
  Load(instance, uint32_t{kCalls}, bench::Texts::kUsual);
  const auto integers = [&](const char *name, const char *declaration, int32_t first, int32_t step) {
    const auto method = bench::Method<int32_t, int32_t>(declaration);
    Count(name, [&] {
      for (int32_t i = 0; i < kCalls; ++i) method(instance.get(), first + step * i);
    });
  };
  integers("GetDuration by index", "GetDuration(index As Integer) As Integer", 0, 1);
  integers("GetReferDuration", "GetReferDuration(trackID As Integer) As Integer", kFirstID, 2);
  integers("GetReferDuration unknown", "GetReferDuration(trackID As Integer) As Integer", kFirstID + 1, 2);

  const auto ofEntry = bench::Method<int32_t, int32_t, int32_t>(
      "GetDuration(playlist As Integer, index As Integer) As Integer");
  Count("GetDuration by entry", [&] {
    for (int32_t i = 0; i < kCalls; ++i) ofEntry(instance.get(), 0, i);
  });

  const auto texts = [&](const char *name, const char *declaration, int32_t encode, bool useSJIS) {
    instance.Set("ResultEncode", encode);
    instance.Set("UseSJIS", useSJIS ? 1 : 0);
    const auto method = bench::Method<REALstring, int32_t>(declaration);
    Count(name, [&] {
      for (int32_t i = 0; i < kCalls; ++i) method(instance.get(), i);
    });
  };
  texts("GetTitle as UTF-8", "GetTitle(index As Integer) As String", kUTF8, false);
  texts("GetTitle as UTF-16", "GetTitle(index As Integer) As String", kUTF16, false);
  texts("GetTitle as Shift_JIS", "GetTitle(index As Integer) As String", kUTF8, true);
  texts("GetPath", "GetPath(index As Integer) As String", kUTF8, false);
}

void CountConversion() {
  constexpr std::u16string_view kLine = u"夜空に咲く花火 Fireworks in the night sky 1999 ";
  constexpr size_t kLines = 400;
  std::string text;
  for (size_t i = 0; i < kLines; ++i) {
    for (const char16_t unit : kLine) {
      text.push_back(static_cast<char>(unit >> 8));
      text.push_back(static_cast<char>(unit & 0xFF));
    }
  }
  constexpr int32_t kFromLittleEndianFile = 16777216;
  Count("Shift_JIS, one long text", [&] { ConvSJIS(text, kFromLittleEndianFile); });
}

}  // namespace

int main() {
  CountLoads();
  CountCalls();
  CountConversion();
  std::cout << "done\n";
}
