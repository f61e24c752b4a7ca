#include "verify/tervane_verifier.h"

#include <ctime>

#include "backward/resource_verifier.h"
#include "frame/diagnostics/report_error.h"
#include "frame/diagnostics/trace.h"
#include "frame/resource_parser_impl.h"
#include "platform/com/bstr.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/win32/handle.h"
#include "verify/tag_order.h"

namespace tervane {

namespace {

constexpr char16_t kFatal[] = u"Unexpected Fatal error when Verification.";

// The result's string, freed; a failed call throws with the interface.
template <typename Interface> std::u16string TakeString(Interface* object, HRESULT hr, BSTR text) {
    std::u16string value = text != nullptr ? std::u16string(text, SysStringLen(text)) : u"";
    SysFreeString(text);
    if (FAILED(hr))
        _com_issue_errorex(hr, object, Interface::iid);
    return value;
}

template <typename Interface> void Check(Interface* object, HRESULT hr) {
    if (FAILED(hr))
        _com_issue_errorex(hr, object, Interface::iid);
}

template <typename Interface> ComPtr<Interface> Need(IUnknown* object) {
    if (object == nullptr)
        _com_issue_error(E_POINTER);
    ComPtr<Interface> wanted;
    HRESULT hr = QueryInterfaceAs(object, wanted.Receive());
    if (FAILED(hr))
        _com_issue_error(hr);
    return wanted;
}

// The four numbers of an element's place, through whichever of its
// interfaces has them.
template <typename Interface> PieceRange RangeOf(Interface* element) {
    PieceRange range;
    Check(element, element->get_StartFirst(&range.start.first));
    Check(element, element->get_StartSecond(&range.start.second));
    Check(element, element->get_EndFirst(&range.end.first));
    Check(element, element->get_EndSecond(&range.end.second));
    return range;
}

bool KnownExtension(const std::u16string& name) {
    const std::size_t dot = name.rfind(u'.');
    const std::u16string_view extension = dot == std::u16string::npos
                                              ? std::u16string_view(name)
                                              : std::u16string_view(name).substr(dot);
    return extension == u".exe" || extension == u".dll" || extension == u".ocx" ||
           extension == u".lng";
}

std::u16string FileNameOf(IDispatch* view) {
    ComPtr<IEditorView> editor = Need<IEditorView>(view);
    BSTR name = nullptr;
    HRESULT hr = editor->get_FileName(&name);
    return TakeString(editor.get(), hr, name);
}

// The parts of one side of a unit, as plain pieces with their places.
void AddParts(IUnitSide* side, CLabelPieceList& ranges) {
    if (side == nullptr)
        _com_issue_error(E_POINTER);
    ComPtr<IPartCollection> parts;
    Check(side, side->get_Parts(kSideParts, parts.Receive()));
    if (!parts)
        _com_issue_error(E_POINTER);
    LONG count = 0;
    Check(parts.get(), parts->get_Count(&count));
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> part;
        Check(parts.get(), parts->get_Item(IndexVariant(i), part.Receive()));
        ComPtr<IHostElement> element = Need<IHostElement>(part.get());
        ranges.push_back(std::make_unique<CLabelPiece>(RangeOf(element.get())));
    }
}

bool HasRange(const CLabelPieceList& ranges, const PieceRange& range) {
    for (const auto& entry : ranges)
        if (entry->range == range)
            return true;
    return false;
}

} // namespace

InterfaceMap<TervaneVerifier> TervaneVerifier::Interfaces() {
    static const InterfaceEntry<TervaneVerifier> map[] = {
        Entry<TervaneVerifier, ITervaneVerifier>(),
        Entry<TervaneVerifier, IDispatch, ITervaneVerifier>(),
        Entry<TervaneVerifier, ISupportErrorInfo>(), Entry<TervaneVerifier, IKestrinPlugIn>(),
        Entry<TervaneVerifier, IVerificationPlugIn>()};
    return map;
}

HRESULT TervaneVerifier::CanVerify(IDispatch* view, VARIANT_BOOL* result) {
    try {
        if (KnownExtension(FileNameOf(view)) && result != nullptr)
            *result = VARIANT_TRUE;
        return S_OK;
    } catch (...) {
        return ReportError(CLSID_TervaneVerifier, kFatal, IID_ITervaneVerifier, E_ACCESSDENIED);
    }
}

std::u16string TervaneVerifier::CopyName(std::uint32_t seconds) const {
    const std::string number = std::to_string(seconds);
    return u"TervaneFilter_VerificationPlugin~" + std::u16string(number.begin(), number.end()) +
           u".exe.zkx";
}

HRESULT TervaneVerifier::Verify(IDispatch* view, IDispatch* reportObject) {
    try {
        if (!KnownExtension(FileNameOf(view)))
            return S_OK;
        Trace("\n\n\n##########  Verification PlugIn       ##########\n\n");
        source.clear();
        target.clear();
        sourceRanges.clear();
        targetRanges.clear();
        all.clear();

        const auto seconds = static_cast<std::uint32_t>(std::time(nullptr));
        Trace("\nOriginal file name -> " + Narrow(sourcePath));
        copyPath = CopyName(seconds);

        ComPtr<IEditorView> editor = Need<IEditorView>(view);
        BSTR name = SysAllocStringLen(copyPath.data(), static_cast<UINT>(copyPath.size()));
        HRESULT hr = editor->SaveAs(name);
        SysFreeString(name);
        Check(editor.get(), hr);
        BSTR path = nullptr;
        hr = editor->get_SourcePath(&path);
        sourcePath = TakeString(editor.get(), hr, path);

        ReadDocument(all);
        ReadUnits();
        SplitSides();
        CompareWithSourceFile();

        ComPtr<IVerificationReport> report = Need<IVerificationReport>(reportObject);
        verify::RunStages(verify::View(source), verify::View(target), report.get());

        const std::u16string copy = CopyName(seconds);
        Trace("\nDeleted file name after verify-> " + Narrow(copy));
        DeleteFileA(Narrow(copy).c_str());

        source.clear();
        target.clear();
        sourceRanges.clear();
        targetRanges.clear();
        all.clear();
        Trace("\nOriginal file name before end of verification-> " + Narrow(sourcePath) + "\n\n");
        Trace("\n#######################Verification finished#################\n\n\n");
        return S_OK;
    } catch (...) {
        return ReportError(CLSID_TervaneVerifier, kFatal, IID_ITervaneVerifier, E_ACCESSDENIED);
    }
}

void TervaneVerifier::ReadDocument(CLabelPieceList& list) {
    document.Reset();
    elements.Reset();
    ComPtr<IUnknown> unknown;
    HRESULT hr = CoCreateInstance(CLSID_HostDocument, nullptr, CLSCTX_ALL, IID_IUnknown,
                                  unknown.ReceiveVoid());
    if (SUCCEEDED(hr))
        hr = OleRun(unknown.get());
    if (SUCCEEDED(hr))
        hr = QueryInterfaceAs(unknown.get(), document.Receive());
    if (FAILED(hr)) {
        document.Reset();
        ReportError(CLSID_TervaneVerifier, kFatal, IID_ITervaneVerifier, E_ACCESSDENIED);
        throw _com_error(E_ACCESSDENIED);
    }
    BSTR path = SysAllocStringLen(copyPath.data(), static_cast<UINT>(copyPath.size()));
    hr = document->Open(path);
    SysFreeString(path);
    Check(document.get(), hr);
    Check(document.get(), document->get_Elements(elements.Receive()));
    if (!elements)
        _com_issue_error(E_POINTER);
    Check(elements.get(), elements->Reset());

    for (;;) {
        ComPtr<IDispatch> element;
        Check(elements.get(), elements->Next(kAnyElement, 0, element.Receive()));
        if (!element)
            break;
        ComPtr<ITagElement> tag;
        ComPtr<ITextElement> text;
        if (SUCCEEDED(QueryInterfaceAs(element.get(), tag.Receive()))) {
            ComPtr<ITagDefinition> definition;
            Check(tag.get(), tag->get_Definition(definition.Receive()));
            if (!definition)
                _com_issue_error(E_POINTER);
            LONG end = 0, start = 0;
            Check(definition.get(), definition->get_EndMark(&end));
            Check(definition.get(), definition->get_StartMark(&start));
            BSTR nameText = nullptr;
            hr = definition->get_Name(&nameText);
            const std::u16string tagName = TakeString(definition.get(), hr, nameText);
            BSTR tagText = nullptr;
            hr = tag->get_TagText(&tagText);
            const std::u16string text = TakeString(tag.get(), hr, tagText);
            auto piece = std::make_unique<CTagLabelPiece>(WideText(tagName), WideText(text), 0, 0,
                                                          end - 1, start - 1, 0);
            piece->range = RangeOf(tag.get());
            list.push_back(std::move(piece));
        } else if (SUCCEEDED(QueryInterfaceAs(element.get(), text.Receive()))) {
            BSTR value = nullptr;
            hr = text->get_Text(&value);
            auto piece = MakeText(TakeString(text.get(), hr, value));
            piece->range = RangeOf(text.get());
            list.push_back(std::move(piece));
        }
    }
}

void TervaneVerifier::ReadUnits() {
    Check(elements.get(), elements->Reset());
    for (;;) {
        ComPtr<IDispatch> element;
        Check(elements.get(), elements->Next(kTranslationUnitElement, 0, element.Receive()));
        if (!element)
            break;
        ComPtr<ITranslationUnit> unit = Need<ITranslationUnit>(element.get());
        ComPtr<IUnitSide> sourceSide, targetSide;
        Check(unit.get(), unit->get_Source(sourceSide.Receive()));
        Check(unit.get(), unit->get_Target(targetSide.Receive()));
        AddParts(targetSide.get(), targetRanges);
        AddParts(sourceSide.get(), sourceRanges);
    }
}

void TervaneVerifier::SplitSides() {
    if (sourceRanges.empty()) {
        for (const auto& piece : all) {
            source.push_back(ClonePiece(*piece));
            if (piece->AsTag() != nullptr || piece->AsText() != nullptr)
                target.push_back(ClonePiece(*piece));
        }
        return;
    }
    for (const auto& piece : all) {
        if (HasRange(sourceRanges, piece->range)) {
            source.push_back(ClonePiece(*piece));
        } else if (HasRange(targetRanges, piece->range)) {
            auto copy = ClonePiece(*piece);
            if (auto* text = dynamic_cast<CTextLabelPiece*>(copy.get()))
                text->inSegment = 1;
            target.push_back(std::move(copy));
        } else {
            source.push_back(ClonePiece(*piece));
            target.push_back(ClonePiece(*piece));
        }
    }
}

void TervaneVerifier::CompareWithSourceFile() {
    const std::string narrow = Narrow(sourcePath);
    WIN32_FIND_DATAA found{};
    HANDLE search = FindFirstFileA(narrow.c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        FindClose(search);
        source.clear();
        CResourceParserImpl parser;
        parser.SetBatchSize(2);
        parser.InitialiseParserSettings(sourcePath);
        parser.EnumerateResources();
        parser.ExtractResources(0);
        ResourceRefs resources;
        for (const auto& resource : parser.Resources())
            resources.push_back(resource.get());
        TagList expected;
        CResourceVerifier::BuildExpectedTags(resources, expected);
        for (const CTagLabelPiece& tag : expected)
            source.push_back(std::make_unique<CTagLabelPiece>(tag));
        return;
    }
    Trace("\n\n++++++++++++The file \"" + narrow + "\" not foud++++++++++++\n\n");
    // The target's own pieces came into source as well: take them out.
    auto entry = targetRanges.rbegin();
    for (auto piece = source.end(); piece != source.begin() && entry != targetRanges.rend();) {
        --piece;
        if ((*piece)->range == (*entry)->range) {
            piece = source.erase(piece);
            ++entry;
        }
    }
}

void RegisterTervaneVerifierClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervaneVerifier>();
        DWORD cookie = 0;
        return factory != nullptr && SUCCEEDED(CoRegisterClassObject(CLSID_TervaneVerifier, factory,
                                                                     CLSCTX_ALL, 0, &cookie));
    }();
    (void)registered;
}

} // namespace tervane
