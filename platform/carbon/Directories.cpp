#include "platform/carbon/Directories.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "platform/carbon/Failure.h"

namespace carbon {
namespace {

constexpr int32_t kFirstId = kRoot + 1;

void moveInto(Directory &directory, int32_t id, Descriptor child, const std::string &name) {
  directory.below += "/" + name;
  directory.descriptor = std::move(child);
  directory.id = id;
}

// Opens the directory of this identity, wherever in its parent it is now: `name` is tried first, and is the
// name it was found under afterwards. No descriptor when it is not there.
Descriptor findAgain(const Descriptor &parent, const Identity &identity, std::string &name) {
  const auto openIfSame = [&](const std::string &entry) {
    Descriptor child = openDirectory(parent, entry);
    return child && identify(child, entry) == identity ? std::move(child) : Descriptor();
  };
  Descriptor found = openIfSame(name);
  if (found) return found;
  forEachEntry(parent, [&](const std::string &entry) {
    found = openIfSame(entry);
    if (found) name = entry;
    return !found;
  });
  return found;
}

}  // namespace

Directory Directories::openRoot(int16_t volume, const std::string &root) {
  Directory directory{volume, kRoot, openDirectory(root), {}};
  if (!directory.descriptor) throw Failure{nsvErr};
  return directory;
}

Directories::Known::value_type &Directories::known(int16_t volume, int32_t id) const {
  const int64_t index = static_cast<int64_t>(id) - kFirstId;
  if (index < 0 || index >= static_cast<int64_t>(byId_.size())) throw Failure{dirNFErr};
  Known::value_type *entry = byId_[static_cast<size_t>(index)];
  if (entry == nullptr || entry->first.volume != volume) throw Failure{dirNFErr};
  return *entry;
}

Directory Directories::open(int16_t volume, const std::string &root, int32_t id) {
  std::vector<Known::value_type *> way;
  for (int32_t at = id; at != kRoot; at = way.back()->first.parent) way.push_back(&known(volume, at));
  Directory directory = openRoot(volume, root);
  for (; !way.empty(); way.pop_back()) {
    auto &[key, record] = *way.back();
    Descriptor child = findAgain(directory.descriptor, key.identity, record.name);
    if (!child) throw Failure{dirNFErr};
    moveInto(directory, record.id, std::move(child), record.name);
  }
  return directory;
}

void Directories::enter(Directory &directory, const std::string &name) {
  const std::optional<std::string> entry = findEntry(directory.descriptor, name);
  if (!entry) throw Failure{dirNFErr};
  Descriptor child = openDirectory(directory.descriptor, *entry);
  if (!child) throw Failure{dirNFErr};
  const int32_t id = idOf({directory.volume, directory.id, identify(child, *entry)}, *entry);
  moveInto(directory, id, std::move(child), *entry);
}

int32_t Directories::idOf(const Key &key, const std::string &name) {
  if (const auto found = known_.find(key); found != known_.end()) return found->second.id;
  if (byId_.size() == static_cast<size_t>(std::numeric_limits<int32_t>::max() - kRoot))
    throw Failure{memFullErr};
  const auto id = static_cast<int32_t>(byId_.size()) + kFirstId;
  byId_.push_back(nullptr);  // stays null, naming nothing, if the record finds no memory
  byId_.back() = &*known_.emplace(key, Record{id, name}).first;
  return id;
}

int32_t Directories::parentOf(const Directory &directory) const {
  return directory.id == kRoot ? kAboveRoot : known(directory.volume, directory.id).first.parent;
}

}  // namespace carbon
