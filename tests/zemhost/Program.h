#pragma once

// Runs the built program as a person or a script would.

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Folders.h"

namespace zemhost {

// The sample player's folder.
inline const std::filesystem::path kPlayer = support::SamplesFolder() / "player";

struct Outcome {
  int status = -1;  // 128 and the signal's number when a signal ended it
  std::string out;
  std::string err;
};

struct RunOptions {
  std::optional<unsigned short> terminalWidth;  // standard output is a terminal of this width
  bool errorsToTerminal = false;                // standard error is a terminal
  std::filesystem::path output;                 // standard output is this file
  bool asOwner = false;                         // without the superuser's right to what its owner may not
  std::optional<size_t> readAtMost;             // close the pipe from standard output after this many bytes
  std::vector<std::pair<std::string, std::string>> environment;  // variables and what they are set to
};

// Throws std::system_error when the program cannot be run at all.
Outcome runZemhost(const std::vector<std::string> &arguments, const RunOptions &options = {});

// The lines of a text, without their ends.
std::vector<std::string> linesOf(const std::string &text);

}  // namespace zemhost
