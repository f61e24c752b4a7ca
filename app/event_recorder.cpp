#include "app/event_recorder.h"

#include <cstdio>

#include "app/json_text.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

std::u16string Take(BSTR text) {
    Bstr owned = Bstr::Attach(text);
    return owned.str();
}

} // namespace

void EventOutput::StartOfInput(bool info) {
    if (jsonLines_)
        out_ += info ? "{\"event\": \"StartOfInput\", \"info\": true}\n"
                     : "{\"event\": \"StartOfInput\", \"info\": false}\n";
}

void EventOutput::EndOfInput() {
    if (jsonLines_)
        out_ += "{\"event\": \"EndOfInput\"}\n";
}

void EventOutput::Progress(LONG value) {
    if (jsonLines_)
        out_ += "{\"event\": \"Progress\", \"value\": " + std::to_string(value) + "}\n";
}

void EventOutput::Tag(std::u16string_view text, std::u16string_view name, LONG start, LONG end,
                      LONG inlineMark) {
    if (!jsonLines_) {
        locale::AppendUtf8(out_, text);
        return;
    }
    out_ += "{\"event\": \"Tag\", \"text\": ";
    out_ += JsonString(text);
    out_ += ", \"name\": ";
    out_ += JsonString(name);
    out_ += ", \"start\": " + std::to_string(start) + ", \"end\": " + std::to_string(end) +
            ", \"inline\": " + std::to_string(inlineMark) + "}\n";
}

void EventOutput::Text(std::u16string_view text) {
    if (!jsonLines_) {
        locale::AppendUtf8(out_, text);
        return;
    }
    out_ += "{\"event\": \"Text\", \"text\": ";
    out_ += JsonString(text);
    out_ += "}\n";
}

void EventOutput::Property(std::u16string_view name, std::u16string_view value) {
    if (jsonLines_)
        out_ += "{\"event\": \"Property\", \"name\": " + JsonString(name) +
                ", \"value\": " + JsonString(value) + "}\n";
}

void EventOutput::Segment(bool start) {
    if (jsonLines_)
        out_ += start ? "{\"event\": \"StartOfSegment\"}\n" : "{\"event\": \"EndOfSegment\"}\n";
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
    BSTR value = nullptr;
    text->get_Text(&value);
    Bstr owned = Bstr::Attach(value);
    log_->Text(owned.view());
    return S_OK;
}

HRESULT RecordingSink::raw_Tag(ITag* tag) {
    if (tag == nullptr)
        return E_POINTER;
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
