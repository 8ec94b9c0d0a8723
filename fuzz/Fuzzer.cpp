// What libFuzzer calls: the one target of the program.

#include "fuzz/Target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const fuzz::Target target = fuzz::targets().begin()->second;
  target(data, size);
  return 0;
}
