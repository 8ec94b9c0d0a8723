#include "bench/BareHost.h"

#include <dlfcn.h>
#include <stdexcept>

#include "platform/carbon/CarbonFiles.h"

namespace bench {
namespace {

uint8_t g_characters[] = {4, 't', 'e', 'x', 't', 0};
REALstringStruct g_string = {1, g_characters, sizeof g_characters, 4, 0};
int g_other = 0;  // what the items that the plug-in makes point to
REALclassDefinition *g_class = nullptr;

void RegisterPluginVersion(int32_t /*version*/) {}

void RegisterClass(REALclassDefinition *record) {
  record->dataOffset = 0;
  g_class = record;
}

REALstring BuildString(const char * /*bytes*/, int32_t /*length*/) { return &g_string; }
uint32_t GetStringEncoding(REALstring /*string*/) { return 0; }
void SetStringEncoding(REALstring /*string*/, uint32_t /*encoding*/) {}
REALstring ConvertString(REALstring string, uint32_t /*encoding*/) { return string; }
REALfolderItem ItemFromSpec(const FSSpec * /*spec*/) { return reinterpret_cast<REALfolderItem>(&g_other); }
int32_t SpecFromItem(FSSpec *spec, REALfolderItem item) {
  *spec = reinterpret_cast<const Item *>(item)->spec;
  return 1;
}
REALstring PathFromItem(REALfolderItem /*item*/) { return &g_string; }
double Version() { return 5.9; }
void UnlockString(REALstring /*string*/) {}
void UnlockObject(REALobject /*object*/) {}

template <typename Function>
void *Slot(Function *function) {
  return reinterpret_cast<void *>(function);
}

void *Resolve(const char *name) {
  struct Service {
    std::string_view name;
    void *entry;
  };
  static const Service services[] = {
      {"ResolverPPC", Slot(Resolve)},
      {"RegisterPluginVersion", Slot(RegisterPluginVersion)},
      {"PluginRegisterClass", Slot(RegisterClass)},
      {"REALBuildString", Slot(BuildString)},
      {"REALGetStringEncoding", Slot(GetStringEncoding)},
      {"REALSetStringEncoding", Slot(SetStringEncoding)},
      {"REALConvertString", Slot(ConvertString)},
      {"FolderItemFromFSSpec", Slot(ItemFromSpec)},
      {"REALFSSpecFromFolderItem", Slot(SpecFromItem)},
      {"REALpathFromFolderItem", Slot(PathFromItem)},
      {"REALGetRBVersion", Slot(Version)},
      {"RuntimeUnlockString", Slot(UnlockString)},
      {"RuntimeUnlockObject", Slot(UnlockObject)},
  };
  for (const Service &service : services) {
    if (service.name == name) return service.entry;
  }
  return nullptr;
}

}  // namespace

const REALclassDefinition &PluginClass() {
  if (g_class == nullptr) {
    void *plugin = dlopen(ZEM_PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) throw std::runtime_error(dlerror());
    auto *main = reinterpret_cast<void (*)(REALresolver)>(dlsym(plugin, "REALPluginMain"));
    if (main == nullptr) throw std::runtime_error("the plug-in has no entry point");
    main(Resolve);
    if (g_class == nullptr) throw std::runtime_error("the plug-in registered no class");
  }
  return *g_class;
}

REALproc MethodSlot(std::string_view declaration) {
  const REALclassDefinition &record = PluginClass();
  for (intptr_t i = 0; i < record.methodCount; ++i) {
    if (record.methods[i].declaration == declaration) return record.methods[i].function;
  }
  throw std::runtime_error("no such method: " + std::string(declaration));
}

Item::Item(const std::string &path) {
  if (CarbonSpecFromPath(path.c_str(), &spec) != noErr) throw std::runtime_error(path + ": no such file");
}

Instance::Instance() { Method<void>("Constructor")(get()); }

Instance::~Instance() { reinterpret_cast<void (*)(REALobject)>(PluginClass().destructor)(get()); }

bool Instance::Load(const Item &item) {
  return Method<int32_t, const Item *>("Load(f As FolderItem) As Boolean")(get(), &item) != 0;
}

void Instance::Set(std::string_view property, int32_t value) {
  const REALclassDefinition &record = PluginClass();
  for (intptr_t i = 0; i < record.propertyCount; ++i) {
    const REALproperty &entry = record.properties[i];
    if (entry.name != property) continue;
    reinterpret_cast<void (*)(REALobject, intptr_t, int32_t)>(entry.setter)(get(), entry.parameter, value);
    return;
  }
  throw std::runtime_error("no such property: " + std::string(property));
}

}  // namespace bench
