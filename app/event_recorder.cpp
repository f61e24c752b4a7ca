#include "app/event_recorder.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "app/items.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

std::u16string Take(BSTR text) {
    Bstr owned = Bstr::Attach(text);
    return owned.str();
}

} // namespace

void EventOutput::Grow(std::size_t bytes) {
    std::size_t wanted = capacity_ < 65536 ? 65536 : capacity_;
    while (wanted - size_ < bytes) {
        if (wanted > SIZE_MAX / 2)
            throw std::bad_alloc();
        wanted *= 2;
    }
    char* grown = static_cast<char*>(std::realloc(data_.get(), wanted));
    if (grown == nullptr)
        throw std::bad_alloc();
    (void)data_.release();
    data_.reset(grown);
    capacity_ = wanted;
}

void EventOutput::Append(std::string_view bytes) {
    std::memcpy(Room(bytes.size()), bytes.data(), bytes.size());
    size_ += bytes.size();
}

void EventOutput::StartOfInput(bool info) {
    if (jsonLines_)
        Append(line_.Text("event", std::string_view("StartOfInput")).Bool("info", info).Finish());
}

void EventOutput::EndOfInput() {
    if (jsonLines_)
        Append(line_.Text("event", std::string_view("EndOfInput")).Finish());
}

void EventOutput::Progress(LONG value) {
    if (jsonLines_)
        Append(line_.Text("event", std::string_view("Progress")).Number("value", value).Finish());
}

void EventOutput::TagLine(std::u16string_view text, std::u16string_view name, LONG start, LONG end,
                          LONG inlineMark) {
    Append(line_.Text("event", std::string_view("Tag"))
               .Text("text", text)
               .Text("name", name)
               .Number("start", start)
               .Number("end", end)
               .Number("inline", inlineMark)
               .Finish());
}

void EventOutput::TextLine(std::u16string_view text) {
    Append(line_.Text("event", std::string_view("Text")).Text("text", text).Finish());
}

void EventOutput::Property(std::u16string_view name, std::u16string_view value) {
    if (jsonLines_)
        Append(line_.Text("event", std::string_view("Property"))
                   .Text("name", name)
                   .Text("value", value)
                   .Finish());
}

void EventOutput::Segment(bool start) {
    if (jsonLines_)
        Append(line_.Text("event", std::string_view(start ? "StartOfSegment" : "EndOfSegment"))
                   .Finish());
}

InterfaceMap<RecordingSink> RecordingSink::Interfaces() {
    static const InterfaceEntry<RecordingSink> map[] = {Entry<RecordingSink, IEvents>(),
                                                        Entry<RecordingSink, IDispatch, IEvents>()};
    return map;
}

HRESULT RecordingSink::raw_Property(IProperty* property) {
    if (property == nullptr)
        return E_POINTER;
    BSTR name = nullptr, value = nullptr;
    property->get_Name(&name);
    property->get_Value(&value);
    log_->Property(Take(name), Take(value));
    return S_OK;
}

HRESULT RecordingSink::raw_StartOfInput(IDocumentInfo* info) {
    log_->StartOfInput(info != nullptr);
    return S_OK;
}

HRESULT RecordingSink::raw_EndOfInput() {
    log_->EndOfInput();
    return S_OK;
}

HRESULT RecordingSink::raw_StartOfSegment(IUnknown*) {
    log_->Segment(true);
    return S_OK;
}

HRESULT RecordingSink::raw_EndOfSegment() {
    log_->Segment(false);
    return S_OK;
}

HRESULT RecordingSink::raw_Text(IText* text) {
    if (text == nullptr)
        return E_POINTER;
    if (const app::Text* own = OwnText(text)) {
        log_->Text(own->Value());
        return S_OK;
    }
    BSTR value = nullptr;
    text->get_Text(&value);
    Bstr owned = Bstr::Attach(value);
    log_->Text(owned.view());
    return S_OK;
}

HRESULT RecordingSink::raw_Tag(ITag* tag) {
    if (tag == nullptr)
        return E_POINTER;
    if (const app::Tag* own = OwnTag(tag)) {
        log_->Tag(own->TagText(), own->TagName(), own->StartTag(), own->EndTag(),
                  own->InlineMark());
        return S_OK;
    }
    LONG start = 0, end = 0, inlineMark = 0;
    tag->get_StartTag(&start);
    tag->get_EndTag(&end);
    tag->get_Inline(&inlineMark);
    BSTR name = nullptr, text = nullptr;
    tag->get_TagName(&name);
    tag->get_TagText(&text);
    Bstr ownedName = Bstr::Attach(name), ownedText = Bstr::Attach(text);
    log_->Tag(ownedText.view(), ownedName.view(), start, end, inlineMark);
    return S_OK;
}

InterfaceMap<ProgressHost> ProgressHost::Interfaces() {
    static const InterfaceEntry<ProgressHost> map[] = {
        Entry<ProgressHost, IFilterHost>(), Entry<ProgressHost, IDispatch, IFilterHost>()};
    return map;
}

HRESULT ProgressHost::raw_Progress(LONG percent) {
    log_->Progress(percent);
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
