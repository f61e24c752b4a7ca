#pragma once
// The host's side of a backward conversion: the events of a document, read
// from the JSON Lines that `extract --events` writes, and an IFilterHost that
// replays them into the writer over several pumps, bracketing each
// translatable run with the segment marks as a host does.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/items.h"
#include "host/events.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane::app {

struct ReplayEvent {
    enum Kind { kStartOfInput, kEndOfInput, kTag, kText } kind = kText;
    std::u16string text; // the tag text, or the text
    std::u16string name;
    LONG start = 0, end = 0, inlineMark = 0;
};

// The events of a JSON Lines document; Progress, Property and segment lines
// are passed over, since the host makes its own. On a bad line, error names
// it and its fault.
std::vector<ReplayEvent> ReadReplayEvents(std::string_view content, std::string& error);

class ReplayHost : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<ReplayHost> Interfaces();

    // sink: the writer's IEvents. perPump: events a pump delivers at most.
    void Attach(std::vector<ReplayEvent> events, std::u16string sourcePath, IEvents* sink,
                std::size_t perPump, bool showBar);
    // A preview's host gives the cursor's place as a property before the
    // event at index, and the side through the document number.
    void SetCursor(std::size_t index, IProperty* cursor) {
        cursorIndex_ = index;
        cursor_ = ComPtr<IProperty>(cursor);
    }
    void SetDocumentNumber(LONG number) { documentNumber_ = number; }
    // Drops the sink, which holds this host in turn.
    void Detach() { sink_.Reset(); }
    bool AllDelivered() const { return next_ >= total_; }
    // The first failure of the sink, S_OK if none.
    HRESULT SinkFailure() const { return sinkFailure_; }
    void FinishBar();

    HRESULT raw_Progress(LONG percent) override;
    HRESULT raw_Pump(LONG_PTR cookie) override;

private:
    HRESULT Deliver(const ReplayEvent& event);
    void Note(HRESULT hr) {
        if (FAILED(hr) && sinkFailure_ == S_OK)
            sinkFailure_ = hr;
    }

    std::vector<ReplayEvent> events_;
    std::size_t next_ = 0;
    std::size_t total_ = 0; // events_ is emptied once all are delivered
    std::size_t perPump_ = 1;
    std::u16string sourcePath_;
    ComPtr<IEvents> sink_;
    ComPtr<ComObject<Tag>> tag_;
    ComPtr<ComObject<Text>> text_;
    bool inSegment_ = false;
    HRESULT sinkFailure_ = S_OK;
    bool showBar_ = false;
    std::size_t cursorIndex_ = static_cast<std::size_t>(-1);
    ComPtr<IProperty> cursor_;
    LONG documentNumber_ = 0;
    bool drawn_ = false;
};

} // namespace tervane::app
