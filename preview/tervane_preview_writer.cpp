#include "preview/tervane_preview_writer.h"

#include <stdexcept>

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "host/items.h"
#include "label/pieces/tag_predicates.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

constexpr DWORD kMenuKind = 4;
constexpr DWORD kDialogKind = 5;
constexpr DWORD kStringKind = 6;
constexpr DWORD kVersionKind = 16;

std::u16string Take(BSTR text) {
    return Bstr::Attach(text).str();
}

HRESULT Report(const char* text, HRESULT hr) {
    return ReportError(CLSID_TervanePreviewWriter, text, IPreviewFileWriter::iid, hr);
}

HRESULT ReportFromWrite(const std::string& text, HRESULT hr) {
    return ReportError(CLSID_TervanePreviewWriter, text.c_str(), IID_ITervanePreviewWriter, hr);
}

bool Holds(std::u16string_view text, std::u16string_view word) {
    return text.find(word) != std::u16string_view::npos;
}

} // namespace

InterfaceMap<TervanePreviewWriter> TervanePreviewWriter::Interfaces() {
    using Self = TervanePreviewWriter;
    static const InterfaceEntry<Self> map[] = {
        Entry<Self, ITervanePreviewWriter, DispatchWithoutTypeInfo<ITervanePreviewWriter>>(),
        Entry<Self, IDispatch, DispatchWithoutTypeInfo<IEvents>>(),
        Entry<Self, ISupportErrorInfo>(),
        Entry<Self, IEvents, DispatchWithoutTypeInfo<IEvents>>(),
        Entry<Self, IPreviewFileWriter>(),
    };
    return map;
}

HRESULT TervanePreviewWriter::Initialize(BSTR path, BSTR, LONG language, LONG, LONG,
                                         IFilterHost* host, VARIANT_BOOL dual, IEvents** events) {
    try {
        host_ = ComPtr<IFilterHost>(host);
        processes_.language = static_cast<DWORD>(language);
        if (path)
            processes_.path.append(path, SysStringLen(path));
        updater_.Initialise(processes_.path, language);

        IEvents* own = nullptr;
        HRESULT hr = OuterQueryInterface(IEvents::iid, reinterpret_cast<void**>(&own));
        if (FAILED(hr) && hr != E_NOINTERFACE)
            _com_issue_error(hr);
        if (own == nullptr || events == nullptr)
            _com_issue_error(E_POINTER);
        events_ = own;
        own->Release();
        events_->QueryInterface(IEvents::iid, reinterpret_cast<void**>(events));

        parser_.SetBatchSize(2);
        ResetCursorResource();
        processes_.dual = 0;
        started_ = processes_.documentNumber = ended_ = keepText_ = cursorSeen_ = inSegment_ =
            cursorSettled_ = 0;
        valid_ = 1;
        if (static_cast<WORD>(dual) == 0xFFFF)
            processes_.dual = 1;
        return S_OK;
    } catch (...) {
        return Report("Unexpected error when accessing Initialize method [TervanePreviewWriter ].",
                      E_FAIL);
    }
}

HRESULT TervanePreviewWriter::get_PreviewPath(BSTR* path) {
    if (path == nullptr)
        return E_POINTER;
    *path = SysAllocStringLen(processes_.path.data(), static_cast<UINT>(processes_.path.size()));
    return S_OK;
}

HRESULT TervanePreviewWriter::get_PreviewReady(VARIANT_BOOL* ready) {
    if (ready == nullptr)
        return E_POINTER;
    *ready = VARIANT_TRUE;
    return S_OK;
}

HRESULT TervanePreviewWriter::raw_Property(IProperty* item) {
    if (item == nullptr)
        return S_OK;
    BSTR name = nullptr;
    item->get_Name(&name);
    if (Take(name) == u"Cursor Position")
        cursorSeen_ = 1;
    return S_OK;
}

HRESULT TervanePreviewWriter::raw_StartOfInput(IDocumentInfo* info) {
    try {
        BSTR path = nullptr;
        LONG number = 0;
        if (info != nullptr) {
            info->get_SourceFile(&path);
            info->get_DocumentNumber(&number);
        }
        const std::u16string source = Take(path);
        processes_.documentNumber = static_cast<DWORD>(number);
        parser_.InitialiseParserSettings(source);
        updater_.SetSourceFile(source);
        started_ = 1;
        return S_OK;
    } catch (const IOException& error) {
        pendingError_ = error.message;
        return E_FAIL;
    } catch (...) {
        return Report("Unexpected error when accessing Initialize method [CResourceWriter ].",
                      E_FAIL);
    }
}

void TervanePreviewWriter::ResetCursorResource() {
    resourceId_.clear();
    resourceKind_ = 0;
}

void TervanePreviewWriter::SetCursorResource(std::u16string_view text) {
    if (Holds(text, u"dialog id"))
        resourceKind_ = kDialogKind;
    else if (Holds(text, u"menu id"))
        resourceKind_ = kMenuKind;
    else if (Holds(text, u"versioninfo"))
        resourceKind_ = kVersionKind;
    else if (Holds(text, u"stringtable"))
        resourceKind_ = kStringKind;
    if (resourceKind_ == kMenuKind || resourceKind_ == kDialogKind) {
        resourceId_.clear();
        const std::size_t first = text.find(u'"');
        const std::size_t second =
            first == std::u16string_view::npos ? first : text.find(u'"', first + 1);
        if (second != std::u16string_view::npos)
            for (char16_t unit : text.substr(first + 1, second - first - 1))
                resourceId_ += static_cast<char>(unit & 0xFF);
    } else if (resourceKind_ == kVersionKind) {
        resourceId_ = "1";
    }
}

void TervanePreviewWriter::Refuse(const char* text) {
    ended_ = 1;
    valid_ = 0;
    errorText_ = Widen(text, CP_UTF8);
}

HRESULT TervanePreviewWriter::raw_Tag(ITag* item) {
    try {
        if (item == nullptr)
            throw std::invalid_argument("no tag");
        LONG start = 0, end = 0, inlineMark = 0;
        item->get_StartTag(&start);
        item->get_EndTag(&end);
        item->get_Inline(&inlineMark);
        BSTR name = nullptr, text = nullptr;
        item->get_TagName(&name);
        item->get_TagText(&text);
        auto piece = std::make_unique<CTagLabelPiece>(Take(name), Take(text), inlineMark ? 0 : 1,
                                                      inlineMark ? 1 : 0, end, start, inlineMark);
        const TagDescriptor& tag = piece->tag;
        if (tag.startTag == 1 && tag.endTag == 0 && tag.inlineTag == 0)
            inSegment_ = 0;
        if (IsSegmentOpen(tag))
            keepText_ = 1;
        else if (tag.endTag == 1 && IsSegmentClose(tag))
            keepText_ = 0;

        // The end of a resource, seen from the tag behind it.
        CPieceStream& pieces = updater_.pieces;
        if (!pieces.empty() && cursorSettled_ == 0) {
            if (const CTagLabelPiece* previous = pieces.back()->AsTag()) {
                const TagDescriptor& before = previous->tag;
                // A </menu> before anything else closes only a pop-up inside a menu.
                if (IsClose(before, u"/dialog") || IsClose(before, u"/versioninfo") ||
                    IsClose(before, u"/stringtable") ||
                    (IsClose(before, u"</menu>") &&
                     (IsOpen(tag, u"menu id") || IsClose(tag, u"</menus>"))))
                    ResetCursorResource();
            }
        }
        if (tag.endTag == 0 && tag.startTag == 0 && tag.inlineTag == 1 && keepText_ == 0)
            return S_OK;
        const std::u16string tagText(tag.tagText.view());
        pieces.push_back(std::move(piece));

        if ((cursorSeen_ == 1 && resourceId_.empty()) ||
            (IsClose(pieces.back()->AsTag()->tag, u"/resources") && cursorSettled_ == 0))
            Refuse(kCursorOutsideText);
        if (cursorSeen_ == 0 && (Holds(tagText, u"dialog id") || Holds(tagText, u"menu id") ||
                                 Holds(tagText, u"versioninfo") || Holds(tagText, u"stringtable")))
            SetCursorResource(tagText);
        if (cursorSeen_ == 1 && (resourceKind_ == kStringKind || resourceKind_ == kVersionKind))
            Refuse(kNotMenuOrDialogText);
        cursorSettled_ = cursorSeen_;
        return S_OK;
    } catch (...) {
        return Report(
            "Unexpected error when accessing preview method [TervanePreviewWriter:raw_Tag ].",
            E_FAIL);
    }
}

HRESULT TervanePreviewWriter::raw_Text(IText* item) {
    try {
        if (keepText_ == 0)
            return S_OK;
        if (item == nullptr)
            throw std::invalid_argument("no text");
        BSTR value = nullptr;
        item->get_Text(&value);
        Bstr text = Bstr::Attach(value);
        if (text.length() == 0)
            return S_OK;
        auto piece = std::make_unique<CTextLabelPiece>(WideText(text.view()));
        piece->inSegment = inSegment_;
        updater_.pieces.push_back(std::move(piece));
        return S_OK;
    } catch (...) {
        return Report(
            "Unexpected error when accessing raw_Text  method [TervanePreviewWriter::raw_Text ].",
            E_FAIL);
    }
}

HRESULT TervanePreviewWriter::Pump(LONG_PTR cookie) {
    if (!host_)
        _com_issue_error(E_POINTER);
    return host_->raw_Pump(cookie);
}

HRESULT TervanePreviewWriter::raw_Write(LONG_PTR cookie) {
    try {
        return Write(cookie);
    } catch (const CVerificationException& error) {
        updater_.RemoveTemporaryFile();
        return ReportFromWrite(error.message, E_ACCESSDENIED);
    } catch (const TervaneFilterException& error) {
        updater_.RemoveTemporaryFile();
        return ReportFromWrite(error.message, E_FAIL);
    } catch (...) {
        return ReportFromWrite(
            "Unexpected error when accessing PreviewWriter method [TervanePreviewWriter ].",
            E_FAIL);
    }
}

HRESULT TervanePreviewWriter::Write(LONG_PTR cookie) {
    if (started_ == 0) {
        const HRESULT pumped = Pump(cookie);
        if (valid_ == 0)
            return ReportFromWrite(Narrow(errorText_, CP_UTF8), E_FAIL);
        if (pumped == E_FAIL)
            return ReportFromWrite(KeepText(pendingError_), E_FAIL);
        return S_OK;
    }
    if (parser_.Resources().empty()) {
        parser_.EnumerateResources();
        parser_.ExtractResources(0);
        Pump(cookie);
        return S_OK;
    }
    if (ended_ == 0) {
        Pump(cookie);
        return S_OK;
    }
    if (valid_ == 0)
        return ReportFromWrite(Narrow(errorText_, CP_UTF8), E_FAIL);
    ResourceRefs resources;
    resources.reserve(parser_.Resources().size());
    for (const auto& resource : parser_.Resources())
        resources.push_back(resource.get());
    updater_.UpdateResources(resources, 0);
    if (!updater_.errorText.empty()) {
        updater_.RemoveTemporaryFile();
        return ReportFromWrite(Narrow(updater_.errorText, CP_UTF8), E_ACCESSDENIED);
    }
    processes_.LaunchPreviewer(processes_.path, resourceKind_, resourceId_);
    Pump(cookie);
    return S_OK;
}

void RegisterTervanePreviewWriterClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervanePreviewWriter>();
        DWORD cookie = 0;
        return factory != nullptr &&
               SUCCEEDED(CoRegisterClassObject(CLSID_TervanePreviewWriter, factory, CLSCTX_ALL, 0,
                                               &cookie));
    }();
    (void)registered;
}

} // namespace tervane
