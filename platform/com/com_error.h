#pragma once
// The exception that carries a failed result of a call on another object,
// with that object's error information if it left any.
#include <string>

#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"

class _com_error {
public:
    // Takes over a reference to info unless addRef asks for a new one.
    explicit _com_error(HRESULT hr, IErrorInfo* info = nullptr, bool addRef = false);

    HRESULT Error() const { return hr_; }
    // The IDispatch error number: the result minus 0x80040200 inside that
    // range, else 0.
    WORD WCode() const;
    // A new reference, or null.
    IErrorInfo* ErrorInfo() const;
    // The system's text for the result without its line end, or the
    // "IDispatch error #%d" / "Unknown error 0x%0lX" form when it has none.
    const char* ErrorMessage() const;
    // From the error information; empty without it.
    std::u16string Description() const;
    std::u16string Source() const;
    GUID Guid() const;

private:
    HRESULT hr_;
    tervane::ComPtr<IErrorInfo> info_;
    mutable std::string message_;
};

[[noreturn]] void _com_issue_error(HRESULT hr);
// Picks up the thread's error information when object says that iid reports
// errors through ISupportErrorInfo.
[[noreturn]] void _com_issue_errorex(HRESULT hr, IUnknown* object, REFIID iid);

namespace tervane {
// The message rule of ErrorMessage, for any result.
std::string ComErrorMessage(HRESULT hr);
} // namespace tervane
