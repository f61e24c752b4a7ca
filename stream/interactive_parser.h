#pragma once
// The filter stage: passes every event on to the next stage at once, with
// each tag's name reduced to the bare keyword of the vocabulary and each
// inline tag cut into single placeholders. It keeps nothing between events.
#include <string>
#include <string_view>

#include "frame/component_ids.h"
#include "host/filter_components.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane {

// The class's own dual interface: it has no operations.
struct ITervaneInteractiveParser : IDispatch {
    static constexpr IID iid = IID_ITervaneInteractiveParser;
};

// The first keyword of the vocabulary found in the tag's text, in the
// vocabulary's order; the text itself when none is.
std::u16string_view ClassifiedTagName(std::u16string_view text);

class TervaneInteractiveParser : public ComObjectRoot,
                                 public DispatchWithoutTypeInfo<IEvents>,
                                 public DispatchWithoutTypeInfo<ITervaneInteractiveParser>,
                                 public IFilterComponent {
public:
    static InterfaceMap<TervaneInteractiveParser> Interfaces();

    // IFilterComponent
    HRESULT Initialize(BSTR firstArg, BSTR secondArg, LONG thirdArg, IFilterHost* host,
                       IEvents* next, IEvents** events) override;
    HRESULT raw_SetOption(BSTR, BSTR) override { return S_OK; }
    HRESULT raw_SetContext(IUnknown*) override { return S_OK; }
    HRESULT raw_Run(LONG_PTR cookie) override;
    HRESULT raw_Close() override { return S_OK; }

    // IEvents
    HRESULT raw_Property(IProperty* property) override;
    HRESULT raw_StartOfInput(IDocumentInfo* info) override;
    HRESULT raw_EndOfInput() override;
    HRESULT raw_StartOfSegment(IUnknown* segment) override;
    HRESULT raw_EndOfSegment() override;
    HRESULT raw_Text(IText* text) override;
    HRESULT raw_Tag(ITag* tag) override;

private:
    void CutInlineTag(ITag* tag, std::u16string_view text);
    void SendRun(ITag* tag, std::u16string_view run);

    ComPtr<IFilterHost> host_;
    ComPtr<IEvents> next_;
};

// Registers the class object of TervaneInteractiveParser with the process, once.
void RegisterTervaneInteractiveParserClass();

} // namespace tervane
