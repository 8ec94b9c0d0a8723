#pragma once

// Prose for people, broken between words.

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace zemhost {

// The text in lines of at most `width` terminal cells, without a line end behind the last; lines after the
// first begin with `indent` blanks. Takes valid UTF-8 of one line, and breaks it at blanks alone: a word that
// is wider than a line stays whole, and so does what stands between the words.
std::string brokenText(std::string_view text, size_t width, size_t indent = 0);

// Writes the text and a line end: broken at the terminal's width when standard output is one, else on one
// line, for programs that read lines.
void writeParagraph(std::ostream &out, std::string_view text, size_t indent = 0);

}  // namespace zemhost
