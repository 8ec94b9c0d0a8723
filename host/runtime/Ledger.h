#pragma once

// The runtime's own side of the accounts: what strings, items and objects report about themselves.

#include "host/runtime/Accounts.h"

namespace zemhost::ledger {

// Enters a new handle, counted in one of the live figures of Accounts.
void enter(const void *handle, int64_t Accounts::*figure);

// Strikes out a handle that is about to be freed.
void strike(const void *handle, int64_t Accounts::*figure);

// True when the handle may be used. Always true with checks off; else counts a misuse when it is not live.
bool isLive(const void *handle);

// Adds to the replacements of conversions.
void addReplacements(int64_t count);

}  // namespace zemhost::ledger
