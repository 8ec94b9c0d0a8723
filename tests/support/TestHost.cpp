#include "tests/support/TestHost.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

#include "platform/carbon/CarbonFiles.h"
#include "tests/support/Folders.h"

namespace support {
namespace {

TestHost *current = nullptr;

constexpr size_t kGuard = 64;
constexpr uint8_t kGuardByte = 0xa5;

std::string Named(std::string_view name, uint64_t number) {
  return std::string(name) + " " + std::to_string(number);
}

}  // namespace

struct TestHost::Item {
  int32_t references = 1;
  FSSpec spec{};
};

// An object: its own words, the plug-in's data at dataOffset_, and guard bytes around the data.
struct TestHost::ObjectBlock {
  std::unique_ptr<uint8_t[]> bytes{};
  size_t size = 0;
};

// What the look-ups answer; plain functions, as a host has them.
struct TestHost::Services {
  // While a service runs.
  struct InHost {
    InHost() { Cross(true); }
    InHost(const InHost &) = delete;
    InHost &operator=(const InHost &) = delete;
    ~InHost() { Cross(false); }
    static void Cross(bool inHost) {
      if (current->crossing) current->crossing(inHost);
    }
  };

  static void *Resolve(const char *name) {
    const InHost here;
    current->events_.push_back(std::string("? ") + name);
    if (current->missing.contains(name)) return nullptr;
    if (std::string_view(name) == "ResolverPPC") return reinterpret_cast<void *>(&ResolvePPC);
    return nullptr;
  }

  static void *ResolvePPC(const char *name) {
    const InHost here;
    current->events_.push_back(std::string("? ") + name);
    if (current->missing.contains(name)) return nullptr;
    static const std::map<std::string_view, void *> kServices = {
        {"RegisterPluginVersion", reinterpret_cast<void *>(&RegisterPluginVersion)},
        {"PluginRegisterClass", reinterpret_cast<void *>(&PluginRegisterClass)},
        {"PluginRegisterMethod", reinterpret_cast<void *>(&PluginRegisterMethod)},
        {"REALBuildString", reinterpret_cast<void *>(&BuildString)},
        {"REALGetStringEncoding", reinterpret_cast<void *>(&GetStringEncoding)},
        {"REALSetStringEncoding", reinterpret_cast<void *>(&SetStringEncoding)},
        {"REALConvertString", reinterpret_cast<void *>(&ConvertString)},
        {"FolderItemFromFSSpec", reinterpret_cast<void *>(&FolderItemFromFSSpec)},
        {"REALFSSpecFromFolderItem", reinterpret_cast<void *>(&FSSpecFromFolderItem)},
        {"REALpathFromFolderItem", reinterpret_cast<void *>(&PathFromFolderItem)},
        {"REALGetRBVersion", reinterpret_cast<void *>(&GetRBVersion)},
        {"RuntimeUnlockString", reinterpret_cast<void *>(&UnlockString)},
        {"RuntimeUnlockObject", reinterpret_cast<void *>(&UnlockObject)}};
    const auto found = kServices.find(name);
    return found == kServices.end() ? nullptr : found->second;
  }

  static void RegisterPluginVersion(int32_t interfaceVersion) {
    const InHost here;
    Note(Named("RegisterPluginVersion", static_cast<uint32_t>(interfaceVersion)));
  }

  static void PluginRegisterClass(REALclassDefinition *record) {
    const InHost here;
    Note("PluginRegisterClass");
    record->dataOffset = static_cast<intptr_t>(current->dataOffset_);
    current->class_ = record;
    if (current->version < 5.9) current->convertedMethods_ = record->methods;
  }

  static void PluginRegisterMethod(REALmethodDefinition * /*method*/) {
    const InHost here;
    Note("PluginRegisterMethod");
  }

  static REALstring BuildString(const char *bytes, int32_t length) {
    const InHost here;
    Note("REALBuildString");
    if (length < 0) current->faults_.emplace_back("a string of negative length");
    if (current->buildFails || length < 0) return nullptr;
    return current->strings_.Make({bytes, static_cast<size_t>(length)}, kUntagged);
  }

  static uint32_t GetStringEncoding(REALstring string) {
    const InHost here;
    Note("REALGetStringEncoding");
    if (string == nullptr) return current->encodingOfNoString;
    return current->strings_.Check(string, "REALGetStringEncoding") ? string->mEncoding : 0;
  }

  static void SetStringEncoding(REALstring string, uint32_t encoding) {
    const InHost here;
    Note("REALSetStringEncoding");
    if (current->strings_.Check(string, "REALSetStringEncoding")) string->mEncoding = encoding;
  }

  static REALstring ConvertString(REALstring string, uint32_t encoding) {
    const InHost here;
    Note("REALConvertString");
    if (!current->strings_.Check(string, "REALConvertString")) return nullptr;
    const HostText text = current->strings_.Read(string);
    current->conversions_.push_back({text.bytes, text.encoding, encoding});
    if (current->convertFails) return nullptr;
    return current->strings_.Make(Convert(text.bytes, text.encoding, encoding), encoding);
  }

  static REALfolderItem FolderItemFromFSSpec(const FSSpec *spec) {
    const InHost here;
    Note("FolderItemFromFSSpec");
    current->lastSpec_ = *spec;
    if (spec->vRefNum == 0 && spec->parID == 0 && spec->name[0] == 0) return nullptr;
    return current->NewItem(*spec);
  }

  static int32_t FSSpecFromFolderItem(FSSpec *spec, REALfolderItem item) {
    const InHost here;
    Note("REALFSSpecFromFolderItem");
    if (!current->CheckItem(item, "REALFSSpecFromFolderItem") || current->specAnswer == 0) return 0;
    *spec = current->Find(item)->spec;
    return current->specAnswer;
  }

  static REALstring PathFromFolderItem(REALfolderItem item) {
    const InHost here;
    Note("REALpathFromFolderItem");
    if (!current->CheckItem(item, "REALpathFromFolderItem")) return nullptr;
    if (current->pathOfItems) {
      const std::optional<std::string> path = current->pathOfItems();
      return path ? current->strings_.Make(*path, kUtf8) : nullptr;
    }
    std::array<char, 4096> path{};
    if (CarbonPathFromSpec(&current->Find(item)->spec, path.data(), path.size()) != noErr) return nullptr;
    return current->strings_.Make(path.data(), kUtf8);
  }

  static double GetRBVersion() {
    const InHost here;
    Note("REALGetRBVersion");
    return current->version;
  }

  static void UnlockString(REALstring string) {
    const InHost here;
    Note("RuntimeUnlockString");
    current->strings_.Release(string);
  }

  static void UnlockObject(REALobject object) {
    const InHost here;
    Note("RuntimeUnlockObject");
    current->Release(reinterpret_cast<REALfolderItem>(object));
  }

 private:
  static void Note(std::string event) { current->events_.push_back(std::move(event)); }
};

void PrintTo(const Conversion &conversion, std::ostream *out) {
  PrintTo(Text(conversion.bytes, conversion.from), out);
  *out << " to 0x" << std::hex << conversion.to << std::dec;
}

TestHost::TestHost(const Setup &setup)
    : version(setup.version), missing(setup.missing), dataOffset_(setup.dataOffset) {
  if (current != nullptr) throw std::logic_error("hosts live one at a time");
  current = this;
  try {
    Load(setup.entryPoint);
  } catch (...) {
    current = nullptr;
    throw;
  }
}

void TestHost::Load(EntryPoint entryPoint) {
  entryPoint_ = entryPoint;
  if (entryPoint_ == nullptr) {
    // Still loaded, it would remember the services of another host.
    if (dlopen(PluginFile().c_str(), RTLD_NOW | RTLD_NOLOAD) != nullptr)
      throw std::runtime_error("still loaded");
    library_ = dlopen(PluginFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) throw std::runtime_error(dlerror());
    entryPoint_ = reinterpret_cast<EntryPoint>(dlsym(library_, "REALPluginMain"));
    if (entryPoint_ == nullptr) throw std::runtime_error("no entry point");
  }
  EnterAgain();
}

SUPPORT_CALLS_SLOTS void TestHost::EnterAgain() { entryPoint_(&Services::Resolve); }

TestHost::~TestHost() {
  while (!objects_.empty()) Delete(objects_.begin()->first);
  if (library_ != nullptr) dlclose(library_);
  // The three-word list belongs to the plug-in for its whole life, which is over now.
  if (library_ != nullptr) std::free(convertedMethods_);
  current = nullptr;
}

std::vector<std::string> TestHost::Declarations() const {
  std::vector<std::string> declarations;
  if (class_ == nullptr) return declarations;
  for (size_t i = 0; i < static_cast<size_t>(class_->methodCount); ++i) {
    declarations.emplace_back(MethodAt(i).declaration);
  }
  return declarations;
}

REALmethodDefinition TestHost::MethodAt(size_t i) const {
  if (version >= 5.9) return class_->methods[i];
  const REALmethodDefinitionV6 &method = reinterpret_cast<REALmethodDefinitionV6 *>(class_->methods)[i];
  return {method.function, method.setter, method.declaration, 0};
}

PropertySlots TestHost::PropertyNamed(std::string_view name) const {
  if (class_ == nullptr) throw std::logic_error("no class");
  for (intptr_t i = 0; i < class_->propertyCount; ++i) {
    const REALproperty &property = class_->properties[i];
    if (name == property.name) return {property.name, property.type, property.getter, property.setter};
  }
  throw std::logic_error("no property " + std::string(name));
}

size_t TestHost::Count(std::string_view event) const {
  return static_cast<size_t>(std::count(events_.begin(), events_.end(), event));
}

void TestHost::Forget() {
  events_.clear();
  conversions_.clear();
  called_.clear();
  lastSpec_ = {};
}

bool TestHost::Fits(std::string_view typeName, char kind) {
  if (typeName == "Integer" || typeName == "Boolean") return kind == 'i';
  if (typeName == "String") return kind == 's';
  return typeName == "FolderItem" && kind == 'f';
}

REALproc TestHost::Method(std::string_view declaration, std::initializer_list<char> arguments, char result) {
  called_.emplace(declaration);
  const std::string text(declaration);
  std::string_view rest = text;
  for (const char kind : arguments) {
    const size_t as = rest.find(" As ");
    if (as == std::string_view::npos) throw std::logic_error("too many arguments for " + text);
    rest.remove_prefix(as + 4);
    const size_t end = rest.find_first_of(",)");
    if (end == std::string_view::npos || !Fits(rest.substr(0, end), kind)) {
      throw std::logic_error("wrong arguments for " + text);
    }
    rest.remove_prefix(end);
  }
  if (rest.find(',') != std::string_view::npos) throw std::logic_error("too few arguments for " + text);
  const size_t as = rest.find(" As ");
  if (as == std::string_view::npos ? result != 'v' : !Fits(rest.substr(as + 4), result)) {
    throw std::logic_error("wrong result for " + text);
  }
  for (size_t i = 0; class_ != nullptr && i < static_cast<size_t>(class_->methodCount); ++i) {
    const REALmethodDefinition method = MethodAt(i);
    if (declaration == method.declaration) return method.function;
  }
  throw std::logic_error("no method " + text);
}

REALobject TestHost::NewRaw() {
  const auto dataSize = static_cast<size_t>(class_->dataSize);
  auto block = std::make_unique<ObjectBlock>();
  block->size = dataOffset_ + dataSize + kGuard;
  block->bytes = std::make_unique<uint8_t[]>(block->size);
  std::fill_n(block->bytes.get(), block->size, kGuardByte);
  std::fill_n(block->bytes.get() + dataOffset_, dataSize, uint8_t{0});
  const auto object = reinterpret_cast<REALobject>(block->bytes.get());
  objects_.emplace(object, std::move(block));
  return object;
}

REALobject TestHost::New() {
  const REALobject object = NewRaw();
  Call<void>(object, "Constructor");
  return object;
}

SUPPORT_CALLS_SLOTS void TestHost::Destruct(REALobject object) {
  const InPlugin here(*this);
  reinterpret_cast<void (*)(REALobject)>(class_->destructor)(object);
}

void TestHost::Delete(REALobject object) {
  Destruct(object);
  const ObjectBlock &block = *objects_.at(object);
  const size_t dataEnd = dataOffset_ + static_cast<size_t>(class_->dataSize);
  for (size_t i = 0; i < block.size; ++i) {
    if (i >= dataOffset_ && i < dataEnd) continue;
    if (block.bytes[i] == kGuardByte) continue;
    faults_.push_back("byte written " + std::to_string(i) + " bytes into an object");
    break;
  }
  objects_.erase(object);
}

void *TestHost::Data(REALobject object) const {
  return reinterpret_cast<uint8_t *>(object) + class_->dataOffset;
}

HostText TestHost::Take(REALstring string) {
  HostText text = strings_.Read(string);
  if (string != nullptr) strings_.Release(string);
  return text;
}

REALfolderItem TestHost::NewItem(const FSSpec &spec) {
  items_.push_back(std::make_unique<Item>());
  items_.back()->spec = spec;
  return reinterpret_cast<REALfolderItem>(items_.back().get());
}

TestHost::Item *TestHost::Find(REALfolderItem item) const {
  for (const std::unique_ptr<Item> &one : items_) {
    if (reinterpret_cast<REALfolderItem>(one.get()) == item) return one.get();
  }
  return nullptr;
}

REALfolderItem TestHost::MakeItem(const FSSpec &spec) { return NewItem(spec); }

REALfolderItem TestHost::MakeItem(const std::string &posixPath) {
  FSSpec spec{};
  const OSErr result = CarbonSpecFromPath(posixPath.c_str(), &spec);
  if (result != noErr && result != fnfErr) throw std::runtime_error("no specification for " + posixPath);
  return NewItem(spec);
}

bool TestHost::CheckItem(REALfolderItem item, const char *use) {
  const Item *found = Find(item);
  if (found != nullptr && found->references > 0) return true;
  faults_.push_back(std::string(use) + " of what is no folder item, or of a released one");
  return false;
}

FSSpec TestHost::SpecOf(REALfolderItem item) { return CheckItem(item, "read") ? Find(item)->spec : FSSpec{}; }

void TestHost::Release(REALfolderItem item) {
  if (CheckItem(item, "release")) --Find(item)->references;
}

size_t TestHost::LiveItems() const {
  return static_cast<size_t>(
      std::count_if(items_.begin(), items_.end(), [](const auto &item) { return item->references > 0; }));
}

REALfolderItem TestHost::LastLiveItem() const {
  const auto found =
      std::find_if(items_.rbegin(), items_.rend(), [](const auto &item) { return item->references > 0; });
  return found == items_.rend() ? nullptr : reinterpret_cast<REALfolderItem>(found->get());
}

std::vector<std::string> TestHost::Faults() {
  std::vector<std::string> all = faults_;
  all.insert(all.end(), strings_.Faults().begin(), strings_.Faults().end());
  return all;
}

}  // namespace support
