#include "zemhost/library/MemoryLimit.h"

#include <fstream>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>

namespace zemhost {

namespace {

constexpr uint64_t kTimesInflated = 2;
// 64 MiB, less what the program and its libraries are themselves.
constexpr uint64_t kBesides = uint64_t{48} << 20;

// What an address sanitizer needs for itself is many times what it is asked for, and it ends the program
// where there is no more.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCanBeLimited = false;
#elif !defined(__has_feature)
constexpr bool kCanBeLimited = true;
#elif __has_feature(address_sanitizer)
constexpr bool kCanBeLimited = false;
#else
constexpr bool kCanBeLimited = true;
#endif

// The limit that was there at the start, while another one stands.
std::optional<rlimit> atTheStart;

// Private memory that can be written, in bytes, which is what the limit is about; 0 when it is not known.
uint64_t memoryNow() {
  std::ifstream file("/proc/self/statm");
  uint64_t pages = 0;
  for (int field = 0; field < 6; ++field) file >> pages;
  return file ? pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE)) : 0;
}

}  // namespace

bool limitMemoryFor(uint64_t inflatedSize) {
  liftMemoryLimit();
  return limitMemoryTo(kTimesInflated * inflatedSize + kBesides);
}

bool limitMemoryTo(uint64_t more) {
  const uint64_t now = kCanBeLimited ? memoryNow() : 0;
  rlimit limit{};
  if (now == 0 || getrlimit(RLIMIT_DATA, &limit) != 0) return false;
  const rlimit before = limit;
  const uint64_t most = now + more;
  if (most >= limit.rlim_cur) return false;
  limit.rlim_cur = most;
  if (setrlimit(RLIMIT_DATA, &limit) != 0) return false;
  atTheStart = before;
  return true;
}

void liftMemoryLimit() {
  if (!atTheStart) return;
  setrlimit(RLIMIT_DATA, &*atTheStart);
  atTheStart.reset();
}

}  // namespace zemhost
