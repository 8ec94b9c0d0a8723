// Replaces the program's allocation functions, so that any allocation can be made to fail and the bytes in
// use can be counted. Only programs that link zem_test_allocations have it; libraries that they load use the
// same functions.
#pragma once

#include <cstddef>

namespace support {

// From now on only `count` allocations are granted; every further one fails.
void GrantAllocations(long count);
void GrantAllAllocations();

// While paused, allocations are granted and not counted.
void PauseGranting(bool paused);

// Whether an allocation failed since the last GrantAllocations.
bool AllocationFailed();

size_t BytesInUse();
// The most that were in use at once since the last ForgetMostBytes.
size_t MostBytesInUse();
void ForgetMostBytes();

// How many allocations were made since the program's start, and their bytes, whatever was freed since.
size_t AllocationsMade();
size_t BytesGranted();

}  // namespace support
