#include "platform/win32/system_messages.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/win32/last_error.h"

namespace {

struct MessageEntry {
    DWORD code;
    const char* text;
};

// English texts as Windows gives them; HRESULTs of FACILITY_WIN32 fall back to
// the text of their Win32 code, as FormatMessage does.
constexpr MessageEntry kMessages[] = {
    {0, "The operation completed successfully."},
    {1, "Incorrect function."},
    {2, "The system cannot find the file specified."},
    {3, "The system cannot find the path specified."},
    {5, "Access is denied."},
    {6, "The handle is invalid."},
    {8, "Not enough memory resources are available to process this command."},
    {13, "The data is invalid."},
    {14, "Not enough memory resources are available to complete this operation."},
    {29, "The system cannot write to the specified device."},
    {30, "The system cannot read from the specified device."},
    {32, "The process cannot access the file because it is being used by another process."},
    {38, "Reached the end of the file."},
    {80, "The file exists."},
    {87, "The parameter is incorrect."},
    {112, "There is not enough space on the disk."},
    {122, "The data area passed to a system call is too small."},
    {123, "The filename, directory name, or volume label syntax is incorrect."},
    {183, "Cannot create a file when that file already exists."},
    {193, "%1 is not a valid Win32 application."},
    {317,
     "The system cannot find message text for message number 0x%1 in the message file for %2."},
    {1006, "The volume for a file has been externally altered so that the opened file is no longer "
           "valid."},
    {1113, "No mapping for the Unicode character exists in the target multi-byte code page."},
    {1812, "The specified image file did not contain a resource section."},
    {1813, "The specified resource type cannot be found in the image file."},
    {1814, "The specified resource name cannot be found in the image file."},
    {1815, "The specified resource language ID cannot be found in the image file."},
    {0x80004001, "Not implemented"},
    {0x80004002, "No such interface supported"},
    {0x80004003, "Invalid pointer"},
    {0x80004004, "Operation aborted"},
    {0x80004005, "Unspecified error"},
    {0x8000FFFF, "Catastrophic failure"},
    {0x80040110, "Class does not support aggregation (or class object is remote)"},
    {0x80040111, "ClassFactory cannot supply requested class"},
    {0x80040154, "Class not registered"},
    {0x80020009, "Exception occurred."},
};

} // namespace

std::optional<std::string> SystemMessageText(DWORD code) {
    DWORD lookup = code;
    // HRESULT_FROM_WIN32: severity error, facility 7.
    if ((code & 0xFFFF0000u) == 0x80070000u)
        lookup = code & 0xFFFFu;
    for (const MessageEntry& entry : kMessages)
        if (entry.code == lookup)
            return std::string(entry.text) + "\r\n";
    return std::nullopt;
}

DWORD FormatMessageA(DWORD flags, const void*, DWORD messageId, DWORD, void* buffer, DWORD size,
                     void*) {
    if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM) || buffer == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    auto text = SystemMessageText(messageId);
    if (!text) {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    if (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
        char* block = static_cast<char*>(std::malloc(text->size() + 1));
        if (!block) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return 0;
        }
        std::memcpy(block, text->c_str(), text->size() + 1);
        *static_cast<char**>(buffer) = block;
    } else {
        if (size < text->size() + 1) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        std::memcpy(buffer, text->c_str(), text->size() + 1);
    }
    return static_cast<DWORD>(text->size());
}

void* LocalFree(void* block) {
    std::free(block);
    return nullptr;
}
