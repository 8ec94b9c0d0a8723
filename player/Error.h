#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace player {

// What the reader of a player throws: one line in plain words that names the file concerned and says what is
// wrong.
class PlayerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  // "FILE: No such file or directory": the name, and the system's words for the error number.
  PlayerError(const std::string &name, int error)
      : std::runtime_error(name + ": " + std::generic_category().message(error)) {}
};

}  // namespace player
