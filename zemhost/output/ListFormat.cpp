#include "zemhost/output/ListFormat.h"

#include <algorithm>
#include <array>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/M3u.h"
#include "zemhost/output/Xspf.h"

namespace zemhost {

namespace {

std::string m3uBeginning(std::string_view name, std::string_view remark) {
  std::string text = m3uHeading();
  if (!remark.empty()) text.append("# ").append(remark).append("\n");
  return name.empty() ? text : text + "#PLAYLIST:" + safeText(name) + "\n";
}

std::string noEnd() { return {}; }

bool isM3uPath(std::string_view line) { return !line.empty() && line.front() != '#'; }

bool isXspfPath(std::string_view line) {
  return line.substr(std::min(line.find_first_not_of(' '), line.size())).starts_with("<location>");
}

constexpr std::array<ListFormat, 2> kFormats = {
    {{"m3u8", ".m3u8", m3uBeginning, m3uEntry, noEnd, isM3uPath},
     {"xspf", ".xspf", xspfHeading, xspfEntry, xspfEnd, isXspfPath}}};

}  // namespace

const ListFormat *listFormatNamed(std::string_view name) {
  const auto *const found = std::find_if(kFormats.begin(), kFormats.end(),
                                         [&](const ListFormat &format) { return format.name == name; });
  return found == kFormats.end() ? nullptr : found;
}

}  // namespace zemhost
