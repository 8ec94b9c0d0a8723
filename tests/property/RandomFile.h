// Database files as no player would write them, and as players do.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "samples/GeneratedLibrary.h"

namespace property {

// A value drawn from a list.
template <typename List>
const auto &Pick(samples::Random &random, const List &list) {
  return list[random.Below(static_cast<uint32_t>(std::size(list)))];
}

// Track IDs that files and questions share, so that they meet: zero, negative and extreme ones among them.
int32_t SomeTrackID(samples::Random &random);

// Any 32-bit word, more often than not a hostile one.
uint32_t SomeWord(samples::Random &random);

// A few bytes of text in no particular encoding; equal ones come again and again.
std::string SomeBytes(samples::Random &random);

// A whole file of either variant, in pieces: every chunk's header, and every data object, is one of its own.
std::vector<std::string> SomeFile(samples::Random &random);

}  // namespace property
