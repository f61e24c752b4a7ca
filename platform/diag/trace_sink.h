#pragma once
// Where traced texts go. Nothing is kept unless a file is attached, by the
// host (--trace FILE) or by the environment variable TERVANE_TRACE, read at
// the first traced text or the first question whether one is attached.
#include <string>
#include <string_view>

namespace tervane {

inline constexpr const char* kTraceVariable = "TERVANE_TRACE";

// Appends to path from now on; false if it can't be opened, leaving the
// previous sink attached.
bool AttachTraceFile(const std::string& path);
void DetachTrace();
bool TraceAttached();
// Each text on a line of its own: a line end is added when it has none.
void WriteTrace(std::string_view text);

} // namespace tervane
