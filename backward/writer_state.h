#pragma once
// What ties the steps of one backward conversion together: the target
// language, whether the run is final or a preview, and the messages met so
// far. Per thread: one conversion runs at a time on a thread.
#include <string>
#include <vector>

#include "platform/win32/types.h"

namespace tervane {

extern thread_local DWORD g_targetLanguage;
// 1 in a final conversion, 0 in a preview.
extern thread_local DWORD g_writerMode;
extern thread_local std::vector<std::u16string> g_messages;

// Ends every failure of the backward conversion and every report of messages.
inline constexpr const char* kVerificationTrailer =
    "\nPlease run the tag verification plug-in for more detailed information.";

} // namespace tervane
