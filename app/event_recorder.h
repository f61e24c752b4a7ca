#pragma once
// The host's side of a forward conversion: a sink that records every event it
// receives, and an IFilterHost whose progress joins the same record and
// drives a progress bar on a terminal.
#include <memory>
#include <string>
#include <vector>

#include "host/events.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane::app {

struct RecordedEvent {
    enum Kind {
        StartOfInput,
        Progress,
        Tag,
        Text,
        EndOfInput,
        Property,
        StartOfSegment,
        EndOfSegment
    };
    explicit RecordedEvent(Kind k) : kind(k) {}
    Kind kind;
    std::u16string text; // tag text or text
    std::u16string name; // tag name
    LONG start = 0, end = 0, inlineMark = 0;
    LONG value = 0;    // progress
    bool info = false; // StartOfInput carried an item
};

using EventLog = std::vector<RecordedEvent>;

class RecordingSink : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<RecordingSink> Interfaces();
    void Attach(std::shared_ptr<EventLog> log) { log_ = std::move(log); }

    HRESULT raw_Property(IProperty* property) override;
    HRESULT raw_StartOfInput(IDocumentInfo* info) override;
    HRESULT raw_EndOfInput() override;
    HRESULT raw_StartOfSegment(IUnknown* segment) override;
    HRESULT raw_EndOfSegment() override;
    HRESULT raw_Text(IText* text) override;
    HRESULT raw_Tag(ITag* tag) override;

private:
    std::shared_ptr<EventLog> log_;
};

class ProgressHost : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<ProgressHost> Interfaces();
    // showBar: draw on standard error, which should be a terminal.
    void Attach(std::shared_ptr<EventLog> log, bool showBar) {
        log_ = std::move(log);
        showBar_ = showBar;
    }
    void FinishBar();

    HRESULT raw_Progress(LONG percent) override;
    HRESULT raw_Pump(LONG_PTR) override { return S_OK; }

private:
    std::shared_ptr<EventLog> log_;
    bool showBar_ = false;
    bool drawn_ = false;
};

} // namespace tervane::app
