#include "zemhost/output/Messages.h"

#include <iostream>
#include <string>
#include <unistd.h>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Paragraph.h"
#include "zemhost/output/Terminal.h"

namespace zemhost {

void printError(std::string_view message) {
  constexpr std::string_view kName = "zemhost:";
  std::string text = std::string(kName) + ' ' + safeText(message);
  if (const auto width = terminalWidth(STDERR_FILENO)) text = brokenText(text, *width, 2);
  if (showsStyles(STDERR_FILENO)) text.replace(0, kName.size(), boldRed(kName));
  std::cerr << text << '\n';
}

}  // namespace zemhost
