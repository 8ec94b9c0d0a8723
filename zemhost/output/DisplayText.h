#pragma once

// Text as it may be shown on a terminal: nothing in it can move the cursor, and its width is known.

#include <cstddef>
#include <string>
#include <string_view>

namespace zemhost {

// The text with everything that could steer a terminal or reorder a line made visible: control characters
// become their pictures (U+2400 and up), and C1 controls, line separators, marks and overrides of direction
// and bytes that are not valid UTF-8 become U+FFFD. Takes any bytes; the result is valid UTF-8.
std::string safeText(std::string_view bytes);

// JSON, valid UTF-8, with every such character that JSON takes as it is (DEL, C1 controls and so on) as its
// escape, "\u009b": another writing of the same values.
std::string escapedJson(std::string_view json);

// The text with a blank for each control character and each of Unicode's own line ends, for formats that have
// a line for a text. Takes any bytes, and leaves what is no such character as it is.
std::string oneLine(std::string_view text);

// The number of terminal cells that valid UTF-8 text takes: 2 for a wide (East Asian) character, 0 for a
// combining one, else 1.
size_t displayWidth(std::string_view text);

// The text itself when it fits in `width` cells, else its beginning and an ellipsis, at most `width` cells
// together. A base character and what combines with it stay together. Empty for a width of 0.
std::string cutToWidth(std::string_view text, size_t width);

// The text in its composed form (NFC), in which the same characters are the same bytes. Takes any bytes; the
// result is valid UTF-8, with U+FFFD for what was not.
std::string composedText(std::string_view bytes);

// The text in a form in which differences of case and of composition have gone, for comparing what a person
// typed with what is stored. Takes any bytes.
std::string foldedText(std::string_view bytes);

}  // namespace zemhost
