#pragma once

// Reads words and marks off a line of text, for declarations and call texts alike.

#include <cstddef>
#include <string>
#include <string_view>

#include "host/basic/ParseResult.h"

namespace zemhost {

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) { skipBlanks(); }

  bool atEnd() const { return at_ == text_.size(); }
  size_t position() const { return at_; }
  // The character here; 0 at the end.
  char peek() const { return atEnd() ? '\0' : text_[at_]; }

  // Takes this character and the blanks behind it, if it stands here.
  bool take(char mark);

  // Takes a name (a letter, then letters, digits and underscores) and the blanks behind it; empty, with
  // nothing taken, when none stands here.
  std::string_view takeName();

  // Takes this name, without regard to case.
  bool takeWord(std::string_view word);

  // Takes the next character, blanks not skipped. Not at the end.
  char takeRaw() { return text_[at_++]; }
  void skipBlanks();

  // "expected X" at this place, naming what stands here instead.
  ParseError expected(std::string_view what) const;

 private:
  std::string_view text_;
  size_t at_ = 0;
};

}  // namespace zemhost
