#pragma once

// How much memory work on a file may cost: a small compressed database can hold millions of records.

#include <cstdint>

namespace zemhost {

// From now on the program finds no more memory than it has at this moment, a compressed database of this
// inflated size may cost twice that size, and less than 64 MiB besides. False, and no limit, where the system
// does not say how much memory the program has, and where it has set a lower limit itself.
bool limitMemoryFor(uint64_t inflatedSize);

// From now on the program finds no more memory than it has at this moment and this many bytes. False, and no
// limit, likewise.
bool limitMemoryTo(uint64_t more);

// The program finds as much memory as at its start.
void liftMemoryLimit();

}  // namespace zemhost
