#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Error.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Command.h"
#include "zemhost/library/OpenDatabase.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

namespace {

struct CallArguments {
  std::string path;
  std::vector<std::string> lines;
};

int evaluateLines(const CallArguments &arguments) {
  const Object object = openDatabase(arguments.path).object;
  int status = kSuccess;
  for (const std::string &line : arguments.lines) {
    try {
      std::cout << safeText(object.evaluate(line).describe()) << '\n';
    } catch (const HostError &error) {
      std::cout.flush();  // so that results and errors come in order where both go to one place
      printError(error.what());
      status = kFailure;
    }
  }
  return status;
}

}  // namespace

void addCallCommand(CLI::App &program, Action &action) {
  const auto arguments = std::make_shared<CallArguments>();
  CLI::App *const command =
      program.add_subcommand("call", "Do lines of host code with an object that has loaded the database");
  addPathArgument(*command, arguments->path);
  command
      ->add_option("LINE", arguments->lines,
                   "A method call, or a property to read or set: 'GetTitle(0)', 'ResultEncode = &h0100'")
      ->required();
  command->callback([arguments, &action] { action = [arguments] { return evaluateLines(*arguments); }; });
}

}  // namespace zemhost
