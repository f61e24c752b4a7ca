#include "stream/interactive_parser.h"

#include "platform/com/class_objects.h"

namespace tervane {

namespace {

// The order decides where one keyword holds another ("radiobutton" before
// "button", "items" before "item") and where an attribute carries a word.
constexpr std::u16string_view kKeywords[] = {
    u"resources",      u"menus",
    u"dialogs",        u"stringtable",
    u"versioninfo",    u"menu",
    u"items",          u"item",
    u"shortcut",       u"separator",
    u"dialog",         u"radiobutton",
    u"button",         u"groupbox",
    u"label",          u"combobox",
    u"checkbox",       u"listbox",
    u"edit",           u"caption",
    u"string",         u"comments",
    u"productversion", u"productname",
    u"legalcopyright", u"legaltrademarks",
};

// A placeholder starts at each of these, and at the tag's first character.
bool StartsPlaceholder(char16_t c) {
    return c == u'\\' || c == u'+' || c == u'%' || c == u'&';
}

// The property that this stage sets, and its value.
constexpr std::u16string_view kColourChange = u"SrcColorChangeEnabled";
constexpr std::u16string_view kNo = u"No";

} // namespace

std::u16string_view ClassifiedTagName(std::u16string_view text) {
    for (std::u16string_view keyword : kKeywords)
        if (text.find(keyword) != std::u16string_view::npos)
            return keyword;
    return text;
}

InterfaceMap<TervaneInteractiveParser> TervaneInteractiveParser::Interfaces() {
    using Self = TervaneInteractiveParser;
    static const InterfaceEntry<Self> map[] = {
        Entry<Self, IEvents>(),
        Entry<Self, IDispatch, IEvents>(),
        Entry<Self, ITervaneInteractiveParser>(),
        Entry<Self, IFilterComponent>(),
    };
    return map;
}

HRESULT TervaneInteractiveParser::Initialize(BSTR, BSTR, LONG, IFilterHost* host, IEvents* next,
                                             IEvents** events) {
    host_ = ComPtr<IFilterHost>(host);
    next_ = ComPtr<IEvents>(next);
    if (events != nullptr)
        QueryInterfaceAs(ControllingUnknown(), events);
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_Run(LONG_PTR cookie) {
    if (host_)
        host_->raw_Pump(cookie);
    return S_OK;
}

// Decided with this system's host: the stage sets "No" on the colour-change
// property alone and leaves every other property as it came.
HRESULT TervaneInteractiveParser::raw_Property(IProperty* property) {
    if (property == nullptr)
        return E_POINTER;
    Bstr name, value;
    HRESULT hr = property->get_Name(name.Receive());
    if (FAILED(hr))
        return hr;
    hr = property->get_Value(value.Receive());
    if (FAILED(hr))
        return hr;
    if (name.view().substr(0, kColourChange.size()) == kColourChange) {
        Bstr no(kNo);
        property->put_Value(no.get());
    }
    if (next_)
        next_->raw_Property(property);
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_StartOfInput(IDocumentInfo* info) {
    ComPtr<IDocumentInfo> held(info);
    if (next_)
        next_->raw_StartOfInput(info);
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_EndOfInput() {
    if (next_)
        next_->raw_EndOfInput();
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_StartOfSegment(IUnknown* segment) {
    ComPtr<IUnknown> held(segment);
    if (next_)
        next_->raw_StartOfSegment(segment);
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_EndOfSegment() {
    if (next_)
        next_->raw_EndOfSegment();
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_Text(IText* text) {
    ComPtr<IText> held(text);
    if (next_)
        next_->raw_Text(text);
    return S_OK;
}

HRESULT TervaneInteractiveParser::raw_Tag(ITag* tag) {
    if (tag == nullptr)
        return E_POINTER;
    ComPtr<ITag> held(tag);
    Bstr text;
    tag->get_TagText(text.Receive());
    LONG start = 0, end = 0, inlineMark = 0;
    if (text.view().find(u"separator") != std::u16string_view::npos)
        tag->put_StartTag(0);
    else
        tag->get_StartTag(&start);
    tag->get_EndTag(&end);
    tag->get_Inline(&inlineMark);
    if (end == 0 && start == 0 && inlineMark == 1) {
        CutInlineTag(tag, text.view());
        return S_OK;
    }
    tag->put_TagText(text.get());
    Bstr name(ClassifiedTagName(text.view()));
    tag->put_TagName(name.get());
    if (next_)
        next_->raw_Tag(tag);
    return S_OK;
}

// An empty inline tag goes on once as it is: every event is passed on.
void TervaneInteractiveParser::CutInlineTag(ITag* tag, std::u16string_view text) {
    std::size_t begin = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (StartsPlaceholder(text[i])) {
            SendRun(tag, text.substr(begin, i - begin));
            begin = i;
        }
    }
    SendRun(tag, text.substr(begin));
}

// The same item goes out once per run: the next stage reads it before it returns.
void TervaneInteractiveParser::SendRun(ITag* tag, std::u16string_view run) {
    Bstr text(run);
    tag->put_TagText(text.get());
    tag->put_TagName(text.get());
    if (next_)
        next_->raw_Tag(tag);
}

void RegisterTervaneInteractiveParserClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervaneInteractiveParser>();
        DWORD cookie = 0;
        return factory != nullptr &&
               SUCCEEDED(CoRegisterClassObject(CLSID_TervaneInteractiveParser, factory, CLSCTX_ALL,
                                               0, &cookie));
    }();
    (void)registered;
}

} // namespace tervane
