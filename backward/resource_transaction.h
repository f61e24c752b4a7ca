#pragma once
// One resource operation as a complete update transaction of its own, with
// the read-only attribute lifted around it. The deletion of a source resource
// and the writing of a rebuilt one share it, each with its own trace lines.
#include <string>

#include "platform/win32/types.h"

namespace tervane {

// The lines traced when one of the three calls fails.
struct TransactionFailureLines {
    const char* begin;
    const char* update;
    const char* end;
};

inline constexpr TransactionFailureLines kDeleteFailureLines = {
    "\n---------------Cannot delete this resource(BeginUpdateResource).----------------\n\n",
    "\n---------------Cannot delete this resource(UpdateResource).----------------\n\n",
    "\n---------------Cannot delete this resource(EndUpdateResource).----------------\n\n"};
inline constexpr TransactionFailureLines kUpdateFailureLines = {
    "\n---------------Cannot update this resource(BeginUpdateResource).----------------\n\n",
    "\n---------------Cannot update this resource(UpdateResource).----------------\n\n",
    "\n---------------Cannot update this resource(EndUpdateResource).----------------\n\n"};

// 0, or 1 when a call failed by the thread's last error. Null data with size
// 0 deletes. An identifier with neither a letter nor an underscore (the empty
// one too) is a number, passed by its low 16 bits.
int UpdateResourceTransaction(const std::u16string& path, WORD type, const std::string& identifier,
                              const void* data, DWORD size, WORD language,
                              const TransactionFailureLines& lines);

} // namespace tervane
