#include "frame/diagnostics/exceptions.h"

#include <deque>
#include <mutex>
#include <string>

namespace tervane {

// The texts are few (one per failed conversion) and live as long as the
// exceptions that point at them may be caught, that is until the end.
const char* KeepText(const char* text) {
    static std::mutex lock;
    static std::deque<std::string> kept;
    std::lock_guard guard(lock);
    return kept.emplace_back(text ? text : "").c_str();
}

} // namespace tervane
