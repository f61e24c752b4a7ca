#pragma once
// The framework's items as this host makes them: Tag, Text and DocumentInfo,
// registered as the process's class objects so that the components create
// them by class identifier. Tags and texts come from pooled class objects:
// one of each is made and freed per event.
#include <string>

#include "host/items.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane::app {

// The items are the host's own objects: they don't keep the filter's module
// loaded, as the framework's items in the framework's library wouldn't.
class Tag : public ComObjectRoot, public DispatchWithoutTypeInfo<ITag> {
public:
    static constexpr bool kLocksModule = false;
    static InterfaceMap<Tag> Interfaces();
    HRESULT get_TagText(BSTR* text) override;
    HRESULT put_TagText(BSTR text) override;
    HRESULT get_TagName(BSTR* name) override;
    HRESULT put_TagName(BSTR name) override;
    HRESULT get_EndTag(LONG* value) override;
    HRESULT put_EndTag(LONG value) override;
    HRESULT get_StartTag(LONG* value) override;
    HRESULT put_StartTag(LONG value) override;
    HRESULT get_Inline(LONG* value) override;
    HRESULT put_Inline(LONG value) override;

    // Back to the state of a new item, keeping the strings' storage.
    void Clear();

private:
    std::u16string text_, name_;
    LONG end_ = 0, start_ = 0, inline_ = 0;
};

class Text : public ComObjectRoot, public DispatchWithoutTypeInfo<IText> {
public:
    static constexpr bool kLocksModule = false;
    static InterfaceMap<Text> Interfaces();
    HRESULT get_Text(BSTR* text) override;
    HRESULT put_Text(BSTR text) override;

    void Clear() { text_.clear(); }

private:
    std::u16string text_;
};

class DocumentInfo : public ComObjectRoot, public DispatchWithoutTypeInfo<IDocumentInfo> {
public:
    static constexpr bool kLocksModule = false;
    static InterfaceMap<DocumentInfo> Interfaces();
    HRESULT get_SourceFile(BSTR* path) override;
    HRESULT put_SourceFile(BSTR path) override;
    HRESULT get_Extra(BSTR* value) override;
    HRESULT put_Extra(BSTR value) override;
    HRESULT get_DocumentNumber(LONG* value) override;
    HRESULT put_DocumentNumber(LONG value) override;
    HRESULT get_SecondNumber(LONG* value) override;
    HRESULT put_SecondNumber(LONG value) override;

private:
    Bstr sourceFile_, extra_;
    LONG documentNumber_ = 0, secondNumber_ = 0;
};

// Registers the three classes once for the life of the process.
void RegisterItemClasses();

} // namespace tervane::app
