#pragma once

#include <string>
#include <vector>

#include "zemhost/rescue/FilesResult.h"

namespace zemhost {

// Writes a heading and the lines under it to standard output, made safe for a terminal; nothing without
// lines.
void writeList(const std::string &heading, const std::vector<std::string> &lines);

// What the files of a command are called.
struct FilesWords {
  std::string one;
  std::string several;
  std::string oneWithout;  // after a number: "album has no cover"; not needed where all have one
  std::string severalWithout;
};

// Writes what came of writing files to standard output; returns the exit status.
int writeFilesSummary(const FilesResult &result, const FilesWords &words);

}  // namespace zemhost
