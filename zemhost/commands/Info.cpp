#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/library/Facts.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

int showInfo(const ListingArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const LibraryFacts found = libraryFacts(library);
  for (const std::string &warning : found.device.warnings) printError(warning);
  EncodedOutput out(arguments.encoding, library.host());
  constexpr size_t kLabels = 11;  // cells
  for (const Fact &fact : found.facts) {
    std::string label = fact.label;
    label.resize(kLabels, ' ');
    out.writeLine(label + fact.text, label.size());
  }
  out.finish();
  return kSuccess;
}

}  // namespace zemhost
