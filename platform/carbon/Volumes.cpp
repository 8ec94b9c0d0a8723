#include "platform/carbon/Volumes.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/carbon/Disk.h"
#include "platform/carbon/Failure.h"
#include "platform/carbon/MacNames.h"
#include "platform/carbon/Names.h"

namespace carbon {
namespace {

constexpr size_t kMostVolumes = 0x1000;  // far more than are ever mounted; each is looked through by name

int16_t referenceAt(size_t index) { return static_cast<int16_t>(kBootVolume - static_cast<int>(index)); }

std::vector<std::string> entriesOf(const std::string &folder) {
  std::vector<std::string> entries;
  forEachEntry(openDirectory(folder), [&entries](const std::string &name) {
    entries.push_back(name);
    return true;
  });
  std::sort(entries.begin(), entries.end());
  return entries;
}

// Only names are looked at here: a volume that has stopped answering must not hold up the others.
void addVolumesIn(const std::string &folder, std::vector<Volume> &volumes) {
  const std::string real = realPath(folder);
  if (real.empty()) return;
  for (const std::string &entry : entriesOf(real)) {
    Volume volume{exchanged(entry), std::string(real).append("/").append(entry)};
    if (isValidName(volume.name)) volumes.push_back(std::move(volume));
  }
}

bool holds(std::string_view root, std::string_view path) {
  if (root == "/") return true;
  return path.substr(0, root.size()) == root && (path.size() == root.size() || path[root.size()] == '/');
}

}  // namespace

Volumes::Volumes(std::string prefix)
    : prefix_(std::move(prefix)), records_{{{"System", "/"}, Standing::kMounted}} {}

void Volumes::declare(const std::string &name, const std::string &root) {
  if (!isValidName(name)) throw Failure{bdNamErr};
  const std::string real = realPath(root);
  if (real.empty() || !openDirectory(real)) throw Failure{fnfErr};
  const int16_t declared = referenceOf({name, real}, Standing::kDeclared);
  for (size_t i = 0; i < records_.size(); ++i) {
    Record &record = records_[i];
    if (referenceAt(i) != declared && record.standing == Standing::kDeclared && record.volume.name == name)
      record.standing = i == 0 ? Standing::kMounted : Standing::kReplaced;
  }
}

std::vector<Volume> Volumes::inOrder() const {
  std::vector<Volume> volumes;
  for (const Record &record : records_)
    if (record.standing == Standing::kDeclared) volumes.push_back(record.volume);
  addVolumesIn(prefix_ + "/Volumes", volumes);
  for (const char *place : {"/media/", "/run/media/"}) {
    const std::string users = prefix_ + place;
    for (const std::string &user : entriesOf(users)) addVolumesIn(users + user, volumes);
  }
  addVolumesIn(prefix_ + "/mnt", volumes);
  volumes.push_back(records_.front().volume);
  return volumes;
}

int16_t Volumes::referenceOf(const Volume &volume, Standing standing) {
  for (size_t i = 0; i < records_.size(); ++i) {
    Record &record = records_[i];
    if (record.volume.name != volume.name || record.volume.root != volume.root) continue;
    if (record.standing != Standing::kDeclared) record.standing = standing;
    return referenceAt(i);
  }
  if (records_.size() == kMostVolumes) throw Failure{memFullErr};
  records_.push_back({volume, standing});
  return referenceAt(records_.size() - 1);
}

int16_t Volumes::find(std::string_view name) {
  // A declared volume is found by its exact name without a look at the disk.
  for (size_t i = 0; i < records_.size(); ++i)
    if (records_[i].standing == Standing::kDeclared && records_[i].volume.name == name) return referenceAt(i);

  const std::vector<Volume> volumes = inOrder();
  const auto take = [&](const auto &matches) -> int16_t {
    for (const Volume &volume : volumes)
      if (matches(volume) && openDirectory(volume.root)) return referenceOf(volume, Standing::kMounted);
    return 0;
  };
  if (const int16_t exact = take([&](const Volume &volume) { return volume.name == name; })) return exact;
  const std::u32string wanted = folded(name);
  if (const int16_t alike = take([&](const Volume &volume) { return folded(volume.name) == wanted; }))
    return alike;
  throw Failure{nsvErr};
}

int16_t Volumes::holding(std::string_view path) {
  const std::vector<Volume> volumes = inOrder();
  const Volume *best = &volumes.back();
  size_t longest = 0;
  for (const Volume &volume : volumes) {
    if (volume.root.size() <= longest || !holds(volume.root, path)) continue;
    best = &volume;
    longest = volume.root.size();
  }
  return referenceOf(*best, Standing::kMounted);
}

const Volume &Volumes::at(int16_t reference) const {
  const int index = kBootVolume - reference;
  if (index < 0 || static_cast<size_t>(index) >= records_.size()) throw Failure{nsvErr};
  const Record &record = records_[static_cast<size_t>(index)];
  if (record.standing == Standing::kReplaced) throw Failure{nsvErr};
  return record.volume;
}

}  // namespace carbon
