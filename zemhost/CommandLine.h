#pragma once

namespace zemhost {

// Reads the program's arguments, as main() gets them, and does what they ask for. Returns the exit status
// (ExitStatus.h): a command's own, kSuccess after a help or the version, and kUsage with a message on
// standard error when the arguments cannot be understood. What a command throws passes through.
int runCommandLine(int count, char **arguments);

}  // namespace zemhost
