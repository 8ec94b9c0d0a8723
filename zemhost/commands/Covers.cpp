#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/FilesSummary.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/rescue/CoverExport.h"

namespace zemhost {

int exportCovers(const PictureArguments &arguments) {
  const MusicLibrary library(openAndWarn(arguments.path));
  const FilesResult result = writeCovers(library, arguments.destination);
  warnOfCovers(library);
  const int status = writeFilesSummary(result, {"cover", "covers", "album or single song has no cover",
                                                "albums or single songs have no cover"});
  return library.covers().warning().empty() ? status : kIncomplete;
}

}  // namespace zemhost
