#include "stream/event_items.h"

#include "frame/diagnostics/report_error.h"
#include "host/items.h"
#include "platform/com/bstr.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/com/com_ptr.h"

namespace tervane {

namespace {

// The interface under which a lost event is reported.
constexpr GUID kEventReportIid = MakeGuid("{45A9C8F9-A430-4BD5-9D57-2CB92A8B9476}");

// CoCreateInstance for IUnknown, OleRun, then the item's own interface.
template <typename Item> ComPtr<Item> CreateItem(const CLSID& clsid) {
    ComPtr<IUnknown> unknown;
    if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IUnknown, unknown.ReceiveVoid())))
        return {};
    if (FAILED(OleRun(unknown.get())))
        return {};
    ComPtr<Item> item;
    if (FAILED(unknown.As(item)))
        return {};
    return item;
}

// The strings handed to an item's setters, kept per thread and refilled in
// place: a setter copies what it is given, so they are free again as soon as
// it returns, before the sink (which may send events of its own) is called.
struct Scratch {
    ReusedBstr first, second;
};
thread_local Scratch scratch;

template <typename Send> HRESULT Guarded(Send send) {
    try {
        return send();
    } catch (const _com_error& error) {
        ReportError(CLSID_NULL, error.ErrorMessage(), kEventReportIid, E_FAIL);
    } catch (...) {
        ReportError(CLSID_NULL, u"Unexpected error when accessing EndOfInput property.",
                    kEventReportIid, E_FAIL);
    }
    return E_FAIL;
}

} // namespace

HRESULT SendTagEvent(IEvents* sink, const TagDescriptor& tag) {
    return Guarded([&]() -> HRESULT {
        ComPtr<ITag> item = CreateItem<ITag>(CLSID_Tag);
        if (!item)
            return E_FAIL;
        // The order in which the framework's own producers set the properties.
        item->put_EndTag(tag.endTag);
        item->put_TagText(scratch.first.Fill(tag.tagText));
        item->put_StartTag(tag.startTag);
        item->put_TagName(scratch.second.Fill(tag.name));
        item->put_Inline(tag.inlineTag);
        HRESULT hr = sink->raw_Tag(item.get());
        if (FAILED(hr))
            _com_issue_errorex(hr, sink, IEvents::iid);
        return S_OK;
    });
}

HRESULT SendTextEvent(IEvents* sink, std::u16string_view text) {
    return Guarded([&]() -> HRESULT {
        ComPtr<IText> item = CreateItem<IText>(CLSID_Text);
        if (!item)
            return E_FAIL;
        item->put_Text(scratch.first.Fill(text));
        HRESULT hr = sink->raw_Text(item.get());
        if (FAILED(hr))
            _com_issue_errorex(hr, sink, IEvents::iid);
        return S_OK;
    });
}

} // namespace tervane
