#include "zemhost/report/PageJson.h"

#include "zemhost/output/DisplayText.h"

namespace zemhost {

std::string pageJson(const Json &value) {
  const std::string json = jsonText(value);
  std::string safe;
  safe.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      safe += "\\u003c";
    } else if (c == '>') {
      safe += "\\u003e";
    } else if (c == '&') {
      safe += "\\u0026";
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string markupText(std::string_view text) {
  std::string markup;
  for (const char c : safeText(text)) {
    switch (c) {
      case '<':
        markup += "&lt;";
        break;
      case '>':
        markup += "&gt;";
        break;
      case '&':
        markup += "&amp;";
        break;
      case '"':
        markup += "&quot;";
        break;
      case '\'':
        markup += "&#39;";
        break;
      default:
        markup += c;
    }
  }
  return markup;
}

void PageColumn::add(const std::optional<int64_t> &number) {
  append(number ? std::to_string(*number) : "null", number.has_value());
}

void PageColumn::append(std::string_view value, bool isKnown) {
  if (!values_.empty()) values_ += ',';
  values_ += value;
  isKnown_ = isKnown_ || isKnown;
}

size_t PageWords::numberOf(const std::string &text) {
  const auto [found, isNew] = numbers_.try_emplace(text, texts_.size());
  if (isNew) texts_.push_back(&found->first);
  return found->second;
}

std::string PageWords::json() const {
  std::string json = "[";
  for (const std::string *text : texts_) {
    if (json.size() > 1) json += ',';
    json += pageJson(*text);
  }
  return json + "]";
}

std::string member(std::string_view name, std::string_view json) {
  return std::string("\"").append(name).append("\":").append(json);
}

std::string joined(const std::vector<std::string> &parts, std::string_view around) {
  std::string text(around.substr(0, 1));
  for (const std::string &part : parts) {
    if (text.size() > 1) text += ',';
    text += part;
  }
  return text.append(around.substr(1));
}

}  // namespace zemhost
