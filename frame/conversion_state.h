#pragma once
// What one backward conversion or preview shares across its parts: the
// language it writes, whether it is final, and the messages it collects.
// Only one such conversion runs on a thread at a time.
#include <string>
#include <vector>

#include "platform/win32/types.h"

namespace tervane {

// The language every rebuilt resource is written under; it also picks the
// code page of combo and list box texts.
extern thread_local DWORD g_targetLanguage;
// 1 in a final conversion, 0 in a preview.
extern thread_local DWORD g_writerMode;
// Errors, Alerts and Warnings of the running conversion, in order.
extern thread_local std::vector<std::u16string> g_messages;

// Ends the text of every verification error.
inline constexpr const char* kVerificationTrailer =
    "\nPlease run the tag verification plug-in for more detailed information.";

// Appends a message, narrow in the process's conversion code page, to g_messages.
void AddConversionMessage(const std::string& text);

} // namespace tervane
