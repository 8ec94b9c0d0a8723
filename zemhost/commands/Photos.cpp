#include "zemhost/commands/Commands.h"
#include "zemhost/commands/PictureSummary.h"
#include "zemhost/rescue/PhotoExport.h"

namespace zemhost {

int exportPhotos(const PictureArguments &arguments) {
  return writePictureSummary(writePhotos(arguments.path, arguments.destination), {"photo", "photos", {}, {}});
}

}  // namespace zemhost
