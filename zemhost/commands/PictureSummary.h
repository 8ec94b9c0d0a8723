#pragma once

#include <string>
#include <vector>

#include "zemhost/rescue/PictureResult.h"

namespace zemhost {

// Writes a heading and the lines under it to standard output, made safe for a terminal; nothing without
// lines.
void writeList(const std::string &heading, const std::vector<std::string> &lines);

// What the pictures of a command are called.
struct PictureWords {
  std::string one;
  std::string several;
  std::string oneWithout;  // after a number: "album has no cover"; not needed where all have one
  std::string severalWithout;
};

// Writes what came of writing pictures to standard output; returns the exit status.
int writePictureSummary(const PictureResult &result, const PictureWords &words);

}  // namespace zemhost
