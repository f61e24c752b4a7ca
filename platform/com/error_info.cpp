#include "platform/com/error_info.h"

#include "platform/com/com_ptr.h"
#include "platform/com/component.h"

namespace tervane {
namespace {

class ErrorInfo : public ComObjectRoot, public IErrorInfo, public ICreateErrorInfo {
public:
    // Owned by the thread, not by the module's clients.
    static constexpr bool kLocksModule = false;
    static InterfaceMap<ErrorInfo> Interfaces() {
        static const InterfaceEntry<ErrorInfo> map[] = {Entry<ErrorInfo, IErrorInfo>(),
                                                        Entry<ErrorInfo, ICreateErrorInfo>()};
        return map;
    }

    HRESULT GetGUID(GUID* guid) override {
        if (guid == nullptr)
            return E_POINTER;
        *guid = guid_;
        return S_OK;
    }
    HRESULT GetSource(BSTR* out) override { return Copy(source_, out); }
    HRESULT GetDescription(BSTR* out) override { return Copy(description_, out); }
    HRESULT GetHelpFile(BSTR* out) override { return Copy(helpFile_, out); }
    HRESULT GetHelpContext(DWORD* out) override {
        if (out == nullptr)
            return E_POINTER;
        *out = helpContext_;
        return S_OK;
    }

    HRESULT SetGUID(REFGUID guid) override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT SetSource(LPOLESTR text) override { return Store(source_, text); }
    HRESULT SetDescription(LPOLESTR text) override { return Store(description_, text); }
    HRESULT SetHelpFile(LPOLESTR text) override { return Store(helpFile_, text); }
    HRESULT SetHelpContext(DWORD context) override {
        helpContext_ = context;
        return S_OK;
    }

private:
    static HRESULT Copy(const Bstr& text, BSTR* out) {
        if (out == nullptr)
            return E_POINTER;
        *out = text.get() ? Bstr(text).Detach() : nullptr;
        return S_OK;
    }
    static HRESULT Store(Bstr& target, LPOLESTR text) {
        target = text ? Bstr(std::u16string_view(text)) : Bstr();
        return text && !target.get() ? E_OUTOFMEMORY : S_OK;
    }

    GUID guid_{};
    Bstr source_;
    Bstr description_;
    Bstr helpFile_;
    DWORD helpContext_ = 0;
};

thread_local ComPtr<IErrorInfo> t_errorInfo;

} // namespace
} // namespace tervane

HRESULT CreateErrorInfo(ICreateErrorInfo** out) {
    if (out == nullptr)
        return E_POINTER;
    return tervane::CreateComInstance<tervane::ErrorInfo>(nullptr, IID_ICreateErrorInfo,
                                                          reinterpret_cast<void**>(out));
}

HRESULT SetErrorInfo(ULONG, IErrorInfo* info) {
    tervane::t_errorInfo = tervane::ComPtr<IErrorInfo>(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG, IErrorInfo** out) {
    if (out == nullptr)
        return E_INVALIDARG;
    *out = tervane::t_errorInfo.Detach();
    return *out ? S_OK : S_FALSE;
}
