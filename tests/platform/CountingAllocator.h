#pragma once

// Stands in for the program's operators new and delete: counts blocks, and fails on request.

#include <cstddef>

namespace allocator {

// Lets the next `count` requests pass and fails all that follow, until endFailures().
void failAfter(long count);
void endFailures();

// True when a request failed since failAfter().
bool hasFailed();

// The blocks that are in use now.
long blocksInUse();

// True while the address is that of a block in use.
bool isInUse(const void *block);

}  // namespace allocator
