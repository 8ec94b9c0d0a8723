#include "host/runtime/Services.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <stdexcept>
#include <utility>

#include "host/runtime/FolderItem.h"
#include "host/runtime/HostObject.h"
#include "host/runtime/HostString.h"
#include "host/runtime/LiveHandles.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

ServiceSession *gSession = nullptr;

constexpr std::string_view kSecondResolver = "ResolverPPC";

}  // namespace

// The services themselves. No exception leaves them: their callers are C.
struct ServiceCalls {
  static void registerPluginVersion(int32_t version) {
    if (gSession != nullptr) gSession->announcedVersion_ = version;
  }

  template <typename Callback, typename Record>
  static void registration(Callback ServiceSession::Settings::*callback, Record *record) {
    if (gSession == nullptr || record == nullptr || !(gSession->settings_.*callback)) return;
    try {
      (gSession->settings_.*callback)(*record);
    } catch (...) {
      if (gSession->failure_ == nullptr) gSession->failure_ = std::current_exception();
    }
  }

  static void registerClass(REALclassDefinition *record) {
    if (record != nullptr) record->dataOffset = static_cast<intptr_t>(kObjectDataOffset);
    registration(&ServiceSession::Settings::onClass, record);
  }

  static void registerMethod(REALmethodDefinition *record) {
    registration(&ServiceSession::Settings::onMethod, record);
  }

  // A new string takes the host's own encoding until the plug-in sets another.
  static REALstring buildString(const char *bytes, int32_t length) {
    if (length < 0 || (bytes == nullptr && length > 0)) return nullptr;
    return newString({length == 0 ? "" : bytes, static_cast<size_t>(length)}, kUtf8);
  }

  static uint32_t stringEncoding(REALstring string) {
    return string != nullptr && isLiveHandle(string) ? string->mEncoding : 0;
  }

  static void setStringEncoding(REALstring string, uint32_t encoding) {
    if (string != nullptr && isLiveHandle(string)) string->mEncoding = encoding;
  }

  static REALstring convertString(REALstring string, uint32_t encoding) {
    if (string == nullptr || !isLiveHandle(string)) return nullptr;
    if (string->mEncoding == encoding) {
      retainString(string);
      return string;
    }
    try {
      const std::string_view bytes(REALstringStruct::CString(string),
                                   static_cast<size_t>(REALstringStruct::Length(string)));
      const Conversion converted = convertText(bytes, string->mEncoding, encoding);
      addReplacements(static_cast<int64_t>(converted.replacements));
      return newString(converted.bytes, encoding);
    } catch (const std::bad_alloc &) {
      return nullptr;
    }
  }

  static int32_t specFromFolderItem(FSSpec *spec, REALfolderItem item) {
    if (spec == nullptr || item == nullptr || !isLiveHandle(item)) return 0;
    *spec = FolderItem::share(item).spec();
    return 1;
  }

  static REALstring pathFromFolderItem(REALfolderItem item) {
    if (item == nullptr || !isLiveHandle(item)) return nullptr;
    try {
      const std::string path = FolderItem::share(item).macPath();
      return path.empty() ? nullptr : newString(path, kUtf8);
    } catch (const std::bad_alloc &) {
      return nullptr;
    }
  }

  static double version() { return gSession == nullptr ? 0.0 : gSession->settings_.version; }

  static void *lookUp(const char *name);
  static void *lookUpResolver(const char *name);

  // Records the look-up; false when the session does not answer it.
  static bool isAnswered(std::string_view name) {
    if (gSession == nullptr) return false;
    auto &asked = gSession->lookUps_;
    const auto before =
        std::find_if(asked.begin(), asked.end(), [&](const auto &l) { return l.name == name; });
    if (before != asked.end()) {
      ++before->times;
    } else {
      asked.push_back({std::string(name), 1});
    }
    const auto &leftOut = gSession->settings_.leftOut;
    return std::find(leftOut.begin(), leftOut.end(), name) == leftOut.end();
  }
};

namespace {

struct ServiceRow {
  std::string_view name;
  REALproc function;
};

template <typename Function>
REALproc slot(Function *function) {
  return reinterpret_cast<REALproc>(function);
}

const ServiceRow kServices[] = {
    {"RegisterPluginVersion", slot(ServiceCalls::registerPluginVersion)},
    {"PluginRegisterClass", slot(ServiceCalls::registerClass)},
    {"PluginRegisterMethod", slot(ServiceCalls::registerMethod)},
    {"REALBuildString", slot(ServiceCalls::buildString)},
    {"REALGetStringEncoding", slot(ServiceCalls::stringEncoding)},
    {"REALSetStringEncoding", slot(ServiceCalls::setStringEncoding)},
    {"REALConvertString", slot(ServiceCalls::convertString)},
    {"FolderItemFromFSSpec", slot(newFolderItem)},
    {"REALFSSpecFromFolderItem", slot(ServiceCalls::specFromFolderItem)},
    {"REALpathFromFolderItem", slot(ServiceCalls::pathFromFolderItem)},
    {"REALGetRBVersion", slot(ServiceCalls::version)},
    {"RuntimeUnlockString", slot(releaseString)},
    {"RuntimeUnlockObject", slot(releaseObject)},
};

}  // namespace

void *ServiceCalls::lookUp(const char *name) {
  if (name == nullptr || !isAnswered(name)) return nullptr;
  for (const ServiceRow &row : kServices)
    if (row.name == name) return reinterpret_cast<void *>(row.function);
  return nullptr;
}

void *ServiceCalls::lookUpResolver(const char *name) {
  if (name == nullptr || !isAnswered(name) || name != kSecondResolver) return nullptr;
  return reinterpret_cast<void *>(slot(lookUp));
}

ServiceSession::ServiceSession(Settings settings) : settings_(std::move(settings)) {
  if (gSession != nullptr) throw std::logic_error("a process holds one plug-in host at a time");
  const std::vector<std::string_view> known = serviceNames();
  for (const std::string &name : settings_.leftOut) {
    if (name != kSecondResolver && std::find(known.begin(), known.end(), name) == known.end())
      throw std::invalid_argument("there is no service " + inQuotes(name) + " to leave out");
  }
  gSession = this;
}

ServiceSession::~ServiceSession() { gSession = nullptr; }

REALresolver ServiceSession::resolver() { return ServiceCalls::lookUpResolver; }

bool ServiceSession::wantsThreeWordMethods() const {
  const auto &out = settings_.leftOut;
  return settings_.version < kFirstVersionWithFourWords ||
         std::find(out.begin(), out.end(), "REALGetRBVersion") != out.end();
}

void ServiceSession::rethrowFailure() {
  if (failure_ != nullptr) std::rethrow_exception(std::exchange(failure_, nullptr));
}

std::vector<std::string_view> ServiceSession::serviceNames() {
  std::vector<std::string_view> names;
  for (const ServiceRow &row : kServices) names.push_back(row.name);
  return names;
}

}  // namespace zemhost
