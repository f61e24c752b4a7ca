// Hosts bind to these interfaces by slot, not by name: every operation must
// stay in its slot. Under the Itanium C++ ABI a pointer to a virtual member
// holds 1 + the slot's byte offset in the vtable.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "host/filter_components.h"
#include "platform/com/error_info.h"

namespace {

template <typename Member> std::ptrdiff_t Slot(Member member) {
    struct Raw {
        std::uintptr_t ptr;
        std::ptrdiff_t adjust;
    } raw;
    static_assert(sizeof(Member) == sizeof(Raw));
    std::memcpy(&raw, &member, sizeof raw);
    EXPECT_EQ(raw.ptr % sizeof(void*), 1u) << "not a virtual function";
    EXPECT_EQ(raw.adjust, 0);
    return static_cast<std::ptrdiff_t>(raw.ptr - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(VtableLayout, OperationsStayInTheirSlots) {
    EXPECT_EQ(Slot(&IUnknown::QueryInterface), 0);
    EXPECT_EQ(Slot(&IUnknown::Release), 2);
    EXPECT_EQ(Slot(&IDispatch::Invoke), 6);
    EXPECT_EQ(Slot(&IClassFactory::LockServer), 4);
    EXPECT_EQ(Slot(&IErrorInfo::GetHelpContext), 7);
    EXPECT_EQ(Slot(&ICreateErrorInfo::SetDescription), 5);
    EXPECT_EQ(Slot(&ISupportErrorInfo::InterfaceSupportsErrorInfo), 3);

    const std::ptrdiff_t events[] = {
        Slot(&IEvents::raw_Property),     Slot(&IEvents::raw_StartOfInput),
        Slot(&IEvents::raw_EndOfInput),   Slot(&IEvents::raw_StartOfSegment),
        Slot(&IEvents::raw_EndOfSegment), Slot(&IEvents::raw_Text),
        Slot(&IEvents::raw_Tag),
    };
    for (std::ptrdiff_t i = 0; i < 7; ++i)
        EXPECT_EQ(events[i], 7 + i);

    const std::ptrdiff_t tag[] = {
        Slot(&ITag::get_TagText),  Slot(&ITag::put_TagText),  Slot(&ITag::get_TagName),
        Slot(&ITag::put_TagName),  Slot(&ITag::get_EndTag),   Slot(&ITag::put_EndTag),
        Slot(&ITag::get_StartTag), Slot(&ITag::put_StartTag), Slot(&ITag::get_Inline),
        Slot(&ITag::put_Inline),
    };
    for (std::ptrdiff_t i = 0; i < 10; ++i)
        EXPECT_EQ(tag[i], 7 + i);

    EXPECT_EQ(Slot(&IText::put_Text), 8);
    EXPECT_EQ(Slot(&IProperty::get_Value), 9);
    EXPECT_EQ(Slot(&IDocumentInfo::get_SourceFile), 7);
    EXPECT_EQ(Slot(&IDocumentInfo::put_SecondNumber), 14);
    EXPECT_EQ(Slot(&IFilterHost::raw_Progress), 7);
    EXPECT_EQ(Slot(&IFilterHost::raw_Pump), 8);

    struct Case {
        std::ptrdiff_t initialize, work, last;
    };
    const Case components[] = {
        {Slot(&IFileParser::Initialize), Slot(&IFileParser::raw_Parse),
         Slot(&IFileParser::raw_Close)},
        {Slot(&IFileWriter::Initialize), Slot(&IFileWriter::raw_Write),
         Slot(&IFileWriter::raw_Close)},
        {Slot(&IPreviewFileWriter::Initialize), Slot(&IPreviewFileWriter::raw_Write),
         Slot(&IPreviewFileWriter::raw_Close)},
        {Slot(&IFilterComponent::Initialize), Slot(&IFilterComponent::raw_Run),
         Slot(&IFilterComponent::raw_Close)},
        {Slot(&IFileScanner::Initialize), Slot(&IFileScanner::raw_Scan),
         Slot(&IFileScanner::raw_Close)},
    };
    for (const Case& c : components)
        EXPECT_EQ(c.initialize, 3);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(components[i].work, 6);
        EXPECT_EQ(components[i].last, 7);
    }
    EXPECT_EQ(components[4].work, 4);
    EXPECT_EQ(components[4].last, 5);
    EXPECT_EQ(Slot(&IPreviewFileWriter::get_PreviewReady), 9);
    EXPECT_EQ(Slot(&IFileScanner::get_Message), 7);
}

TEST(VtableLayout, InterfacesAddNoDataToObjects) {
    EXPECT_EQ(sizeof(IEvents), sizeof(void*));
    EXPECT_EQ(sizeof(ITag), sizeof(void*));
    EXPECT_EQ(sizeof(IFileScanner), sizeof(void*));
}

} // namespace
