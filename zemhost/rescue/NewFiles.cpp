#include "zemhost/rescue/NewFiles.h"

#include <cerrno>
#include <sys/mman.h>
#include <sys/stat.h>

#include "host/Error.h"
#include "zemhost/files/PendingFile.h"
#include "zemhost/rescue/FileCopy.h"

namespace zemhost {

NewFiles::Added NewFiles::add(const carbon::Descriptor &content, const TargetNames::Named &named) {
  for (;;) {
    Added added;
    added.name = names_.take(named, [&](const std::string &name) {
      const Occupant occupant = occupantOf(destination_, name, content);
      if (occupant == Occupant::Other) ++evaded_;
      added.isNew = occupant == Occupant::None;
      return occupant != Occupant::Other;
    });
    if (!added.isNew) return added;
    try {
      destination_.add(content, added.name);
      return added;
    } catch (const CopyFailure &failure) {
      if (failure.error() != EEXIST) throw;  // else another run has just taken the name
    }
  }
}

Occupant occupantOf(const DestinationFolder &destination, const std::string &name,
                    const carbon::Descriptor &content) {
  const auto status = destination.statusOf(name);
  if (!status) return Occupant::None;
  struct stat own {};
  if (!S_ISREG(status->st_mode) || fstat(content.number(), &own) != 0 || own.st_size != status->st_size)
    return Occupant::Other;
  return sameContent(destination.open(name), content) ? Occupant::Same : Occupant::Other;
}

carbon::Descriptor fileOf(std::string_view bytes) {
  carbon::Descriptor file(memfd_create("content", MFD_CLOEXEC));
  if (!file) throw HostError("a file in memory", errno);
  writeAll(file.number(), bytes, "a file in memory");
  return file;
}

}  // namespace zemhost
