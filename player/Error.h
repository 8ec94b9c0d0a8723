#pragma once

#include <stdexcept>

namespace player {

// What the reader of a player throws: one line in plain words that names the file concerned and says what is
// wrong.
class PlayerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace player
