#pragma once
// The verification plug-in of the host's bilingual editor. It saves a copy of
// the open document, reads the copy through the host's document classes,
// splits it into what the source file says and what the translator made of
// it, runs the checks and leaves its findings in the host's report. The
// document itself is never changed.
#include "frame/component_ids.h"
#include "host/editor.h"
#include "label/pieces/label_piece.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/error_info.h"

namespace tervane {

struct ITervaneVerifier : IDispatch {
    static constexpr IID iid = IID_ITervaneVerifier;
};

class TervaneVerifier : public ComObjectRoot,
                        public DispatchWithoutTypeInfo<ITervaneVerifier>,
                        public SupportErrorInfoFor<IID_ITervaneVerifier>,
                        public DispatchWithoutTypeInfo<IKestrinPlugIn>,
                        public DispatchWithoutTypeInfo<IVerificationPlugIn> {
public:
    static InterfaceMap<TervaneVerifier> Interfaces();

    // IKestrinPlugIn
    HRESULT Attach(IDispatch*, LONG, VARIANT_BOOL* accepted) override {
        if (accepted != nullptr)
            *accepted = VARIANT_TRUE;
        return S_OK;
    }
    HRESULT Detach(IDispatch*) override { return S_OK; }

    // IVerificationPlugIn
    HRESULT CanVerify(IDispatch* view, VARIANT_BOOL* result) override;
    HRESULT Verify(IDispatch* view, IDispatch* report) override;

    // Every element of the copy, in order: tags and texts with their places.
    virtual void ReadDocument(CLabelPieceList& list);

private:
    void ReadUnits();
    void SplitSides();
    void CompareWithSourceFile();
    std::u16string CopyName(std::uint32_t seconds) const;

    ComPtr<IHostDocument> document;
    ComPtr<IElementEnumerator> elements;
    std::u16string copyPath;
    std::u16string sourcePath;
    CLabelPieceList source;
    CLabelPieceList target;
    CLabelPieceList sourceRanges;
    CLabelPieceList targetRanges;
    CLabelPieceList all;
};

// Makes the class known to CoCreateInstance in this process.
void RegisterTervaneVerifierClass();

} // namespace tervane
