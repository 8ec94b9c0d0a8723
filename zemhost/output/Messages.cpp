#include "zemhost/output/Messages.h"

#include <iostream>
#include <string>
#include <unistd.h>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Terminal.h"

namespace zemhost {

void printError(std::string_view message) {
  constexpr std::string_view kName = "zemhost:";
  std::cerr << (showsStyles(STDERR_FILENO) ? boldRed(kName) : std::string(kName)) << ' ' << safeText(message)
            << '\n';
}

}  // namespace zemhost
