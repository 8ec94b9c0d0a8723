// Throughput of the Shift_JIS conversion beside the system's iconv, on the same texts. Bytes are bytes of
// input.

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iconv.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "unicode/ZemUnicode.h"

namespace {

constexpr std::size_t kTitles = 4096;
constexpr std::size_t kTitleUnits = 12;
constexpr std::size_t kLongUnits = 1U << 20;
constexpr std::int32_t kLittleEndianFile = 16777216;

enum class Script { kJapanese, kMixed, kAscii };

// Repeatable text, UTF-16 with the high byte first, of characters that both converters know.
std::string Text(Script script, std::size_t units, std::mt19937 &random) {
  constexpr std::u16string_view kAscii = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz 0123456789";
  constexpr std::u16string_view kKanji =
      u"愛雨夢花空夜星海風月心恋涙光道君僕明日旅人時東京物語桜色歌声春夏秋冬";
  std::string text;
  for (std::size_t i = 0; i < units; ++i) {
    char16_t unit = kAscii[random() % kAscii.size()];
    if (script == Script::kJapanese || (script == Script::kMixed && random() % 2 == 0)) {
      unit = random() % 2 == 0 ? kKanji[random() % kKanji.size()]
                               : static_cast<char16_t>(0x3042 + random() % 0x50);
    }
    text.push_back(static_cast<char>(unit >> 8));
    text.push_back(static_cast<char>(unit & 0xFF));
  }
  return text;
}

std::vector<std::string> Texts(Script script, std::size_t count, std::size_t units) {
  std::mt19937 random(1904);
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < count; ++i) texts.push_back(Text(script, units, random));
  return texts;
}

template <typename Convert>
void Measure(benchmark::State &state, Script script, bool longText, Convert convert) {
  const std::vector<std::string> texts =
      longText ? Texts(script, 1, kLongUnits) : Texts(script, kTitles, kTitleUnits);
  std::vector<char> out(texts[0].size() + 1);
  for (auto _ : state) {
    for (const std::string &text : texts) {
      benchmark::DoNotOptimize(convert(text, out));
      benchmark::ClobberMemory();
    }
  }
  const auto converted = state.iterations() * static_cast<std::int64_t>(texts.size());
  state.SetBytesProcessed(converted * static_cast<std::int64_t>(texts[0].size()));
  state.SetItemsProcessed(converted);
}

void Ours(benchmark::State &state, Script script, bool longText) {
  Measure(state, script, longText, [](const std::string &text, std::vector<char> &) {
    return ConvSJIS(text, kLittleEndianFile).View().size();
  });
}

void Iconv(benchmark::State &state, Script script, bool longText) {
  iconv_t converter = iconv_open("SJIS", "UTF-16BE");
  Measure(state, script, longText, [&converter](const std::string &text, std::vector<char> &out) {
    // iconv takes its input as not const and leaves it alone.
    char *in = const_cast<char *>(text.data());
    char *end = out.data();
    std::size_t inLeft = text.size();
    std::size_t outLeft = out.size();
    if (iconv(converter, &in, &inLeft, &end, &outLeft) != 0) std::abort();
    return end - out.data();
  });
  iconv_close(converter);
}

BENCHMARK_CAPTURE(Iconv, japanese_titles, Script::kJapanese, false);
BENCHMARK_CAPTURE(Ours, japanese_titles, Script::kJapanese, false);
BENCHMARK_CAPTURE(Iconv, mixed_titles, Script::kMixed, false);
BENCHMARK_CAPTURE(Ours, mixed_titles, Script::kMixed, false);
BENCHMARK_CAPTURE(Iconv, ascii_titles, Script::kAscii, false);
BENCHMARK_CAPTURE(Ours, ascii_titles, Script::kAscii, false);
BENCHMARK_CAPTURE(Iconv, japanese_text, Script::kJapanese, true);
BENCHMARK_CAPTURE(Ours, japanese_text, Script::kJapanese, true);
BENCHMARK_CAPTURE(Iconv, mixed_text, Script::kMixed, true);
BENCHMARK_CAPTURE(Ours, mixed_text, Script::kMixed, true);
BENCHMARK_CAPTURE(Iconv, ascii_text, Script::kAscii, true);
BENCHMARK_CAPTURE(Ours, ascii_text, Script::kAscii, true);

}  // namespace
