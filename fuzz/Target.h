// The targets that a program holds: the one program that replays inputs holds all of them, each fuzzer one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

namespace fuzz {

// Tries one input; ends the program when it finds a fault.
using Target = void (*)(const uint8_t *data, size_t size);

// The targets by their names.
std::map<std::string_view, Target> &targets();

struct NamedTarget {
  NamedTarget(std::string_view name, Target target) { targets().emplace(name, target); }
};

}  // namespace fuzz

// Begins the function of a target, which its braces follow; its parameters are `data` and `size`.
#define FUZZ_TARGET(name)                                           \
  static void name##Target(const uint8_t *data, size_t size);       \
  static const fuzz::NamedTarget name##Named(#name, &name##Target); \
  static void name##Target(const uint8_t *data, size_t size)
