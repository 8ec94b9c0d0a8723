// An entry of an M3U list: four bytes of duration, then artist, title and path. Whatever these hold, a reader
// finds a heading and two lines for the song, the second of which is its path and no comment.

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "fuzz/Texts.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/M3u.h"

namespace {

using fuzz::Require;

// The lines as the readers split them that honour most kinds of line ends.
std::vector<std::u32string> CodePointLines(const std::string &text) {
  std::vector<std::u32string> lines(1);
  for (const char32_t c : fuzz::CodePoints(text)) {
    const bool ends = (c >= '\n' && c <= '\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
    if (ends) {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

}  // namespace

FUZZ_TARGET(m3u) {
  if (size < 4) return;
  const uint32_t duration =
      uint32_t{data[0]} << 24 | uint32_t{data[1]} << 16 | uint32_t{data[2]} << 8 | uint32_t{data[3]};
  std::vector<std::string> parts = fuzz::PartsOf({reinterpret_cast<const char *>(data) + 4, size - 4});
  parts.resize(3);
  // Texts of a library are valid by the time they come here; those that are empty have no line.
  for (std::string &part : parts) part = zemhost::composedText(part);
  if (parts[2].empty()) return;
  const std::string list =
      zemhost::m3uHeading() + zemhost::m3uEntry({duration, parts[0], parts[1], parts[2]});
  const std::vector<std::u32string> lines = CodePointLines(list);
  Require(lines.size() == 4 && lines[3].empty() && list.ends_with('\n'), "not two lines and a heading");
  Require(lines[0] == U"#EXTM3U", "no heading");
  const std::string heading(lines[1].begin(),
                            lines[1].begin() + std::min<ptrdiff_t>(20, std::ssize(lines[1])));
  Require(heading.starts_with("#EXTINF:"), "no line of what the song is");
  const char *const number = heading.data() + 8;
  int64_t seconds = 0;
  const auto [end, error] = std::from_chars(number, heading.data() + heading.size(), seconds);
  Require(error == std::errc() && *end == ',', "no number of seconds");
  Require(seconds == (duration == 0 ? -1 : (int64_t{duration} + 500) / 1000), "other seconds");
  const std::u32string &path = lines[2];
  Require(!path.empty() && path[0] != '#' && path[0] != ' ', "a path that reads as something else");
  Require(std::none_of(path.begin(), path.end(), [](char32_t c) { return c < ' ' || c == 0x7F; }),
          "a control character in a path");
}
