#pragma once

// Databases whose body is compressed: the usual first header, then one zlib stream that holds the chunks.

#include <cstdint>
#include <string>

#include "player/Error.h"

namespace player {

// A file that inflates to more than a database does.
class InflatesTooFar : public PlayerError {
 public:
  using PlayerError::PlayerError;
};

// Writes the database that such a file holds to the descriptor `to`, an empty file: the header as it is but
// for its total length, which becomes that of the whole, then the inflated body. Needs a few hundred
// kilobytes of memory whatever the size. Returns the number of bytes that stand after the stream and belong
// to nothing.
//
// Throws InflatesTooFar, beginning with `name`, when it inflates to 2 GiB or more, or to more than 64 MiB and
// a hundred times its own size; PlayerError, likewise, when the stream is damaged or ends early, and when
// writing fails, naming `toName`. What was inflated until then is in the file. Throws std::bad_alloc without
// memory.
uint64_t inflateDatabase(int from, const std::string &name, int to, const std::string &toName);

}  // namespace player
