#pragma once

namespace zemhost {

// How every command of the program ends.
enum ExitStatus : int {
  kSuccess = 0,
  kFailure = 1,    // bad input, or output that could not be written; one line on standard error says why
  kUsage = 2,      // the command line could not be understood
  kIncomplete = 3  // it went to its end, and the report names what is wrong or was left out
};

}  // namespace zemhost
