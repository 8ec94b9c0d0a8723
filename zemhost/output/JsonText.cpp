#include "zemhost/output/JsonText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

// Whether JSON has a text as it is, between quotes.
bool isPlain(const std::string &text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

template <typename Number>
void appendNumber(std::string &text, Number number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

}  // namespace

std::string jsonText(const Json &value, int indent) {
  return escapedJson(value.dump(indent, ' ', false, Json::error_handler_t::replace));
}

// The library's writer takes longer to set up than such a value to write.
void appendJson(std::string &text, const Json &value) {
  const auto *const string = value.get_ptr<const std::string *>();
  if (string != nullptr && isPlain(*string)) {
    text.append(1, '"').append(*string).append(1, '"');
  } else if (value.is_null()) {
    text += "null";
  } else if (value.is_boolean()) {
    text += value.get<bool>() ? "true" : "false";
  } else if (value.is_number_unsigned()) {
    appendNumber(text, value.get<uint64_t>());
  } else if (value.is_number_integer()) {
    appendNumber(text, value.get<int64_t>());
  } else {
    text += jsonText(value);
  }
}

}  // namespace zemhost
