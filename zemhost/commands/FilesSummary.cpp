#include "zemhost/commands/FilesSummary.h"

#include <iostream>

#include "zemhost/ExitStatus.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Paragraph.h"
#include "zemhost/output/Units.h"

namespace zemhost {

void writeList(const std::string &heading, const std::vector<std::string> &lines) {
  if (lines.empty()) return;
  writeParagraph(std::cout, heading + ":");
  for (const std::string &line : lines) writeParagraph(std::cout, "- " + safeText(line), 2);
}

int writeFilesSummary(const FilesResult &result, const FilesWords &words) {
  std::cout << countText(result.written, words.one, words.several) << " written\n";
  if (result.alreadyThere > 0) {
    std::cout << countText(result.alreadyThere, words.one + " is", words.several + " are")
              << " already there\n";
  }
  if (result.evaded > 0) {
    std::cout << countText(result.evaded, "name was", "names were")
              << " taken by another file, so a number was added\n";
  }
  if (result.without > 0)
    std::cout << countText(result.without, words.oneWithout, words.severalWithout) << '\n';
  writeList(countText(result.problems.size(), "problem", "problems"), result.problems);
  return result.problems.empty() ? kSuccess : kIncomplete;
}

}  // namespace zemhost
