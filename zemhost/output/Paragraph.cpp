#include "zemhost/output/Paragraph.h"

#include <algorithm>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Terminal.h"

namespace zemhost {

std::string brokenText(std::string_view text, size_t width, size_t indent) {
  std::string broken;
  size_t used = 0;  // cells of the line at hand
  for (size_t at = 0; at < text.size();) {
    // A word, with the blanks before it.
    const size_t word = std::min(text.find_first_not_of(' ', at), text.size());
    const size_t end = std::min(text.find(' ', word), text.size());
    const std::string_view taken = text.substr(at, end - at);
    const size_t cells = displayWidth(taken);
    if (at > 0 && used + cells > width) {
      broken.append(1, '\n').append(indent, ' ').append(text.substr(word, end - word));
      used = indent + cells - (word - at);
    } else {
      broken.append(taken);
      used += cells;
    }
    at = end;
  }
  return broken;
}

void writeParagraph(std::ostream &out, std::string_view text, size_t indent) {
  if (const auto width = terminalWidth()) {
    out << brokenText(text, *width, indent) << '\n';
  } else {
    out << text << '\n';
  }
}

}  // namespace zemhost
