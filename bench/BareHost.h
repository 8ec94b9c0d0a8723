#pragma once

// A host that does next to nothing, so that what is measured is the plug-in: it hands out the same string for
// every text, converts by returning it again, and answers folder items with one file.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"

namespace bench {

// Loads the plug-in once for the process and registers its class here. Throws std::runtime_error.
const REALclassDefinition &PluginClass();

// The function slot of the method with exactly this declaration, with the signature the caller knows it has.
// Throws std::runtime_error for an unknown declaration.
REALproc MethodSlot(std::string_view declaration);

template <typename Result, typename... Arguments>
auto Method(std::string_view declaration) {
  return reinterpret_cast<Result (*)(REALobject, Arguments...)>(MethodSlot(declaration));
}

// A folder item as a host holds one: where its file lies was found when it was made, before it is loaded.
// Throws std::runtime_error when there is no such file.
struct Item {
  explicit Item(const std::string &path);
  FSSpec spec = {};
};

// An object of the class, its constructor run and its destructor to come.
class Instance {
 public:
  Instance();
  Instance(const Instance &) = delete;
  Instance &operator=(const Instance &) = delete;
  ~Instance();

  REALobject get() { return reinterpret_cast<REALobject>(block_); }

  // Calls Load with an item. False when the plug-in rejects its file.
  bool Load(const Item &item);

  // Sets an Integer or Boolean property.
  void Set(std::string_view property, int32_t value);

 private:
  alignas(16) unsigned char block_[256] = {};
};

}  // namespace bench
