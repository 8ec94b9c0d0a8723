#include "sdk/PluginMain.h"

#include "platform/carbon/CarbonFiles.h"

REALresolver gResolver = nullptr;
REALresolver gResolverPPC = nullptr;

namespace {

// One host service. Empty until a look-up succeeds, fixed afterwards.
template <typename Signature>
class HostService;

template <typename Result, typename... Arguments>
class HostService<Result(Arguments...)> {
 public:
  explicit constexpr HostService(const char *name) : name_(name) {}

  // Looks the service up if that has not succeeded yet; whether it is there.
  bool Find() {
    if (entry_ == nullptr) entry_ = reinterpret_cast<Entry>(gResolverPPC(name_));
    return entry_ != nullptr;
  }

  // The service's result, or zero, null or nothing when the host does not have it.
  Result Call(Arguments... arguments) { return Find() ? entry_(arguments...) : Result(); }

 private:
  using Entry = Result (*)(Arguments...);
  const char *name_;
  Entry entry_ = nullptr;
};

}  // namespace

extern "C" void REALPluginMain(REALresolver resolver) {
  gResolver = resolver;
  gResolverPPC = reinterpret_cast<REALresolver>(resolver("ResolverPPC"));
  reinterpret_cast<void (*)(int32_t)>(gResolverPPC("RegisterPluginVersion"))(kInterfaceVersion);
  PluginEntry();
}

void REALRegisterMethod(REALmethodDefinition *method) {
  static constinit HostService<void(REALmethodDefinition *)> pRuntimeRegisterMethod("PluginRegisterMethod");
  pRuntimeRegisterMethod.Call(method);
}

void REALRegisterClass(REALclassDefinition *classRecord) {
  static constinit HostService<void(REALclassDefinition *)> pRegisterClass("PluginRegisterClass");
  static const void *converted = nullptr;
  const bool known = pRegisterClass.Find();
  // A record that is registered again already has its three-word list.
  if (REALGetRBVersion() < kFirstVersionWithFourWords && classRecord->methods != converted) {
    REALmethodDefinitionV6 *methods =
        ConvertCurrentMethodsToV6(classRecord->methods, classRecord->methodCount);
    if (methods == nullptr) return;
    classRecord->methods = reinterpret_cast<REALmethodDefinition *>(methods);
    converted = methods;
  }
  if (known) pRegisterClass.Call(classRecord);
}

REALstring REALBuildString(const char *bytes, int32_t length) {
  static constinit HostService<REALstring(const char *, int32_t)> pBuildString("REALBuildString");
  return pBuildString.Call(bytes, length);
}

REALfolderItem REALFolderItemFromFSSpec(const FSSpec *spec) {
  static constinit HostService<REALfolderItem(const FSSpec *)> pFolderItemFromFSSpec("FolderItemFromFSSpec");
  return pFolderItemFromFSSpec.Call(spec);
}

bool REALFSSpecFromFolderItem(FSSpec *spec, REALfolderItem item) {
  static constinit HostService<int32_t(FSSpec *, REALfolderItem)> pFSSpecFromFolderItem(
      "REALFSSpecFromFolderItem");
  return pFSSpecFromFolderItem.Call(spec, item) != 0;
}

REALstring REALpathFromFolderItem(REALfolderItem item) {
  static constinit HostService<REALstring(REALfolderItem)> pPathFromFolderItem("REALpathFromFolderItem");
  return pPathFromFolderItem.Call(item);
}

double REALGetRBVersion() {
  static constinit HostService<double()> pGetRBVersion("REALGetRBVersion");
  return pGetRBVersion.Call();
}

uint32_t REALGetStringEncoding(REALstring string) {
  static constinit HostService<uint32_t(REALstring)> pGetStringEncoding("REALGetStringEncoding");
  return pGetStringEncoding.Call(string);
}

void REALSetStringEncoding(REALstring string, uint32_t encoding) {
  static constinit HostService<void(REALstring, uint32_t)> pSetStringEncoding("REALSetStringEncoding");
  pSetStringEncoding.Call(string, encoding);
}

REALstring REALConvertString(REALstring string, uint32_t encoding) {
  static constinit HostService<REALstring(REALstring, uint32_t)> pConvertString("REALConvertString");
  return pConvertString.Call(string, encoding);
}

void REALUnlockString(REALstring string) {
  static constinit HostService<void(REALstring)> pUnlockString("RuntimeUnlockString");
  if (string != nullptr) pUnlockString.Call(string);
}

void REALUnlockObject(REALobject object) {
  static constinit HostService<void(REALobject)> pUnlockObject("RuntimeUnlockObject");
  if (object != nullptr) pUnlockObject.Call(object);
}

REALmethodDefinitionV6 *ConvertCurrentMethodsToV6(const REALmethodDefinition *methods, intptr_t count) {
  const auto size = static_cast<Size>(static_cast<size_t>(count) * sizeof(REALmethodDefinitionV6));
  auto *converted = reinterpret_cast<REALmethodDefinitionV6 *>(NewPtr(size));
  if (converted == nullptr) return nullptr;
  for (intptr_t i = 0; i < count; ++i) {
    converted[i] = {methods[i].function, methods[i].setter, methods[i].declaration};
  }
  return converted;
}
