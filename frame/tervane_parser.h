#pragma once
// The forward converter: the component that turns one executable into the
// tagged stream. Thin: it owns the timing, the error reporting and the framing
// of the stream, and leaves the work to its engine.
#include <cstdint>

#include "frame/component_ids.h"
#include "frame/resource_parser_impl.h"
#include "host/filter_components.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/com/error_info.h"

namespace tervane {

// The class's own dual interface: it has no operations, it lets a script
// create the object.
struct ITervaneParser : IDispatch {
    static constexpr IID iid = IID_ITervaneParser;
};

class TervaneParser : public ComObjectRoot,
                      public DispatchWithoutTypeInfo<ITervaneParser>,
                      public SupportErrorInfoFor<IID_ITervaneParser>,
                      public IFileParser {
public:
    static InterfaceMap<TervaneParser> Interfaces();

    HRESULT Initialize(BSTR path, BSTR secondArg, LONG thirdArg, LONG fourthArg, LONG fifthArg,
                       IFilterHost* host, IEvents* sink) override;
    HRESULT raw_SetOption(BSTR, BSTR) override { return S_OK; }
    HRESULT raw_SetContext(IUnknown*) override { return S_OK; }
    HRESULT raw_Parse(LONG_PTR cookie) override;
    HRESULT raw_Close() override { return S_OK; }

    CResourceParserImpl& Engine() { return engine_; }

private:
    struct TimeRecord {
        std::int64_t seconds = 0;
        std::uint16_t millis = 0;
    };
    HRESULT Parse();

    TimeRecord time_;
    std::int64_t initializeStart_ = 0;
    std::int64_t parseStart_ = 0;
    std::int64_t parseEnd_ = 0;
    float elapsed_ = 0;
    HRESULT kept_ = S_OK; // the engine's result, for a failure after it
    CResourceParserImpl engine_;
};

// Registers the class object of TervaneParser with the process, once.
void RegisterTervaneParserClass();

} // namespace tervane
