#pragma once

// Requests for memory that could not be met, in the program and in a plug-in alike. No exception leaves a
// plug-in: it answers as if there were nothing, so that only this shows that there was something.

#include <cstdint>
#include <new>

namespace zemhost {

// How many requests to operator new have failed in this process while a MemoryFailureCount lived.
uint64_t memoryFailures();

// While one lives, failures are counted. What was installed before for such a case is called after that, and
// is in its place again at the end.
class MemoryFailureCount {
 public:
  MemoryFailureCount();
  MemoryFailureCount(const MemoryFailureCount &) = delete;
  MemoryFailureCount &operator=(const MemoryFailureCount &) = delete;
  ~MemoryFailureCount();

 private:
  std::new_handler before_;
};

}  // namespace zemhost
