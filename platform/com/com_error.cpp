#include "platform/com/com_error.h"

#include <cstdio>

#include "platform/win32/system_messages.h"

namespace tervane {

std::string ComErrorMessage(HRESULT hr) {
    char* text = nullptr;
    DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                      FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, static_cast<DWORD>(hr), 0x400, &text, 0, nullptr);
    if (length != 0 && text != nullptr) {
        std::string message(text, length);
        LocalFree(text);
        if (message.size() > 1 && message.back() == '\n') {
            message.pop_back();
            if (message.back() == '\r')
                message.pop_back();
        }
        return message;
    }
    char buffer[64];
    WORD code = _com_error(hr).WCode();
    if (code != 0)
        std::snprintf(buffer, sizeof buffer, "IDispatch error #%d", code);
    else
        std::snprintf(buffer, sizeof buffer, "Unknown error 0x%0lX",
                      static_cast<unsigned long>(static_cast<DWORD>(hr)));
    return buffer;
}

} // namespace tervane

_com_error::_com_error(HRESULT hr, IErrorInfo* info, bool addRef)
    : hr_(hr), info_(addRef ? tervane::ComPtr<IErrorInfo>(info)
                            : tervane::ComPtr<IErrorInfo>::Attach(info)) {}

WORD _com_error::WCode() const {
    DWORD bits = static_cast<DWORD>(hr_);
    return bits >= 0x80040200u && bits <= 0x8004FFFFu ? static_cast<WORD>(bits - 0x80040200u) : 0;
}

IErrorInfo* _com_error::ErrorInfo() const {
    IErrorInfo* info = nullptr;
    info_.CopyTo(&info);
    return info;
}

const char* _com_error::ErrorMessage() const {
    if (message_.empty())
        message_ = tervane::ComErrorMessage(hr_);
    return message_.c_str();
}

namespace {
std::u16string Field(IErrorInfo* info, HRESULT (IErrorInfo::*get)(BSTR*)) {
    if (info == nullptr)
        return {};
    tervane::Bstr text;
    if (FAILED((info->*get)(text.Receive())))
        return {};
    return text.str();
}
} // namespace

std::u16string _com_error::Description() const {
    return Field(info_.get(), &IErrorInfo::GetDescription);
}

std::u16string _com_error::Source() const {
    return Field(info_.get(), &IErrorInfo::GetSource);
}

GUID _com_error::Guid() const {
    GUID guid{};
    if (info_)
        info_->GetGUID(&guid);
    return guid;
}

void _com_issue_error(HRESULT hr) {
    throw _com_error(hr);
}

void _com_issue_errorex(HRESULT hr, IUnknown* object, REFIID iid) {
    IErrorInfo* info = nullptr;
    if (object != nullptr) {
        tervane::ComPtr<ISupportErrorInfo> support;
        if (SUCCEEDED(object->QueryInterface(IID_ISupportErrorInfo, support.ReceiveVoid())) &&
            support->InterfaceSupportsErrorInfo(iid) == S_OK) {
            if (GetErrorInfo(0, &info) != S_OK)
                info = nullptr;
        }
    }
    throw _com_error(hr, info);
}
