#include "zemhost/commands/Commands.h"
#include "zemhost/commands/FilesSummary.h"
#include "zemhost/rescue/PhotoExport.h"

namespace zemhost {

int exportPhotos(const PictureArguments &arguments) {
  return writeFilesSummary(writePhotos(arguments.path, arguments.destination), {"photo", "photos", {}, {}});
}

}  // namespace zemhost
