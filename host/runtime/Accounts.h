#pragma once

// What the runtime has given out and not got back, for finding leaks and double releases.

#include <cstdint>

namespace zemhost {

struct Accounts {
  int64_t strings = 0;      // live host strings
  int64_t folderItems = 0;  // live folder items
  int64_t objects = 0;      // live objects of registered classes
  int64_t misuses = 0;      // handles that reached the runtime and were not live (only with handle checks on)
  int64_t replacements = 0;  // characters replaced in conversions that plug-ins asked for
};

// The figures of this process at this moment.
const Accounts &accounts();

// With checks on, every handle that reaches the runtime is looked up among the live ones first; one that is
// not among them (released too often, or never made here) is counted as a misuse and then ignored. Costs a
// hash look-up each; off at the start. Throws std::logic_error when changed while anything is live.
void checkHandles(bool on);

}  // namespace zemhost
