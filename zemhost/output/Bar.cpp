#include "zemhost/output/Bar.h"

#include <algorithm>
#include <cmath>

#include "zemhost/output/Terminal.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {

BarStyle barStyle(const std::string &encoding) {
  const bool canShow = isUtf8Name(encoding) && (!terminalWidth() || isLocaleUtf8());
  return canShow ? BarStyle::Blocks : BarStyle::Ascii;
}

std::string barText(uint64_t value, uint64_t most, size_t width, BarStyle style) {
  if (value == 0 || most == 0) return {};
  const size_t parts = style == BarStyle::Blocks ? 8 : 1;  // of a cell
  const double share = std::min(1.0, static_cast<double>(value) / static_cast<double>(most));
  const auto length =
      std::max<size_t>(1, static_cast<size_t>(std::llround(share * static_cast<double>(width * parts))));
  std::string bar;
  if (style == BarStyle::Ascii) return bar.append(length, '#');
  for (size_t cell = 0; cell < length / 8; ++cell) bar += "\xE2\x96\x88";
  // From one eighth, U+258F, up to seven, U+2589.
  if (length % 8 != 0) bar.append("\xE2\x96").append(1, static_cast<char>(0x90 - length % 8));
  return bar;
}

}  // namespace zemhost
