#include "platform/carbon/FileManager.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include "platform/carbon/MacNames.h"
#include "platform/carbon/Names.h"

namespace carbon {
namespace {

// A reference holds the specification in its first bytes.
static_assert(sizeof(FSSpec) <= sizeof(FSRef));

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (size_t at = 0;;) {
    const size_t end = text.find(separator, at);
    parts.emplace_back(text.substr(at, end - at));
    if (end == std::string_view::npos) return parts;
    at = end + 1;
  }
}

// The names of a colon-separated path behind its volume or its leading colon; an empty name goes up.
std::vector<std::string> namesIn(std::string_view path) {
  std::vector<std::string> names = split(path, ':');
  if (names.back().empty()) names.pop_back();
  for (const std::string &name : names)
    if (!name.empty() && !isValidName(name)) throw Failure{bdNamErr};
  return names;
}

bool alike(std::string_view one, std::string_view other) { return folded(one) == folded(other); }

// The absolute path with the symbolic links of its directories followed.
std::string resolved(std::string path) {
  if (path.empty()) throw Failure{bdNamErr};
  if (openDirectory(path))
    if (std::string real = realPath(path); !real.empty()) return real;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const size_t slash = path.rfind('/');
  const std::string real = realPath(slash == std::string::npos ? "." : path.substr(0, slash + 1));
  if (!real.empty()) return real + "/" + path.substr(slash + 1);
  // A path too long for the system to resolve can still be walked name by name.
  if (errno != ENAMETOOLONG) throw Failure{dirNFErr};
  return path.front() == '/' ? path : realPath(".") + "/" + path;
}

// The path without empty names and ".", which lead nowhere else.
std::string tidied(std::string_view path) {
  std::string result;
  for (const std::string &name : split(path, '/'))
    if (!name.empty() && name != ".") result += "/" + name;
  return result.empty() ? "/" : result;
}

}  // namespace

Directory FileManager::open(int16_t volume, int32_t id) {
  return directories_.open(volume, volumes_.at(volume).root, id);
}

FileManager::Target FileManager::walk(int16_t volume, int32_t directory,
                                      const std::vector<std::string> &names) {
  Target target{open(volume, directory), {}};
  for (size_t i = 0; i < names.size(); ++i) {
    Directory &at = target.directory;
    const std::string wanted = exchanged(names[i]);
    if (wanted.empty()) {
      const int32_t parent = directories_.parentOf(at);
      if (parent == kAboveRoot) throw Failure{dirNFErr};
      at = open(volume, parent);
    } else if (i + 1 < names.size()) {
      directories_.enter(at, wanted);
    } else {
      target.name = findEntry(at.descriptor, wanted).value_or(wanted);
      target.exists = exists(at.descriptor, *target.name);
    }
  }
  return target;
}

FileManager::Target FileManager::targetOf(const FSSpec &spec) {
  const size_t length = spec.name[0];
  const std::string name(reinterpret_cast<const char *>(spec.name) + 1, std::min(length, kLongestName));
  if (length > kLongestName || !isValidName(name)) throw Failure{bdNamErr};
  if (spec.parID != kAboveRoot) return walk(spec.vRefNum, spec.parID, {name});
  if (!alike(name, volumes_.at(spec.vRefNum).name)) throw Failure{nsvErr};
  return walk(spec.vRefNum, kRoot, {});
}

FSSpec FileManager::specOf(const Target &target) const {
  const Directory &directory = target.directory;
  const bool isRoot = !target.name && directory.id == kRoot;
  const std::string itself = directory.below.substr(directory.below.rfind('/') + 1);
  const std::string name =
      isRoot ? volumes_.at(directory.volume).name : exchanged(target.name.value_or(itself));
  FSSpec spec = {};
  spec.vRefNum = directory.volume;
  spec.parID = target.name ? directory.id : directories_.parentOf(directory);
  if (name.size() > kLongestName) throw Failure{bdNamErr};  // a directory that was given a longer name since
  spec.name[0] = static_cast<uint8_t>(name.size());
  std::memcpy(spec.name + 1, name.data(), name.size());
  return spec;
}

OSErr FileManager::makeSpec(int16_t volume, int32_t directory, std::string_view path, FSSpec &spec) {
  if (path.empty()) throw Failure{bdNamErr};
  const size_t colon = std::min(path.find(':'), path.size());
  const bool isFull = (volume == 0 && directory == 0) || (colon != 0 && colon != path.size());
  const std::string_view first = path.substr(0, colon);
  if (isFull && !isValidName(first)) throw Failure{bdNamErr};
  if (isFull || colon == 0) path = colon == path.size() ? std::string_view() : path.substr(colon + 1);
  std::vector<std::string> names = namesIn(path);

  if (isFull) {
    volume = volumes_.find(first);
    directory = kRoot;
  } else {
    if (volume == 0) volume = kBootVolume;
    if (directory == 0) directory = kRoot;
  }
  if (directory == kAboveRoot) {
    if (names.empty() || !alike(names.front(), volumes_.at(volume).name)) throw Failure{nsvErr};
    names.erase(names.begin());
    directory = kRoot;
  }
  const Target target = walk(volume, directory, names);
  spec = specOf(target);
  return target.exists ? noErr : fnfErr;
}

OSErr FileManager::specFromPath(const std::string &posixPath, FSSpec &spec) {
  const std::string path = tidied(resolved(posixPath));
  const int16_t volume = volumes_.holding(path);
  const std::string &root = volumes_.at(volume).root;
  const std::string below = tidied(path.substr(root.size()));
  const Target target = walk(volume, kRoot, namesIn(exchanged(below.substr(1))));
  spec = specOf(target);
  return target.exists ? noErr : fnfErr;
}

FSRef FileManager::makeRef(const FSSpec &spec) {
  const Target target = targetOf(spec);
  if (!target.exists) throw Failure{fnfErr};
  const FSSpec found = specOf(target);
  FSRef ref = {};
  std::memcpy(ref.hidden, &found, sizeof found);
  return ref;
}

std::string FileManager::posixPath(const FSRef &ref) {
  FSSpec spec;
  std::memcpy(&spec, ref.hidden, sizeof spec);
  const Target target = targetOf(spec);
  if (!target.exists) throw Failure{fnfErr};
  const std::string &root = volumes_.at(target.directory.volume).root;
  const std::string path = root + target.directory.below + (target.name ? "/" + *target.name : "");
  return root == "/" && path.size() > 1 ? path.substr(1) : path;
}

std::string FileManager::macPath(const FSSpec &spec) {
  const Target target = targetOf(spec);
  const std::string root = volumes_.at(target.directory.volume).name;
  const std::string path = root + exchanged(target.directory.below);
  return target.name ? path + ":" + exchanged(*target.name) : path + ":";
}

}  // namespace carbon
