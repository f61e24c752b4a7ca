#include "platform/com/module_lock.h"

#include <atomic>

namespace tervane {

namespace {
std::atomic<LONG> g_moduleLocks{0};
}

LONG LockModule() {
    return ++g_moduleLocks;
}
LONG UnlockModule() {
    return --g_moduleLocks;
}
LONG ModuleLockCount() {
    return g_moduleLocks.load();
}

} // namespace tervane
