#pragma once
// The objects of the bilingual editor that a verification plug-in is handed
// or creates. Only the identifiers and the vtable positions bind: a plug-in
// calls operation n of an object as the n-th own operation behind IDispatch.
// Positions the plug-in has no use for are kept by slots that answer
// E_NOTIMPL.
#include "platform/com/dispatch.h"
#include "platform/com/variant.h"

#define TERVANE_EDITOR_SLOT(n)                                                                     \
    virtual HRESULT Slot##n() {                                                                    \
        return E_NOTIMPL;                                                                          \
    }

namespace tervane {

inline constexpr IID IID_IKestrinPlugIn = MakeGuid("{D1B31D70-AD2C-11D5-8908-00B0D0777F8B}");
inline constexpr IID IID_IVerificationPlugIn = MakeGuid("{C2A3C340-B6A7-11D5-8911-00B0D0777F8B}");
inline constexpr CLSID CLSID_HostDocument = MakeGuid("{E1099BB6-9365-11D5-88E9-00B0D0777F8B}");

// Element kinds of the enumerator and the sides.
inline constexpr LONG kAnyElement = 0;
inline constexpr LONG kTranslationUnitElement = 20;
inline constexpr LONG kSideParts = 40;

} // namespace tervane

struct IKestrinPlugIn : IDispatch {
    static constexpr IID iid = tervane::IID_IKestrinPlugIn;
    virtual HRESULT Attach(IDispatch* editor, LONG flags, VARIANT_BOOL* accepted) = 0; // 1
    virtual HRESULT Detach(IDispatch* editor) = 0;                                     // 2
};

struct IVerificationPlugIn : IDispatch {
    static constexpr IID iid = tervane::IID_IVerificationPlugIn;
    virtual HRESULT CanVerify(IDispatch* view, VARIANT_BOOL* result) = 0; // 1
    virtual HRESULT Verify(IDispatch* view, IDispatch* report) = 0;       // 2
};

struct IEditorView : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{5B0E7C41-2F6A-4C1D-9E38-7A54C2D1B301}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    virtual HRESULT get_SourcePath(BSTR* path) = 0; // 8
    virtual HRESULT get_FileName(BSTR* name) = 0;   // 9
    TERVANE_EDITOR_SLOT(10)
    TERVANE_EDITOR_SLOT(11)
    TERVANE_EDITOR_SLOT(12)
    TERVANE_EDITOR_SLOT(13)
    TERVANE_EDITOR_SLOT(14)
    TERVANE_EDITOR_SLOT(15)
    TERVANE_EDITOR_SLOT(16)
    TERVANE_EDITOR_SLOT(17)
    TERVANE_EDITOR_SLOT(18)
    TERVANE_EDITOR_SLOT(19)
    TERVANE_EDITOR_SLOT(20)
    virtual HRESULT SaveAs(BSTR name) = 0; // 21
};

// One finding of a report.
struct IReportEntry : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{5B0E7C42-2F6A-4C1D-9E38-7A54C2D1B301}");
    virtual HRESULT get_Severity(LONG* severity) = 0;             // 1
    virtual HRESULT get_StartPair(LONG* first, LONG* second) = 0; // 2
    virtual HRESULT get_Message(BSTR* text) = 0;                  // 3
};

struct IVerificationReport : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{5B0E7C43-2F6A-4C1D-9E38-7A54C2D1B301}");
    virtual HRESULT get_Item(VARIANT index, IDispatch** entry) = 0; // 1
    virtual HRESULT get_Count(LONG* count) = 0;                     // 2
    TERVANE_EDITOR_SLOT(3)
    virtual HRESULT Add(BSTR message, LONG reserved1, LONG severity, LONG code, LONG reserved2,
                        LONG startFirst, LONG startSecond, LONG endFirst, LONG endSecond,
                        LONG style, LONG visible, LONG* scratch) = 0; // 4
    TERVANE_EDITOR_SLOT(5)
    virtual HRESULT Remove(LONG index) = 0; // 6
};

// Four position numbers: the start pair, then the end pair.
#define TERVANE_EDITOR_RANGE                                                                       \
    virtual HRESULT get_StartFirst(LONG* value) = 0;  /* 10 */                                     \
    virtual HRESULT get_StartSecond(LONG* value) = 0; /* 11 */                                     \
    virtual HRESULT get_EndFirst(LONG* value) = 0;    /* 12 */                                     \
    virtual HRESULT get_EndSecond(LONG* value) = 0;   /* 13 */

struct IElementEnumerator : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{DC5163C4-BFD5-11D4-87E0-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    virtual HRESULT Next(LONG kind, LONG reserved, IDispatch** element) = 0; // 4
    TERVANE_EDITOR_SLOT(5)
    virtual HRESULT Reset() = 0; // 6
};

struct IHostDocument : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{E1099BB4-9365-11D5-88E9-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_SLOT(10)
    TERVANE_EDITOR_SLOT(11)
    TERVANE_EDITOR_SLOT(12)
    TERVANE_EDITOR_SLOT(13)
    TERVANE_EDITOR_SLOT(14)
    TERVANE_EDITOR_SLOT(15)
    TERVANE_EDITOR_SLOT(16)
    TERVANE_EDITOR_SLOT(17)
    TERVANE_EDITOR_SLOT(18)
    TERVANE_EDITOR_SLOT(19)
    TERVANE_EDITOR_SLOT(20)
    TERVANE_EDITOR_SLOT(21)
    TERVANE_EDITOR_SLOT(22)
    TERVANE_EDITOR_SLOT(23)
    TERVANE_EDITOR_SLOT(24)
    virtual HRESULT get_Elements(IElementEnumerator** elements) = 0; // 25
    TERVANE_EDITOR_SLOT(26)
    virtual HRESULT Open(BSTR path) = 0; // 27
};

// What every element answers: its place.
struct IHostElement : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{5B0E7C44-2F6A-4C1D-9E38-7A54C2D1B301}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_RANGE
};

struct ITagDefinition : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{B1447694-8D84-4859-8695-0D6D58B64954}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    virtual HRESULT get_Name(BSTR* name) = 0; // 3
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_SLOT(10)
    virtual HRESULT get_EndMark(LONG* markPlusOne) = 0; // 11
    TERVANE_EDITOR_SLOT(12)
    virtual HRESULT get_StartMark(LONG* markPlusOne) = 0; // 13
};

struct ITagElement : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{E1099BAD-9365-11D5-88E9-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_RANGE
    TERVANE_EDITOR_SLOT(14)
    TERVANE_EDITOR_SLOT(15)
    TERVANE_EDITOR_SLOT(16)
    TERVANE_EDITOR_SLOT(17)
    TERVANE_EDITOR_SLOT(18)
    TERVANE_EDITOR_SLOT(19)
    TERVANE_EDITOR_SLOT(20)
    virtual HRESULT get_Definition(ITagDefinition** definition) = 0; // 21
    virtual HRESULT get_TagText(BSTR* text) = 0;                     // 22
};

struct ITextElement : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{E1099BA9-9365-11D5-88E9-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    virtual HRESULT get_Text(BSTR* text) = 0; // 6
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_RANGE
};

struct IPartCollection : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{6EAE1743-3D64-4DA3-8AC4-6F76612DB3B9}");
    virtual HRESULT get_Item(VARIANT index, IDispatch** part) = 0; // 1
    virtual HRESULT get_Count(LONG* count) = 0;                    // 2
};

struct IUnitSide : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{E1099BA8-9365-11D5-88E9-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_SLOT(10)
    TERVANE_EDITOR_SLOT(11)
    TERVANE_EDITOR_SLOT(12)
    TERVANE_EDITOR_SLOT(13)
    TERVANE_EDITOR_SLOT(14)
    TERVANE_EDITOR_SLOT(15)
    TERVANE_EDITOR_SLOT(16)
    TERVANE_EDITOR_SLOT(17)
    virtual HRESULT get_Parts(LONG kind, IPartCollection** parts) = 0; // 18
};

struct ITranslationUnit : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{E1099BB0-9365-11D5-88E9-00B0D0777F8B}");
    TERVANE_EDITOR_SLOT(1)
    TERVANE_EDITOR_SLOT(2)
    TERVANE_EDITOR_SLOT(3)
    TERVANE_EDITOR_SLOT(4)
    TERVANE_EDITOR_SLOT(5)
    TERVANE_EDITOR_SLOT(6)
    TERVANE_EDITOR_SLOT(7)
    TERVANE_EDITOR_SLOT(8)
    TERVANE_EDITOR_SLOT(9)
    TERVANE_EDITOR_RANGE
    TERVANE_EDITOR_SLOT(14)
    TERVANE_EDITOR_SLOT(15)
    TERVANE_EDITOR_SLOT(16)
    TERVANE_EDITOR_SLOT(17)
    TERVANE_EDITOR_SLOT(18)
    TERVANE_EDITOR_SLOT(19)
    TERVANE_EDITOR_SLOT(20)
    TERVANE_EDITOR_SLOT(21)
    virtual HRESULT get_Source(IUnitSide** side) = 0; // 22
    virtual HRESULT get_Target(IUnitSide** side) = 0; // 23
};
