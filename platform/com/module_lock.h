#pragma once
// The module's lock count: live objects and LockServer calls keep the module
// loaded. Interlocked, unlike the objects' own counts.
#include "platform/win32/types.h"

namespace tervane {

LONG LockModule();
LONG UnlockModule();
LONG ModuleLockCount();

} // namespace tervane
