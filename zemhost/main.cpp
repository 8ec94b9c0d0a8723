#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <system_error>

#include "zemhost/CommandLine.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/files/OutOfMemory.h"
#include "zemhost/files/Signals.h"
#include "zemhost/output/Messages.h"

int main(int count, char **arguments) {
  std::ios::sync_with_stdio(false);
  zemhost::handleSignals();
  zemhost::handleOutOfMemory();
  try {
    const int status = zemhost::runCommandLine(count, arguments);
    if (std::cout.flush()) return status;
    std::cout.clear();
    errno = 0;
    std::cout.flush();  // once more, for the reason
    zemhost::printError("standard output: " + std::generic_category().message(errno != 0 ? errno : EIO));
  } catch (const std::bad_alloc &) {
    std::cout.flush();
    zemhost::sayOutOfMemory();
  } catch (const std::exception &error) {
    std::cout.flush();
    zemhost::printError(error.what());
  }
  return zemhost::kFailure;
}
