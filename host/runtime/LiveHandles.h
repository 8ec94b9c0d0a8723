#pragma once

// The strings, items and objects that the runtime has given out and not got back, for finding leaks and
// double releases.

#include <cstdint>

namespace zemhost {

struct LiveHandles {
  int64_t strings = 0;      // live host strings
  int64_t folderItems = 0;  // live folder items
  int64_t objects = 0;      // live objects of registered classes
  int64_t misuses = 0;      // handles that reached the runtime and were not live (only with handle checks on)
  int64_t replacements = 0;  // characters replaced in conversions that plug-ins asked for
};

// The figures of this process at this moment.
const LiveHandles &liveHandles();

// With checks on, every handle that reaches the runtime is looked up among the live ones first; one that is
// not among them (released too often, or never made here) is counted as a misuse and then ignored. Costs a
// hash look-up each; off at the start. Throws std::logic_error when changed while anything is live.
void checkHandles(bool on);

// What follows is for the runtime itself: what strings, items and objects report of themselves.

// Counts a new handle in one of the live figures.
void addHandle(const void *handle, int64_t LiveHandles::*figure);

// Takes a handle that is about to be freed off its figure.
void removeHandle(const void *handle, int64_t LiveHandles::*figure);

// True when the handle may be used. Always true with checks off; else counts a misuse when it is not live.
bool isLiveHandle(const void *handle);

// Adds to the replacements of conversions.
void addReplacements(int64_t count);

}  // namespace zemhost
