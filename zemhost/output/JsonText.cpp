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

void appendInQuotes(std::string &text, const std::string &plain) {
  text.append(1, '"').append(plain).append(1, '"');
}

std::string dumped(const Json &value, int indent) {
  return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

template <typename Number>
void appendNumber(std::string &text, Number number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

}  // namespace

std::string jsonText(const Json &value, int indent) { return escapedJson(dumped(value, indent)); }

// The library's writer takes longer to set up than such a value to write.
void appendJson(std::string &text, const Json &value) {
  const auto *const string = value.get_ptr<const std::string *>();
  if (string != nullptr && isPlain(*string)) {
    appendInQuotes(text, *string);
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

std::string jsonLine(const Json &value) { return dumped(value, -1); }

std::string quotedLine(const std::string &text) {
  if (!isPlain(text)) return jsonLine(text);
  std::string line;
  line.reserve(text.size() + 2);
  appendInQuotes(line, text);
  return line;
}

std::string indentedObject(const std::string &line, size_t indent) {
  std::string text;
  bool isInText = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (isInText) {
      text += c;
      if (c == '\\') text += line[++i];
      isInText = c != '"';
    } else if (c == '}') {
      text.append(1, '\n').append(indent - 2, ' ').append(1, c);
    } else {
      text += c;
      if (c == ':') text += ' ';
      if (c == '{' || c == ',') text.append(1, '\n').append(indent, ' ');
      isInText = c == '"';
    }
  }
  return text;
}

}  // namespace zemhost
