#include "app/event_recorder.h"

#include <cstdio>

namespace tervane::app {

namespace {

std::u16string Take(BSTR text) {
    Bstr owned = Bstr::Attach(text);
    return owned.str();
}

} // namespace

InterfaceMap<RecordingSink> RecordingSink::Interfaces() {
    static const InterfaceEntry<RecordingSink> map[] = {Entry<RecordingSink, IEvents>(),
                                                        Entry<RecordingSink, IDispatch, IEvents>()};
    return map;
}

HRESULT RecordingSink::raw_Property(IProperty* property) {
    RecordedEvent event(RecordedEvent::Property);
    if (property == nullptr)
        return E_POINTER;
    BSTR name = nullptr, value = nullptr;
    property->get_Name(&name);
    property->get_Value(&value);
    event.name = Take(name);
    event.text = Take(value);
    log_->push_back(std::move(event));
    return S_OK;
}

HRESULT RecordingSink::raw_StartOfInput(IDocumentInfo* info) {
    RecordedEvent event(RecordedEvent::StartOfInput);
    event.info = info != nullptr;
    log_->push_back(std::move(event));
    return S_OK;
}

HRESULT RecordingSink::raw_EndOfInput() {
    log_->push_back(RecordedEvent(RecordedEvent::EndOfInput));
    return S_OK;
}

HRESULT RecordingSink::raw_StartOfSegment(IUnknown*) {
    log_->push_back(RecordedEvent(RecordedEvent::StartOfSegment));
    return S_OK;
}

HRESULT RecordingSink::raw_EndOfSegment() {
    log_->push_back(RecordedEvent(RecordedEvent::EndOfSegment));
    return S_OK;
}

HRESULT RecordingSink::raw_Text(IText* text) {
    if (text == nullptr)
        return E_POINTER;
    RecordedEvent event(RecordedEvent::Text);
    BSTR value = nullptr;
    text->get_Text(&value);
    event.text = Take(value);
    log_->push_back(std::move(event));
    return S_OK;
}

HRESULT RecordingSink::raw_Tag(ITag* tag) {
    if (tag == nullptr)
        return E_POINTER;
    RecordedEvent event(RecordedEvent::Tag);
    tag->get_StartTag(&event.start);
    tag->get_EndTag(&event.end);
    tag->get_Inline(&event.inlineMark);
    BSTR name = nullptr, text = nullptr;
    tag->get_TagName(&name);
    tag->get_TagText(&text);
    event.name = Take(name);
    event.text = Take(text);
    log_->push_back(std::move(event));
    return S_OK;
}

InterfaceMap<ProgressHost> ProgressHost::Interfaces() {
    static const InterfaceEntry<ProgressHost> map[] = {
        Entry<ProgressHost, IFilterHost>(), Entry<ProgressHost, IDispatch, IFilterHost>()};
    return map;
}

HRESULT ProgressHost::raw_Progress(LONG percent) {
    RecordedEvent event(RecordedEvent::Progress);
    event.value = percent;
    log_->push_back(std::move(event));
    if (showBar_) {
        constexpr int kWidth = 40;
        LONG shown = percent < 0 ? 0 : percent > 100 ? 100 : percent;
        int filled = static_cast<int>(shown * kWidth / 100);
        std::fprintf(stderr, "\r[%.*s%*s] %3ld%%", filled,
                     "########################################", kWidth - filled, "",
                     static_cast<long>(shown));
        std::fflush(stderr);
        drawn_ = true;
    }
    return S_OK;
}

void ProgressHost::FinishBar() {
    if (drawn_)
        std::fputs("\n", stderr);
    drawn_ = false;
}

} // namespace tervane::app
