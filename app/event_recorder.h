#pragma once
// The host's side of a forward conversion: a sink that records every event it
// receives, and an IFilterHost whose progress joins the same record and
// drives a progress bar on a terminal.
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "app/json_lines.h"
#include "host/events.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/locale/utf8.h"

namespace tervane::app {

// What the host received, rendered as it arrives: the tagged document (tag
// texts and texts in order, UTF-8), or one JSON object a line per event.
class EventOutput {
public:
    explicit EventOutput(bool jsonLines) : jsonLines_(jsonLines) {}

    void StartOfInput(bool info);
    void EndOfInput();
    void Progress(LONG value);
    // The document takes the tag's text alone, as it comes.
    void Tag(std::u16string_view text, std::u16string_view name, LONG start, LONG end,
             LONG inlineMark) {
        receivedAny_ = true;
        if (jsonLines_)
            TagLine(text, name, start, end, inlineMark);
        else
            AppendUtf8(text);
    }
    void Text(std::u16string_view text) {
        receivedAny_ = true;
        if (jsonLines_)
            TextLine(text);
        else
            AppendUtf8(text);
    }
    void Property(std::u16string_view name, std::u16string_view value);
    void Segment(bool start);

    // A tag or a text: the conversion read something.
    bool ReceivedAny() const { return receivedAny_; }

    // Never a null pointer, even before the first byte.
    std::string_view Rendered() const {
        return data_ ? std::string_view(data_.get(), size_) : std::string_view("", 0);
    }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    void TagLine(std::u16string_view text, std::u16string_view name, LONG start, LONG end,
                 LONG inlineMark);
    void TextLine(std::u16string_view text);

    // Room for bytes more at the end; throws std::bad_alloc as a string would.
    char* Room(std::size_t bytes) {
        if (capacity_ - size_ < bytes)
            Grow(bytes);
        return data_.get() + size_;
    }
    void Grow(std::size_t bytes);
    void Append(std::string_view bytes);
    void AppendUtf8(std::u16string_view text) {
        if (text.size() > SIZE_MAX / locale::kUtf8PerUnit)
            throw std::bad_alloc();
        char* at = Room(text.size() * locale::kUtf8PerUnit);
        size_ += static_cast<std::size_t>(locale::WriteUtf8(at, text) - at);
    }

    bool jsonLines_;
    bool receivedAny_ = false;
    JsonLine line_;
    // Grown by realloc: the document of a large file runs to megabytes,
    // which then move by remapping rather than copying.
    std::unique_ptr<char, Free> data_;
    std::size_t size_ = 0, capacity_ = 0;
};

class RecordingSink : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<RecordingSink> Interfaces();
    void Attach(std::shared_ptr<EventOutput> log) { log_ = std::move(log); }

    HRESULT raw_Property(IProperty* property) override;
    HRESULT raw_StartOfInput(IDocumentInfo* info) override;
    HRESULT raw_EndOfInput() override;
    HRESULT raw_StartOfSegment(IUnknown* segment) override;
    HRESULT raw_EndOfSegment() override;
    HRESULT raw_Text(IText* text) override;
    HRESULT raw_Tag(ITag* tag) override;

private:
    std::shared_ptr<EventOutput> log_;
};

class ProgressHost : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<ProgressHost> Interfaces();
    // showBar: draw on standard error, which should be a terminal.
    void Attach(std::shared_ptr<EventOutput> log, bool showBar) {
        log_ = std::move(log);
        showBar_ = showBar;
    }
    void FinishBar();
    // What a pump delivers: the host runs the producer at the head of its
    // chain inside the pump that the chain's filter asks for.
    void OnPump(std::function<HRESULT(LONG_PTR)> deliver) { deliver_ = std::move(deliver); }

    HRESULT raw_Progress(LONG percent) override;
    HRESULT raw_Pump(LONG_PTR cookie) override { return deliver_ ? deliver_(cookie) : S_OK; }

private:
    std::function<HRESULT(LONG_PTR)> deliver_;
    std::shared_ptr<EventOutput> log_;
    bool showBar_ = false;
    bool drawn_ = false;
};

} // namespace tervane::app
