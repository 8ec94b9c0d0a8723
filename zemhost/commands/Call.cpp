#include <iostream>
#include <string>
#include <vector>

#include "host/Error.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/library/OpenDatabase.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

int callObject(const CallArguments &arguments) {
  const OpenDatabase database = loadDatabase(Host::load(), arguments.path);
  for (const std::string &warning : warningsOf(database, arguments.path)) printError(warning);
  int status = kSuccess;
  for (const std::string &line : arguments.lines) {
    try {
      std::cout << safeText(database.object.evaluate(line).describe()) << '\n';
    } catch (const HostError &error) {
      std::cout.flush();  // so that results and errors come in order where both go to one place
      printError(error.what());
      status = kFailure;
    }
  }
  return status;
}

}  // namespace zemhost
