#include "zemhost/rescue/NamePattern.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace {

struct Field {
  std::string_view name;
  std::string Song::*text;
  uint32_t Song::*number;
  std::string_view unknown;  // of a text that is empty
};
constexpr std::array<Field, 8> kFields = {{{"title", &Song::title, nullptr, "Unknown Title"},
                                           {"artist", &Song::artist, nullptr, "Unknown Artist"},
                                           {"album", &Song::album, nullptr, "Unknown Album"},
                                           {"genre", &Song::genre, nullptr, "Unknown Genre"},
                                           {"composer", &Song::composer, nullptr, "Unknown Composer"},
                                           {"track", nullptr, &Song::track, {}},
                                           {"tracks", nullptr, &Song::trackTotal, {}},
                                           {"year", nullptr, &Song::year, {}}}};
constexpr size_t kWidest = 20;

std::string braced(std::string_view name) { return std::string("{").append(name).append("}"); }

[[noreturn]] void fail(std::string_view pattern, const std::string &what) {
  throw HostError("the pattern " + inQuotes(pattern) + ": " + what);
}

int fieldNamed(std::string_view name, std::string_view pattern) {
  for (size_t i = 0; i < kFields.size(); ++i) {
    if (kFields[i].name == name) return static_cast<int>(i);
  }
  fail(pattern, "there is no field " + braced(name) + "; the fields are " + patternFields());
}

}  // namespace

std::string patternFields() {
  std::string list;
  for (const Field &field : kFields) {
    if (!list.empty()) list += ", ";
    list += braced(field.name);
  }
  return list;
}

NamePattern::NamePattern(std::string_view text) : components_(1) {
  std::string literal;
  const auto endComponent = [&] {
    if (!literal.empty()) components_.back().push_back({literal, -1, 0, ' '});
    literal.clear();
    const Component &ended = components_.back();
    if (ended.empty()) fail(text, "a part between slashes is empty");
    if (ended.size() == 1 && ended[0].field < 0 &&
        ended[0].literal.find_first_not_of(". ") == std::string::npos)
      fail(text, "a part between slashes is " + inQuotes(ended[0].literal));
  };
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if ((c == '{' || c == '}') && text.substr(at + 1, 1) == std::string_view(&c, 1)) {
      literal += c;
      ++at;
    } else if (c == '}') {
      fail(text, "there is a '}' without a '{' before it");
    } else if (c == '/') {
      endComponent();
      components_.emplace_back();
    } else if (c != '{') {
      literal += c;
    } else {
      const size_t end = text.find('}', at);
      if (end == std::string_view::npos) fail(text, "there is a '{' without a '}' after it");
      const std::string_view inside = text.substr(at + 1, end - at - 1);
      const size_t colon = std::min(inside.find(':'), inside.size());
      Part part{std::move(literal), fieldNamed(inside.substr(0, colon), text), 0, ' '};
      literal.clear();
      if (colon < inside.size()) {
        std::string_view width = inside.substr(colon + 1);
        if (width.starts_with('0')) part.fill = '0';
        const auto [last, error] = std::from_chars(width.data(), width.data() + width.size(), part.width);
        if (error != std::errc() || last != width.data() + width.size() || part.width > kWidest)
          fail(text, std::string(width) + " is not a width from 1 to " + std::to_string(kWidest));
        if (kFields[static_cast<size_t>(part.field)].number == nullptr)
          fail(text, "only numbers have a width, and " + braced(inside.substr(0, colon)) + " is a text");
      }
      components_.back().push_back(std::move(part));
      at = end;
    }
  }
  endComponent();
}

std::string NamePattern::textOf(const Component &component, const Song &song) {
  std::string text;
  for (const Part &part : component) {
    text += part.literal;
    if (part.field < 0) continue;
    const Field &field = kFields[static_cast<size_t>(part.field)];
    if (field.text != nullptr) {
      const std::string &value = song.*field.text;
      text += value.find_first_not_of(' ') == std::string::npos ? std::string(field.unknown) : value;
    } else if (const uint32_t value = song.*field.number; value != 0) {
      const std::string digits = std::to_string(value);
      text.append(part.width - std::min(part.width, digits.size()), part.fill).append(digits);
    }
  }
  return text;
}

std::vector<std::string> NamePattern::names(const Song &song) const {
  std::vector<std::string> names;
  for (const Component &component : components_)
    names.push_back(safeName(textOf(component, song), "Unknown"));
  return names;
}

std::string NamePattern::fileName(const Song &song, std::string_view suffix,
                                  std::string_view extension) const {
  return safeName(textOf(components_.back(), song), "Unknown", suffix, extension);
}

}  // namespace zemhost
