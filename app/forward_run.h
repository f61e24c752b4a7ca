#pragma once
// One forward conversion as a host framework drives it: TervaneParser made by
// class identifier, Initialize with the file, the host and the sink, then
// raw_Parse. The extract command writes what the sink received; the bilingual
// document and the merge keep it as a list of events.
#include <memory>
#include <string>

#include "app/event_recorder.h"
#include "app/xliff/events.h"
#include "host/events.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane::app {

// The parse's result; on a failure *failure holds the component's words.
HRESULT RunForwardConversion(const std::string& file, IEvents* sink, IFilterHost* host,
                             std::string* failure);

// A sink that keeps the tags and texts, in order.
class EventCollector : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<EventCollector> Interfaces();
    xliff::EventList TakeEvents() { return std::move(events_); }

    HRESULT raw_Property(IProperty*) override { return S_OK; }
    HRESULT raw_StartOfInput(IDocumentInfo*) override { return S_OK; }
    HRESULT raw_EndOfInput() override { return S_OK; }
    HRESULT raw_StartOfSegment(IUnknown*) override { return S_OK; }
    HRESULT raw_EndOfSegment() override { return S_OK; }
    HRESULT raw_Text(IText* text) override;
    HRESULT raw_Tag(ITag* tag) override;

private:
    xliff::EventList events_;
};

// The events of file's forward conversion, with a progress bar on a terminal;
// a failed conversion throws CommandFailure.
xliff::EventList ExtractEvents(const std::string& file);

} // namespace tervane::app
