#pragma once
// The backward converter: the last stage of the host's chain. The host
// replays its document as events inside the pumps of raw_Write; the writer
// keeps what belongs to the target file, and in the first raw_Write after the
// end of the stream verifies, merges, rebuilds and writes in one go.
#include <cstdint>

#include "backward/resource_updater.h"
#include "frame/component_ids.h"
#include "frame/resource_parser_impl.h"
#include "host/filter_components.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/com/error_info.h"

namespace tervane {

// The class's own dual interface: no operations, it lets a script create the object.
struct ITervaneWriter : IDispatch {
    static constexpr IID iid = IID_ITervaneWriter;
};

class TervaneWriter : public ComObjectRoot,
                      public DispatchWithoutTypeInfo<ITervaneWriter>,
                      public SupportErrorInfoFor<IID_ITervaneWriter>,
                      public DispatchWithoutTypeInfo<IEvents>,
                      public IFileWriter {
public:
    static InterfaceMap<TervaneWriter> Interfaces();

    // IFileWriter
    HRESULT Initialize(BSTR path, BSTR secondArg, LONG language, LONG fourthArg, LONG fifthArg,
                       IFilterHost* host, IEvents** events) override;
    HRESULT raw_SetOption(BSTR, BSTR) override { return S_OK; }
    HRESULT raw_SetContext(IUnknown*) override { return S_OK; }
    HRESULT raw_Write(LONG_PTR cookie) override;
    HRESULT raw_Close() override { return S_OK; }

    // IEvents
    HRESULT raw_Property(IProperty*) override { return S_OK; }
    HRESULT raw_StartOfInput(IDocumentInfo* info) override;
    HRESULT raw_EndOfInput() override {
        ended_ = 1;
        return S_OK;
    }
    HRESULT raw_StartOfSegment(IUnknown*) override {
        inSegment_ = 1;
        return S_OK;
    }
    HRESULT raw_EndOfSegment() override {
        inSegment_ = 0;
        return S_OK;
    }
    HRESULT raw_Text(IText* item) override;
    HRESULT raw_Tag(ITag* item) override;

    CResourceUpdater& Updater() { return updater_; }

private:
    struct TimeRecord {
        std::int64_t seconds = 0;
        std::uint16_t millis = 0;
    };
    HRESULT Write(LONG_PTR cookie);
    HRESULT Pump(LONG_PTR cookie);

    TimeRecord time_;
    std::int64_t initializeTime_ = 0;
    std::int64_t writeStartTime_ = 0;
    std::int64_t endTime_ = 0;
    float elapsed_ = 0;
    ComPtr<IFilterHost> host_;
    CResourceUpdater updater_;
    // Not counted: a count on the object's own interface would keep it alive for ever.
    IEvents* events_ = nullptr;
    CResourceParserImpl parser_;
    LONG keepText_ = 0;
    LONG started_ = 0;
    LONG ended_ = 0;
    LONG inSegment_ = 0;
    const char* pendingError_ = nullptr; // the text of the IOException of raw_StartOfInput
};

// Registers the class object of TervaneWriter with the process, once.
void RegisterTervaneWriterClass();

} // namespace tervane
