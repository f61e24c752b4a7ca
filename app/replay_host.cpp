#include "app/replay_host.h"

#include <algorithm>
#include <cstdio>

#include "app/json_reader.h"
#include "label/pieces/tag_predicates.h"
#include "platform/locale/code_pages.h"

namespace tervane::app {

std::vector<ReplayEvent> ReadReplayEvents(std::string_view content, std::string& error) {
    std::vector<ReplayEvent> events;
    events.reserve(static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n')) + 1);
    std::size_t lineNumber = 0;
    while (!content.empty()) {
        const std::size_t end = content.find('\n');
        std::string_view line = content.substr(0, end);
        content = end == std::string_view::npos ? std::string_view() : content.substr(end + 1);
        ++lineNumber;
        if (line.find_first_not_of(" \t\r") == std::string_view::npos)
            continue;
        auto fail = [&](const std::string& why) {
            error = "line " + std::to_string(lineNumber) + ": " + why;
            return std::vector<ReplayEvent>();
        };
        ParsedJsonLine parsed = ParseJsonLine(line);
        if (!parsed.error.empty())
            return fail(parsed.error);
        const std::u16string* kind = JsonText(parsed.object, "event");
        if (kind == nullptr)
            return fail("no \"event\" member");
        ReplayEvent event;
        if (*kind == u"StartOfInput") {
            event.kind = ReplayEvent::kStartOfInput;
        } else if (*kind == u"EndOfInput") {
            event.kind = ReplayEvent::kEndOfInput;
        } else if (*kind == u"Text") {
            const std::u16string* text = JsonText(parsed.object, "text");
            if (text == nullptr)
                return fail("a Text event needs a string \"text\"");
            event.text = *text;
        } else if (*kind == u"Tag") {
            event.kind = ReplayEvent::kTag;
            const std::u16string* text = JsonText(parsed.object, "text");
            const std::u16string* name = JsonText(parsed.object, "name");
            const auto start = JsonNumber(parsed.object, "start");
            const auto stop = JsonNumber(parsed.object, "end");
            const auto mark = JsonNumber(parsed.object, "inline");
            if (text == nullptr || name == nullptr || !start || !stop || !mark)
                return fail("a Tag event needs \"text\", \"name\", \"start\", \"end\" and "
                            "\"inline\"");
            event.text = *text;
            event.name = *name;
            event.start = *start;
            event.end = *stop;
            event.inlineMark = *mark;
        } else {
            continue; // Progress, Property and the segment marks: the host makes its own
        }
        events.push_back(std::move(event));
    }
    return events;
}

InterfaceMap<ReplayHost> ReplayHost::Interfaces() {
    static const InterfaceEntry<ReplayHost> map[] = {Entry<ReplayHost, IFilterHost>(),
                                                     Entry<ReplayHost, IDispatch, IFilterHost>()};
    return map;
}

void ReplayHost::Attach(std::vector<ReplayEvent> events, std::u16string sourcePath, IEvents* sink,
                        std::size_t perPump, bool showBar) {
    events_ = std::move(events);
    next_ = 0;
    total_ = events_.size();
    perPump_ = perPump == 0 ? 1 : perPump;
    sourcePath_ = std::move(sourcePath);
    sink_ = ComPtr<IEvents>(sink);
    ComObject<Tag>::Create(tag_.Receive());
    ComObject<Text>::Create(text_.Receive());
    showBar_ = showBar;
}

HRESULT ReplayHost::raw_Progress(LONG percent) {
    if (!showBar_)
        return S_OK;
    constexpr int kWidth = 40;
    const LONG shown = percent < 0 ? 0 : percent > 100 ? 100 : percent;
    const int filled = static_cast<int>(shown * kWidth / 100);
    std::fprintf(stderr, "\r[%.*s%*s] %3ld%%", filled, "########################################",
                 kWidth - filled, "", static_cast<long>(shown));
    std::fflush(stderr);
    drawn_ = true;
    return S_OK;
}

void ReplayHost::FinishBar() {
    if (drawn_)
        std::fputs("\n", stderr);
    drawn_ = false;
}

HRESULT ReplayHost::Deliver(const ReplayEvent& event) {
    switch (event.kind) {
    case ReplayEvent::kStartOfInput: {
        ComPtr<ComObject<DocumentInfo>> info;
        ComObject<DocumentInfo>::Create(info.Receive());
        Bstr path(sourcePath_);
        info->put_SourceFile(path.get());
        info->put_DocumentNumber(documentNumber_);
        return sink_->raw_StartOfInput(info.get());
    }
    case ReplayEvent::kEndOfInput:
        if (inSegment_)
            Note(sink_->raw_EndOfSegment());
        inSegment_ = false;
        return sink_->raw_EndOfInput();
    case ReplayEvent::kText: {
        text_->Clear();
        Bstr text(event.text);
        text_->put_Text(text.get());
        return sink_->raw_Text(text_.get());
    }
    case ReplayEvent::kTag:
        break;
    }
    TagDescriptor tag;
    tag.name = event.name;
    tag.tagText = event.text;
    tag.endTag = event.end;
    tag.startTag = event.start;
    tag.inlineTag = event.inlineMark;
    // A run ends before the tag that closes it, and a new one begins behind
    // the tag that opens it.
    if (inSegment_ && tag.inlineTag == 0 && IsSegmentClose(tag)) {
        Note(sink_->raw_EndOfSegment());
        inSegment_ = false;
    }
    tag_->Clear();
    Bstr text(event.text), name(event.name);
    tag_->put_TagText(text.get());
    tag_->put_TagName(name.get());
    tag_->put_EndTag(event.end);
    tag_->put_StartTag(event.start);
    tag_->put_Inline(event.inlineMark);
    HRESULT hr = sink_->raw_Tag(tag_.get());
    if (IsSegmentOpen(tag)) {
        Note(sink_->raw_StartOfSegment(nullptr));
        inSegment_ = true;
    }
    return hr;
}

HRESULT ReplayHost::raw_Pump(LONG_PTR) {
    if (!sink_)
        return S_OK;
    std::size_t budget = perPump_;
    while (next_ < events_.size() && budget-- > 0) {
        if (next_ == cursorIndex_ && cursor_)
            Note(sink_->raw_Property(cursor_.get()));
        const ReplayEvent& event = events_[next_++];
        const HRESULT hr = Deliver(event);
        if (event.kind == ReplayEvent::kStartOfInput) {
            // The source is read in the next call: the input opens in a pump of its own.
            if (FAILED(hr))
                return E_FAIL;
            break;
        }
        Note(hr);
    }
    if (total_ != 0)
        raw_Progress(static_cast<LONG>(next_ * 100 / total_));
    // The writer converts after the last event: it does so without them.
    if (next_ >= total_)
        std::vector<ReplayEvent>().swap(events_);
    return S_OK;
}

} // namespace tervane::app
