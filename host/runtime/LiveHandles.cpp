#include "host/runtime/LiveHandles.h"

#include <stdexcept>
#include <unordered_set>

namespace zemhost {
namespace {

LiveHandles gFigures;
bool gChecking = false;

std::unordered_set<const void *> &checkedHandles() {
  static std::unordered_set<const void *> handles;
  return handles;
}

}  // namespace

const LiveHandles &liveHandles() { return gFigures; }

void checkHandles(bool on) {
  if (on == gChecking) return;
  if (gFigures.strings + gFigures.folderItems + gFigures.objects != 0)
    throw std::logic_error("handle checks cannot change while strings, items or objects are live");
  gChecking = on;
}

void addHandle(const void *handle, int64_t LiveHandles::*figure) {
  if (gChecking) checkedHandles().insert(handle);
  ++(gFigures.*figure);
}

void removeHandle(const void *handle, int64_t LiveHandles::*figure) {
  if (gChecking) checkedHandles().erase(handle);
  --(gFigures.*figure);
}

bool isLiveHandle(const void *handle) {
  if (!gChecking || checkedHandles().contains(handle)) return true;
  ++gFigures.misuses;
  return false;
}

void addReplacements(int64_t count) { gFigures.replacements += count; }

}  // namespace zemhost
