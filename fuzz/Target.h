// The one function that every target defines, and that a fuzzer or the replay program calls.
#pragma once

#include <cstddef>
#include <cstdint>

// Tries one input; ends the program when it finds a fault. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
