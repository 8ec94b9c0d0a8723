#include "host/runtime/Accounts.h"

#include <stdexcept>
#include <unordered_set>

#include "host/runtime/Ledger.h"

namespace zemhost {
namespace {

Accounts gAccounts;
bool gChecking = false;

std::unordered_set<const void *> &liveHandles() {
  static std::unordered_set<const void *> handles;
  return handles;
}

}  // namespace

const Accounts &accounts() { return gAccounts; }

void checkHandles(bool on) {
  if (on == gChecking) return;
  if (gAccounts.strings + gAccounts.folderItems + gAccounts.objects != 0)
    throw std::logic_error("handle checks cannot change while strings, items or objects are live");
  gChecking = on;
}

namespace ledger {

void enter(const void *handle, int64_t Accounts::*figure) {
  if (gChecking) liveHandles().insert(handle);
  ++(gAccounts.*figure);
}

void strike(const void *handle, int64_t Accounts::*figure) {
  if (gChecking) liveHandles().erase(handle);
  --(gAccounts.*figure);
}

bool isLive(const void *handle) {
  if (!gChecking || liveHandles().contains(handle)) return true;
  ++gAccounts.misuses;
  return false;
}

void addReplacements(int64_t count) { gAccounts.replacements += count; }

}  // namespace ledger
}  // namespace zemhost
