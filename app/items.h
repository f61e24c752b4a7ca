#pragma once
// The framework's items as this host makes them: Tag, Text and DocumentInfo,
// registered as the process's class objects so that the components create
// them by class identifier. Tags and texts come from pooled class objects:
// one of each is made and freed per event.
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <typeinfo>

#include "host/items.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/com/pooled_factory.h"

namespace tervane::app {

// A property's text. Its room outlives the item's reuse from the pool, so
// that setting a text of a size seen before is a copy.
class ItemString {
public:
    // False when memory runs out, leaving the text as it was.
    bool Assign(BSTR text) {
        const std::size_t length = SysStringLen(text);
        if (length > room_ && !Grow(length))
            return false;
        if (length != 0)
            std::memcpy(data_.get(), text, length * sizeof(char16_t));
        size_ = length;
        return true;
    }
    void Clear() { size_ = 0; }
    std::u16string_view View() const { return {data_.get(), size_}; }

private:
    bool Grow(std::size_t length);

    std::unique_ptr<char16_t[]> data_;
    std::size_t size_ = 0, room_ = 0;
};

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

    // What the setters stored, for the host's own reading.
    std::u16string_view TagText() const { return text_.View(); }
    std::u16string_view TagName() const { return name_.View(); }
    LONG EndTag() const { return end_; }
    LONG StartTag() const { return start_; }
    LONG InlineMark() const { return inline_; }

private:
    ItemString text_, name_;
    LONG end_ = 0, start_ = 0, inline_ = 0;
};

class Text : public ComObjectRoot, public DispatchWithoutTypeInfo<IText> {
public:
    static constexpr bool kLocksModule = false;
    static InterfaceMap<Text> Interfaces();
    HRESULT get_Text(BSTR* text) override;
    HRESULT put_Text(BSTR text) override;

    void Clear() { text_.Clear(); }

    std::u16string_view Value() const { return text_.View(); }

private:
    ItemString text_;
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

// The item as this host made it, which the host may read without a call and
// a copy; null for an item of another make (or none). Only the pooled class
// objects registered above make items, so the pooled type is the one to
// look for.
inline const Tag* OwnTag(ITag* item) {
    if (item == nullptr || typeid(*item) != typeid(PooledObject<Tag>))
        return nullptr;
    return static_cast<const PooledObject<Tag>*>(item);
}
inline const Text* OwnText(IText* item) {
    if (item == nullptr || typeid(*item) != typeid(PooledObject<Text>))
        return nullptr;
    return static_cast<const PooledObject<Text>*>(item);
}

} // namespace tervane::app
