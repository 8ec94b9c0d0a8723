#include "host/cli/Messages.h"

#include <iostream>

#include "host/cli/text/DisplayText.h"

namespace zemhost {

void printError(std::string_view message) { std::cerr << "zemhost: " << safeText(message) << '\n'; }

}  // namespace zemhost
