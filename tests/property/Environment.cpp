#include "tests/property/Environment.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace property {

std::optional<uint64_t> FromEnvironment(const char *name) {
  const char *value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  size_t used = 0;
  uint64_t number = 0;
  try {
    number = std::stoull(value, &used);
  } catch (const std::exception &) {
    used = 0;
  }
  if (used != std::string(value).size()) {
    throw std::runtime_error(std::string(name) + " is no number: " + value);
  }
  return number;
}

uint64_t Scaled(uint64_t cases) {
  return std::max<uint64_t>(1, cases * FromEnvironment("ZEM_TEST_SCALE").value_or(100) / 100);
}

}  // namespace property
