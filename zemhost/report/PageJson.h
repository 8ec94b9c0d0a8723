#pragma once

// The data of a page as JSON that stands in the page itself, inside an element for a script's data.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/output/JsonText.h"

namespace zemhost {

// The value as jsonText() writes it, with '<', '>' and '&' as "\u003c" and so on: whatever the texts are,
// nothing in it is markup, or ends the element.
std::string pageJson(const Json &value);

// A text for a place where markup is read: safe as on a terminal, with '<', '>', '&' and quotes as their
// entities.
std::string markupText(std::string_view text);

// A column of a table, as a JSON array of what was added, a value a song; "null" when nothing in it says
// anything.
class PageColumn {
 public:
  // A number of which 0 stands for what is not known.
  void add(uint64_t number) { append(std::to_string(number), number != 0); }
  // A number, or null for what is not known.
  void add(const std::optional<int64_t> &number);

  std::string json() const { return isKnown_ ? std::string("[").append(values_).append("]") : "null"; }

 private:
  void append(std::string_view value, bool isKnown);

  std::string values_;
  bool isKnown_ = false;
};

// Texts that stand many times, by numbers from 0; 0 is the empty text.
class PageWords {
 public:
  PageWords() { numberOf(""); }
  PageWords(const PageWords &) = delete;
  PageWords &operator=(const PageWords &) = delete;

  size_t numberOf(const std::string &text);
  // An array of them in the order of their numbers.
  std::string json() const;

 private:
  std::map<std::string, size_t> numbers_;
  std::vector<const std::string *> texts_;  // those of the map
};

// "name":json, as a part of an object.
std::string member(std::string_view name, std::string_view json);
// Parts, with commas between; `around` is the pair of brackets or braces.
std::string joined(const std::vector<std::string> &parts, std::string_view around);

}  // namespace zemhost
