#include "zemhost/output/Units.h"

#include <array>
#include <chrono>
#include <cstdarg>
#include <cstdio>

namespace zemhost {

namespace {

[[gnu::format(printf, 1, 2)]] std::string formatted(const char *format, ...) {
  std::array<char, 64> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text.data();
}

std::string clockText(uint64_t seconds) {
  const auto hours = static_cast<unsigned long long>(seconds / 3600);
  const auto minutes = static_cast<unsigned>(seconds / 60 % 60);
  const auto rest = static_cast<unsigned>(seconds % 60);
  if (hours != 0) return formatted("%llu:%02u:%02u", hours, minutes, rest);
  return formatted("%u:%02u", minutes, rest);
}

}  // namespace

std::string durationText(uint32_t milliseconds) {
  return milliseconds == 0 ? std::string() : clockText(milliseconds / 1000);
}

std::string totalTimeText(uint64_t milliseconds) {
  constexpr uint64_t kDay = 86'400;
  const uint64_t seconds = milliseconds / 1000;
  const auto days = static_cast<unsigned long long>(seconds / kDay);
  if (days == 0) return clockText(seconds);
  const auto hours = static_cast<unsigned>(seconds % kDay / 3600);
  const auto minutes = static_cast<unsigned>(seconds / 60 % 60);
  const auto rest = static_cast<unsigned>(seconds % 60);
  return formatted("%llu %s %u:%02u:%02u", days, days == 1 ? "day" : "days", hours, minutes, rest);
}

std::string sizeText(uint64_t bytes) { return bytes == 0 ? std::string() : totalSizeText(bytes); }

std::string totalSizeText(uint64_t bytes) {
  if (bytes < 1000) return formatted("%u B", static_cast<unsigned>(bytes));
  const auto value = static_cast<double>(bytes);
  // The limits are where rounding to the decimals shown would reach the next unit.
  if (value < 999'950) return formatted("%.1f kB", value / 1e3);
  if (value < 999'950'000) return formatted("%.1f MB", value / 1e6);
  return formatted("%.2f GB", value / 1e9);
}

std::string bitRateText(uint32_t kilobitsPerSecond) {
  return kilobitsPerSecond == 0 ? std::string() : numberText(kilobitsPerSecond) + " kbit/s";
}

std::string sampleRateText(uint32_t hertz) {
  if (hertz == 0) return {};
  std::string text = numberText(hertz / 1000);
  if (hertz % 1000 != 0) {
    text += formatted(".%03u", hertz % 1000);
    text.erase(text.find_last_not_of('0') + 1);
  }
  return text + " kHz";
}

std::string dateText(uint32_t secondsSince1904) {
  using namespace std::chrono;
  if (secondsSince1904 == 0) return {};
  const local_seconds moment = local_days{year{1904} / January / 1} + seconds{secondsSince1904};
  const auto midnight = floor<days>(moment);
  const year_month_day date{midnight};
  return formatted("%04d-%02u-%02u %02u:%02u:%02u", static_cast<int>(date.year()),
                   static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                   static_cast<unsigned>((moment - midnight) / 1h),
                   static_cast<unsigned>((moment - midnight) / 1min % 60),
                   static_cast<unsigned>((moment - midnight) / 1s % 60));
}

std::string mediaKindText(uint32_t bits) {
  struct MediaKind {
    uint32_t bits;
    const char *name;
  };
  // Two bits with one meaning come first.
  static constexpr std::array<MediaKind, 15> kKinds = {{{0x6, "video podcast"},
                                                        {0x1, "music"},
                                                        {0x2, "film"},
                                                        {0x4, "podcast"},
                                                        {0x8, "audiobook"},
                                                        {0x20, "music video"},
                                                        {0x40, "TV show"},
                                                        {0x400, "home video"},
                                                        {0x1000, "game"},
                                                        {0x4000, "ringtone"},
                                                        {0x8000, "rental"},
                                                        {0x10000, "booklet"},
                                                        {0x20000, "app"},
                                                        {0x100000, "voice memo"},
                                                        {0x200000, "lecture"}}};
  constexpr uint32_t kBook = 0xC00000;
  std::string text;
  const auto add = [&text](const std::string &name) { text += (text.empty() ? "" : ", ") + name; };
  for (const MediaKind &kind : kKinds) {
    if ((bits & kind.bits) != kind.bits) continue;
    add(kind.name);
    bits &= ~kind.bits;
  }
  if ((bits & kBook) != 0) add("book");
  bits &= ~kBook;
  if (bits != 0) add(formatted("0x%x", bits));
  return text;
}

std::string ratingText(uint32_t rating) {
  return std::string(rating / 20, '*') + (rating % 20 >= 10 ? "½" : "");
}

std::string numberText(uint32_t number) { return std::to_string(number); }

std::string countText(uint64_t count, const std::string &singular, const std::string &plural) {
  return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

}  // namespace zemhost
