#include "host/runtime/MemoryFailures.h"

namespace zemhost {
namespace {

uint64_t gFailures = 0;
std::new_handler gBefore = nullptr;

void countFailure() {
  ++gFailures;
  if (gBefore == nullptr) throw std::bad_alloc();
  gBefore();
}

}  // namespace

uint64_t memoryFailures() { return gFailures; }

MemoryFailureCount::MemoryFailureCount() : before_(std::set_new_handler(countFailure)) {
  if (before_ != countFailure) gBefore = before_;
}

MemoryFailureCount::~MemoryFailureCount() { std::set_new_handler(before_); }

}  // namespace zemhost
