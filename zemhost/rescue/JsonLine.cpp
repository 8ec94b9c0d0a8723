#include "zemhost/rescue/JsonLine.h"

#include <algorithm>

namespace zemhost {

std::string jsonLine(const Json &value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string quotedLine(const std::string &text) {
  const bool isPlain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
  if (!isPlain) return jsonLine(text);
  std::string line;
  line.reserve(text.size() + 2);
  return line.append(1, '"').append(text).append(1, '"');
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
