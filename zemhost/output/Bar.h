#pragma once

// Bars of a chart in text.

#include <cstddef>
#include <cstdint>
#include <string>

namespace zemhost {

enum class BarStyle {
  Blocks,  // Unicode's block characters, to an eighth of a cell
  Ascii    // a '#' a cell
};

// How standard output may show bars that are written in an encoding: blocks in UTF-8, unless it is a terminal
// whose locale is not UTF-8.
BarStyle barStyle(const std::string &encoding);

// A bar of value / most of `width` cells, rounded; at least the shortest there is for a value that is not 0,
// and never more than `width`. Empty when the value or `most` is 0.
std::string barText(uint64_t value, uint64_t most, size_t width, BarStyle style);

}  // namespace zemhost
