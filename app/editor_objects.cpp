#include "app/editor_objects.h"

#include <fstream>
#include <sstream>

#include "app/forward_run.h"
#include "app/xliff/xliff_io.h"
#include "platform/com/bstr.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"

namespace tervane::app {

namespace {

using Model = std::shared_ptr<const EditorElements>;

std::string& EditorSource() {
    static std::string source;
    return source;
}

HRESULT GetString(std::u16string_view value, BSTR* out) {
    if (out == nullptr)
        return E_POINTER;
    *out = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
    return *out == nullptr && !value.empty() ? E_OUTOFMEMORY : S_OK;
}

HRESULT GetNumber(LONG value, LONG* out) {
    if (out == nullptr)
        return E_POINTER;
    *out = value;
    return S_OK;
}

std::string NarrowAscii(std::u16string_view text) {
    std::string out;
    for (char16_t c : text)
        out += static_cast<char>(c);
    return out;
}

// Hands out a new object as the interface asked for.
template <typename Object, typename Interface, typename... Args>
HRESULT Make(Interface** out, Args&&... args) {
    if (out == nullptr)
        return E_POINTER;
    *out = nullptr;
    ComObject<Object>* object = nullptr;
    HRESULT hr = ComObject<Object>::Create(&object, args...);
    if (FAILED(hr))
        return hr;
    hr = object->QueryInterface(Interface::iid, reinterpret_cast<void**>(out));
    object->Release();
    return hr;
}

HRESULT MakeElement(const Model& model, std::size_t index, IDispatch** out);

// The place of an element of the model.
class Placed : public ComObjectRoot {
public:
    Placed(Model model, std::size_t index) : model_(std::move(model)), index_(index) {}

protected:
    const EditorElement& Self() const { return (*model_)[index_]; }

    Model model_;
    std::size_t index_;
};

#define TERVANE_PLACE_GETTERS                                                                      \
    HRESULT get_StartFirst(LONG* value) override {                                                 \
        return GetNumber(Self().range.start.first, value);                                         \
    }                                                                                              \
    HRESULT get_StartSecond(LONG* value) override {                                                \
        return GetNumber(Self().range.start.second, value);                                        \
    }                                                                                              \
    HRESULT get_EndFirst(LONG* value) override {                                                   \
        return GetNumber(Self().range.end.first, value);                                           \
    }                                                                                              \
    HRESULT get_EndSecond(LONG* value) override {                                                  \
        return GetNumber(Self().range.end.second, value);                                          \
    }

class TagDefinition : public Placed, public DispatchWithoutTypeInfo<ITagDefinition> {
public:
    using Placed::Placed;
    static InterfaceMap<TagDefinition> Interfaces() {
        static const InterfaceEntry<TagDefinition> map[] = {
            Entry<TagDefinition, ITagDefinition>(),
            Entry<TagDefinition, IDispatch, ITagDefinition>()};
        return map;
    }
    HRESULT get_Name(BSTR* name) override { return GetString(Self().name, name); }
    HRESULT get_EndMark(LONG* mark) override { return GetNumber(Self().endMark + 1, mark); }
    HRESULT get_StartMark(LONG* mark) override { return GetNumber(Self().startMark + 1, mark); }
};

class TagElement : public Placed,
                   public DispatchWithoutTypeInfo<ITagElement>,
                   public DispatchWithoutTypeInfo<IHostElement> {
public:
    using Placed::Placed;
    static InterfaceMap<TagElement> Interfaces() {
        static const InterfaceEntry<TagElement> map[] = {
            Entry<TagElement, ITagElement>(), Entry<TagElement, IDispatch, ITagElement>(),
            Entry<TagElement, IHostElement>()};
        return map;
    }
    TERVANE_PLACE_GETTERS
    HRESULT get_Definition(ITagDefinition** definition) override {
        return Make<TagDefinition>(definition, model_, index_);
    }
    HRESULT get_TagText(BSTR* text) override { return GetString(Self().text, text); }
};

class TextElement : public Placed,
                    public DispatchWithoutTypeInfo<ITextElement>,
                    public DispatchWithoutTypeInfo<IHostElement> {
public:
    using Placed::Placed;
    static InterfaceMap<TextElement> Interfaces() {
        static const InterfaceEntry<TextElement> map[] = {
            Entry<TextElement, ITextElement>(), Entry<TextElement, IDispatch, ITextElement>(),
            Entry<TextElement, IHostElement>()};
        return map;
    }
    TERVANE_PLACE_GETTERS
    HRESULT get_Text(BSTR* text) override { return GetString(Self().text, text); }
};

class PartCollection : public ComObjectRoot, public DispatchWithoutTypeInfo<IPartCollection> {
public:
    PartCollection(Model model, std::vector<std::size_t> parts)
        : model_(std::move(model)), parts_(std::move(parts)) {}
    static InterfaceMap<PartCollection> Interfaces() {
        static const InterfaceEntry<PartCollection> map[] = {
            Entry<PartCollection, IPartCollection>(),
            Entry<PartCollection, IDispatch, IPartCollection>()};
        return map;
    }
    HRESULT get_Item(VARIANT index, IDispatch** part) override {
        if (part == nullptr)
            return E_POINTER;
        *part = nullptr;
        if (index.vt != VT_I4 || index.lVal < 0 ||
            static_cast<std::size_t>(index.lVal) >= parts_.size())
            return E_INVALIDARG;
        return MakeElement(model_, parts_[index.lVal], part);
    }
    HRESULT get_Count(LONG* count) override {
        return GetNumber(static_cast<LONG>(parts_.size()), count);
    }

private:
    Model model_;
    std::vector<std::size_t> parts_;
};

class UnitSide : public ComObjectRoot, public DispatchWithoutTypeInfo<IUnitSide> {
public:
    UnitSide(Model model, std::vector<std::size_t> parts)
        : model_(std::move(model)), parts_(std::move(parts)) {}
    static InterfaceMap<UnitSide> Interfaces() {
        static const InterfaceEntry<UnitSide> map[] = {Entry<UnitSide, IUnitSide>(),
                                                       Entry<UnitSide, IDispatch, IUnitSide>()};
        return map;
    }
    HRESULT get_Parts(LONG kind, IPartCollection** parts) override {
        if (kind != kSideParts)
            return E_INVALIDARG;
        return Make<PartCollection>(parts, model_, parts_);
    }

private:
    Model model_;
    std::vector<std::size_t> parts_;
};

class UnitElement : public Placed,
                    public DispatchWithoutTypeInfo<ITranslationUnit>,
                    public DispatchWithoutTypeInfo<IHostElement> {
public:
    using Placed::Placed;
    static InterfaceMap<UnitElement> Interfaces() {
        static const InterfaceEntry<UnitElement> map[] = {
            Entry<UnitElement, ITranslationUnit>(),
            Entry<UnitElement, IDispatch, ITranslationUnit>(), Entry<UnitElement, IHostElement>()};
        return map;
    }
    TERVANE_PLACE_GETTERS
    HRESULT get_Source(IUnitSide** side) override {
        return Make<UnitSide>(side, model_, Self().sourceParts);
    }
    HRESULT get_Target(IUnitSide** side) override {
        return Make<UnitSide>(side, model_, Self().targetParts);
    }
};

HRESULT MakeElement(const Model& model, std::size_t index, IDispatch** out) {
    switch ((*model)[index].kind) {
    case EditorElement::Kind::Tag:
        return Make<TagElement>(out, model, index);
    case EditorElement::Kind::Text:
        return Make<TextElement>(out, model, index);
    case EditorElement::Kind::Unit:
        return Make<UnitElement>(out, model, index);
    }
    return E_UNEXPECTED;
}

class ElementEnumerator : public ComObjectRoot, public DispatchWithoutTypeInfo<IElementEnumerator> {
public:
    explicit ElementEnumerator(Model model) : model_(std::move(model)) {}
    static InterfaceMap<ElementEnumerator> Interfaces() {
        static const InterfaceEntry<ElementEnumerator> map[] = {
            Entry<ElementEnumerator, IElementEnumerator>(),
            Entry<ElementEnumerator, IDispatch, IElementEnumerator>()};
        return map;
    }
    HRESULT Next(LONG kind, LONG, IDispatch** element) override {
        if (element == nullptr)
            return E_POINTER;
        *element = nullptr;
        while (next_ < model_->size()) {
            const std::size_t at = next_++;
            if (kind == kAnyElement || (kind == kTranslationUnitElement &&
                                        (*model_)[at].kind == EditorElement::Kind::Unit))
                return MakeElement(model_, at, element);
        }
        return S_OK;
    }
    HRESULT Reset() override {
        next_ = 0;
        return S_OK;
    }

private:
    Model model_;
    std::size_t next_ = 0;
};

class ReportEntry : public ComObjectRoot, public DispatchWithoutTypeInfo<IReportEntry> {
public:
    explicit ReportEntry(Finding finding) : finding_(std::move(finding)) {}
    static InterfaceMap<ReportEntry> Interfaces() {
        static const InterfaceEntry<ReportEntry> map[] = {
            Entry<ReportEntry, IReportEntry>(), Entry<ReportEntry, IDispatch, IReportEntry>()};
        return map;
    }
    HRESULT get_Severity(LONG* severity) override { return GetNumber(finding_.severity, severity); }
    HRESULT get_StartPair(LONG* first, LONG* second) override {
        HRESULT hr = GetNumber(finding_.range.start.first, first);
        return SUCCEEDED(hr) ? GetNumber(finding_.range.start.second, second) : hr;
    }
    HRESULT get_Message(BSTR* text) override { return GetString(finding_.message, text); }

private:
    Finding finding_;
};

// The host's document class: the XLIFF file of a path, with the structure of
// the session's source file.
class HostDocument : public ComObjectRoot, public DispatchWithoutTypeInfo<IHostDocument> {
public:
    static InterfaceMap<HostDocument> Interfaces() {
        static const InterfaceEntry<HostDocument> map[] = {
            Entry<HostDocument, IHostDocument>(), Entry<HostDocument, IDispatch, IHostDocument>()};
        return map;
    }
    HRESULT get_Elements(IElementEnumerator** elements) override {
        if (!model_)
            return E_UNEXPECTED;
        return Make<ElementEnumerator>(elements, model_);
    }
    HRESULT Open(BSTR path) override {
        if (path == nullptr)
            return E_POINTER;
        try {
            const std::string file = NarrowAscii(std::u16string_view(path, SysStringLen(path)));
            std::ifstream in(file, std::ios::binary);
            if (!in)
                return E_ACCESSDENIED;
            std::stringstream bytes;
            bytes << in.rdbuf();
            const std::string xml = bytes.str();
            const xliff::Document document = xliff::ReadXliff(xml, file);
            xliff::EventList events;
            if (!EditorSource().empty())
                events = ExtractEvents(EditorSource());
            model_ =
                std::make_shared<const EditorElements>(BuildEditorElements(document, events, xml));
            return S_OK;
        } catch (...) {
            return E_FAIL;
        }
    }

private:
    Model model_;
};

} // namespace

void SetEditorSource(const std::string& path) {
    EditorSource() = path;
}

void RegisterHostDocumentClass() {
    static const bool registered = [] {
        IClassFactory* factory = CachedClassFactory<HostDocument>();
        DWORD cookie = 0;
        return factory != nullptr && SUCCEEDED(CoRegisterClassObject(CLSID_HostDocument, factory,
                                                                     CLSCTX_ALL, 0, &cookie));
    }();
    (void)registered;
}

InterfaceMap<EditorView> EditorView::Interfaces() {
    static const InterfaceEntry<EditorView> map[] = {Entry<EditorView, IEditorView>(),
                                                     Entry<EditorView, IDispatch, IEditorView>()};
    return map;
}

HRESULT EditorView::get_SourcePath(BSTR* path) {
    return GetString(source_, path);
}

HRESULT EditorView::get_FileName(BSTR* name) {
    return GetString(source_, name);
}

HRESULT EditorView::SaveAs(BSTR name) {
    if (name == nullptr)
        return E_POINTER;
    const std::string file = NarrowAscii(std::u16string_view(name, SysStringLen(name)));
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    out.close();
    saved_.push_back(file);
    return out ? S_OK : E_ACCESSDENIED;
}

InterfaceMap<VerificationReport> VerificationReport::Interfaces() {
    static const InterfaceEntry<VerificationReport> map[] = {
        Entry<VerificationReport, IVerificationReport>(),
        Entry<VerificationReport, IDispatch, IVerificationReport>()};
    return map;
}

HRESULT VerificationReport::get_Item(VARIANT index, IDispatch** entry) {
    if (entry == nullptr)
        return E_POINTER;
    *entry = nullptr;
    if (index.vt != VT_I4 || index.lVal < 0 ||
        static_cast<std::size_t>(index.lVal) >= findings_.size())
        return E_INVALIDARG;
    return Make<ReportEntry>(entry, findings_[index.lVal]);
}

HRESULT VerificationReport::get_Count(LONG* count) {
    return GetNumber(static_cast<LONG>(findings_.size()), count);
}

HRESULT VerificationReport::Add(BSTR message, LONG, LONG severity, LONG code, LONG, LONG startFirst,
                                LONG startSecond, LONG endFirst, LONG endSecond, LONG, LONG,
                                LONG* scratch) {
    if (scratch != nullptr)
        *scratch = 0;
    Finding finding;
    if (message != nullptr)
        finding.message.assign(message, SysStringLen(message));
    finding.severity = severity;
    finding.code = code;
    finding.range = {{startFirst, startSecond}, {endFirst, endSecond}};
    findings_.push_back(std::move(finding));
    return S_OK;
}

HRESULT VerificationReport::Remove(LONG index) {
    if (index < 0 || static_cast<std::size_t>(index) >= findings_.size())
        return E_INVALIDARG;
    findings_.erase(findings_.begin() + index);
    return S_OK;
}

} // namespace tervane::app
