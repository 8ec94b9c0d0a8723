#pragma once

// A library as the data of a page: one JSON object, which a script of the page reads.

#include <cstddef>
#include <cstdint>
#include <string>

#include "zemhost/check/DatabaseCheck.h"

namespace zemhost {

struct PageOptions {
  std::string program;    // that makes it, with its version
  std::string made;       // when, "2026-11-22T10:00:00"
  std::string title;      // empty: what the player is called, or the playlist, or else the file
  int32_t playlist = -1;  // only the songs of this one; -1: the whole library
  bool covers = true;
  bool privacy = false;  // leave out what is personal
};

struct PageData {
  std::string title;            // UTF-8, as the page is to show it
  std::string json;             // safe inside an element for a script's data, whatever the texts are
  size_t unreadableCovers = 0;  // albums whose covers are left out for that
};

// Reads the whole library; memory and time grow with it alone.
PageData pageData(const CheckedLibrary &checked, const PageOptions &options);

}  // namespace zemhost
