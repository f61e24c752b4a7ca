#include "app/forward_run.h"

#include <cstdio>
#include <unistd.h>

#include "app/components.h"
#include "app/failure.h"
#include "app/items.h"
#include "frame/component_ids.h"
#include "host/filter_components.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/locale/code_pages.h"

namespace tervane::app {

namespace {

std::u16string Take(BSTR text) {
    Bstr owned = Bstr::Attach(text);
    return owned.str();
}

} // namespace

HRESULT RunForwardConversion(const std::string& file, IEvents* sink, IFilterHost* host,
                             std::string* failure) {
    RegisterItemClasses();
    ComPtr<IFileParser> parser;
    HRESULT hr = CreateComponent(CLSID_TervaneParser, IFileParser::iid, parser.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(file, CP_UTF8));
        hr = parser->Initialize(path.get(), nullptr, 0, 0, 0, host, sink);
        if (SUCCEEDED(hr))
            hr = parser->raw_Parse(0);
    }
    if (FAILED(hr) && failure)
        *failure = ComponentErrorText(hr, "conversion");
    return hr;
}

InterfaceMap<EventCollector> EventCollector::Interfaces() {
    static const InterfaceEntry<EventCollector> map[] = {
        Entry<EventCollector, IEvents>(), Entry<EventCollector, IDispatch, IEvents>()};
    return map;
}

HRESULT EventCollector::raw_Text(IText* text) {
    if (text == nullptr)
        return E_POINTER;
    if (const app::Text* own = OwnText(text)) {
        events_.push_back(xliff::Event::Text(std::u16string(own->Value())));
        return S_OK;
    }
    BSTR value = nullptr;
    text->get_Text(&value);
    events_.push_back(xliff::Event::Text(Take(value)));
    return S_OK;
}

HRESULT EventCollector::raw_Tag(ITag* tag) {
    if (tag == nullptr)
        return E_POINTER;
    xliff::Event event;
    event.kind = xliff::Event::Kind::Tag;
    if (const app::Tag* own = OwnTag(tag)) {
        event.text = own->TagText();
        event.name = own->TagName();
        event.start = own->StartTag();
        event.end = own->EndTag();
        event.inlineMark = own->InlineMark();
    } else {
        LONG start = 0, end = 0, inlineMark = 0;
        tag->get_StartTag(&start);
        tag->get_EndTag(&end);
        tag->get_Inline(&inlineMark);
        BSTR name = nullptr, text = nullptr;
        tag->get_TagName(&name);
        tag->get_TagText(&text);
        event.name = Take(name);
        event.text = Take(text);
        event.start = start;
        event.end = end;
        event.inlineMark = inlineMark;
    }
    events_.push_back(std::move(event));
    return S_OK;
}

xliff::EventList ExtractEvents(const std::string& file) {
    auto log = std::make_shared<EventOutput>(false);
    ComPtr<ComObject<EventCollector>> sink;
    ComPtr<ComObject<ProgressHost>> host;
    ComObject<EventCollector>::Create(sink.Receive());
    ComObject<ProgressHost>::Create(host.Receive());
    host->Attach(log, ::isatty(STDERR_FILENO) != 0);
    std::string failure;
    HRESULT hr = RunForwardConversion(file, sink.get(), host.get(), &failure);
    host->FinishBar();
    if (FAILED(hr)) {
        std::string logPath = EventLogPath();
        throw CommandFailure(file, failure,
                             logPath.empty() ? "" : "The system's messages are in " + logPath);
    }
    return sink->TakeEvents();
}

} // namespace tervane::app
