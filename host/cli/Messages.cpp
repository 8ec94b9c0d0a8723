#include "host/cli/Messages.h"

#include <iostream>
#include <string>
#include <unistd.h>

#include "host/cli/text/DisplayText.h"
#include "host/cli/text/Terminal.h"

namespace zemhost {

void printError(std::string_view message) {
  constexpr std::string_view kName = "zemhost:";
  std::cerr << (showsStyles(STDERR_FILENO) ? boldRed(kName) : std::string(kName)) << ' ' << safeText(message)
            << '\n';
}

}  // namespace zemhost
