#include "frame/diagnostics/report_error.h"

#include <new>
#include <string>

#include "frame/component_ids.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/locale/code_pages.h"
#include "platform/win32/last_error.h"

namespace tervane {

HRESULT ReportError(const CLSID& clsid, const char16_t* text, const IID& iid, HRESULT hr) {
    // The module's own classes are always known by their ProgIDs.
    RegisterComponentProgIds();
    ComPtr<ICreateErrorInfo> create;
    if (SUCCEEDED(CreateErrorInfo(create.Receive()))) {
        create->SetGUID(iid);
        if (auto progId = ProgIdOf(clsid))
            create->SetSource(progId->data());
        create->SetDescription(const_cast<LPOLESTR>(text ? text : u""));
        ComPtr<IErrorInfo> info;
        if (SUCCEEDED(create.As(info)))
            SetErrorInfo(0, info.get());
    }
    return hr;
}

HRESULT ReportError(const CLSID& clsid, const char* text, const IID& iid, HRESULT hr) {
    if (text == nullptr)
        return E_POINTER;
    try {
        int units = MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, nullptr, 0);
        if (units == 0)
            return HRESULT_FROM_WIN32(GetLastError());
        std::u16string wide(static_cast<std::size_t>(units), u'\0');
        if (MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, wide.data(), units) == 0)
            return HRESULT_FROM_WIN32(GetLastError());
        return ReportError(clsid, wide.c_str(), iid, hr);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

} // namespace tervane
