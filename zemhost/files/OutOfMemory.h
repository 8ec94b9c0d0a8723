#pragma once

// How the program ends when it finds no memory.

#include <string>

namespace zemhost {

// What the program works on from here on, made safe for a terminal: the line names it. `reason` stands at its
// end, where more than the machine's memory set the limit.
void setMemorySubject(std::string name, std::string reason = {});

// Writes "zemhost: NAME: out of memory; REASON" to standard error, and needs no memory for it.
void sayOutOfMemory() noexcept;

// From here on a lack of memory that no exception can report, as in a destructor, removes what every
// TemporaryPath owns, writes that line and ends the program with the status of a failure.
void handleOutOfMemory();

}  // namespace zemhost
