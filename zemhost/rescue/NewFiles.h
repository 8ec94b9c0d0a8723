#pragma once

// Files that a command adds to a destination, each under a name of its own, and none twice.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/carbon/Descriptor.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/TargetNames.h"

namespace zemhost {

class NewFiles {
 public:
  explicit NewFiles(const DestinationFolder &destination) : destination_(destination) {}

  struct Added {
    std::string name;    // below the destination
    bool isNew = false;  // else it was there already, with the same content
  };

  // Adds a file with the content of an open one under the first name, without or with a number, that is free
  // or has this content already. No other file is replaced. Throws CopyFailure.
  Added add(const carbon::Descriptor &content, const TargetNames::Named &named);

  // Names that another file had, so that a number was added.
  uint64_t evaded() const { return evaded_; }

 private:
  const DestinationFolder &destination_;
  TargetNames names_;
  uint64_t evaded_ = 0;
};

// Whether a name below the destination is free, has this content, or another.
enum class Occupant { None, Same, Other };
Occupant occupantOf(const DestinationFolder &destination, const std::string &name,
                    const carbon::Descriptor &content);

// An open file without a name that holds these bytes. Throws HostError when there is no room for it.
carbon::Descriptor fileOf(std::string_view bytes);

}  // namespace zemhost
