#pragma once

// What a page leaves out that is about a person, for pages that are given to others.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "player/DatabaseLocation.h"
#include "player/Device.h"

namespace zemhost {

// The text with "(address left out)" in place of everything that looks like a mail address: a name, '@' and a
// domain of several parts, as far as neither blanks nor the usual punctuation around it.
std::string withoutMailAddresses(std::string_view text);

class Privacy {
 public:
  // Of a page that shows all.
  Privacy() = default;
  // Of one that leaves out what is personal of this player: `name` is what it is called.
  Privacy(const player::DatabaseLocation &location, const player::Device &device, const std::string &name);

  // Whether anything is left out.
  bool isAsked() const { return isAsked_; }

  // A text of the library as the page may show it: without mail addresses, the serial number and the other
  // number of the player.
  std::string text(const std::string &text) const;
  // A line about the database and its files, likewise also without the place of the player on this machine
  // and the player's name.
  std::string line(const std::string &line) const;

 private:
  using Replacements = std::vector<std::pair<std::string, std::string>>;

  static std::string replaced(std::string_view text, const Replacements &replacements);

  bool isAsked_ = false;
  Replacements numbers_;  // of the player
  Replacements places_;   // and its name
};

}  // namespace zemhost
