#pragma once

// Values of a library as exports hold them.

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "host/Host.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

// Words of the file are unsigned; an Integer of host code shows half of them as negative.
inline Json word(const Value &value) { return static_cast<uint32_t>(value.integer()); }

inline Json textOrNull(std::string text) { return text.empty() ? Json() : Json(std::move(text)); }

// "2004-08-09T10:11:12": the clock of whoever stored the date, so no zone.
inline Json dateOrNull(uint32_t secondsSince1904) {
  std::string text = dateText(secondsSince1904);
  std::replace(text.begin(), text.end(), ' ', 'T');
  return textOrNull(std::move(text));
}

template <typename Fact>
inline Json known(const std::optional<Fact> &fact) {
  return fact ? Json(*fact) : Json();
}

inline Json dateOrNull(const std::optional<uint32_t> &date) { return date ? dateOrNull(*date) : Json(); }

inline Json hexOrNull(const std::optional<uint64_t> &number) {
  if (!number) return {};
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016" PRIX64, *number);
  return digits.data();
}

}  // namespace zemhost
