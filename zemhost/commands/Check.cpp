#include <iostream>

#include "zemhost/ExitStatus.h"
#include "zemhost/check/DatabaseCheck.h"
#include "zemhost/commands/Commands.h"

namespace zemhost {

int checkDatabase(const CheckArguments &arguments) {
  const CheckReport report = openAndCheck(Host::load(), arguments.path, arguments.read).report;
  if (arguments.json) {
    writeJson(report, std::cout);
  } else {
    writeText(report, std::cout);
  }
  return report.findings.total() == 0 ? kSuccess : kIncomplete;
}

}  // namespace zemhost
