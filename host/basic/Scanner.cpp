#include "host/basic/Scanner.h"

#include "host/runtime/Names.h"
#include "platform/carbon/UnicodeForms.h"

namespace zemhost {
namespace {

bool isLetter(char c) { return lowerCase(c) >= 'a' && lowerCase(c) <= 'z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t'; }

}  // namespace

bool Scanner::take(char mark) {
  if (atEnd() || text_[at_] != mark) return false;
  ++at_;
  skipBlanks();
  return true;
}

std::string_view Scanner::takeName() {
  if (atEnd() || !isLetter(text_[at_])) return {};
  const size_t start = at_;
  while (!atEnd() && (isLetter(text_[at_]) || isDigit(text_[at_]) || text_[at_] == '_')) ++at_;
  const std::string_view name = text_.substr(start, at_ - start);
  skipBlanks();
  return name;
}

bool Scanner::takeWord(std::string_view word) {
  const size_t start = at_;
  if (sameName(takeName(), word)) return true;
  at_ = start;
  return false;
}

void Scanner::skipBlanks() {
  while (!atEnd() && isBlank(text_[at_])) ++at_;
}

ParseError Scanner::expected(std::string_view what) const {
  std::string found = "the end";
  if (!atEnd()) {
    size_t length = 1;
    while (at_ + length < text_.size() && unicode::isContinuation(text_[at_ + length]) && length < 4)
      ++length;
    found = quoteText(text_.substr(at_, length));
  }
  return {at_, "expected " + std::string(what) + ", found " + found};
}

}  // namespace zemhost
