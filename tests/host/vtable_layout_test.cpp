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
    // The last operation of each interface, and those that break its pattern.
    const std::pair<std::ptrdiff_t, std::ptrdiff_t> slots[] = {
        {Slot(&IUnknown::Release), 2},
        {Slot(&IDispatch::Invoke), 6},
        {Slot(&IClassFactory::LockServer), 4},
        {Slot(&IErrorInfo::GetHelpContext), 7},
        {Slot(&ICreateErrorInfo::SetDescription), 5},
        {Slot(&ISupportErrorInfo::InterfaceSupportsErrorInfo), 3},
        {Slot(&IText::put_Text), 8},
        {Slot(&IProperty::get_Value), 9},
        {Slot(&IDocumentInfo::put_SecondNumber), 14},
        {Slot(&IFilterHost::raw_Pump), 8},
        {Slot(&IFileParser::raw_Close), 7},
        {Slot(&IFileWriter::raw_Close), 7},
        {Slot(&IPreviewFileWriter::get_PreviewReady), 9},
        {Slot(&IFilterComponent::raw_Close), 7},
        {Slot(&IFileScanner::raw_Scan), 4},
        {Slot(&IFileScanner::raw_Close), 5},
        {Slot(&IFileScanner::get_Message), 7},
    };
    for (std::size_t i = 0; i < std::size(slots); ++i)
        EXPECT_EQ(slots[i].first, slots[i].second) << "row " << i;
    // Events and tags: every operation in declaration order from slot 7.
    const std::ptrdiff_t runs[] = {
        Slot(&IEvents::raw_Property),     Slot(&IEvents::raw_StartOfInput),
        Slot(&IEvents::raw_EndOfInput),   Slot(&IEvents::raw_StartOfSegment),
        Slot(&IEvents::raw_EndOfSegment), Slot(&IEvents::raw_Text),
        Slot(&IEvents::raw_Tag),          Slot(&ITag::get_TagText),
        Slot(&ITag::put_TagText),         Slot(&ITag::get_TagName),
        Slot(&ITag::put_TagName),         Slot(&ITag::get_EndTag),
        Slot(&ITag::put_EndTag),          Slot(&ITag::get_StartTag),
        Slot(&ITag::put_StartTag),        Slot(&ITag::get_Inline),
        Slot(&ITag::put_Inline),
    };
    for (std::size_t i = 0; i < std::size(runs); ++i)
        EXPECT_EQ(runs[i], 7 + static_cast<std::ptrdiff_t>(i < 7 ? i : i - 7)) << "run " << i;
    EXPECT_EQ(sizeof(IEvents), sizeof(void*)) << "interfaces add no data to objects";
    EXPECT_EQ(sizeof(ITag), sizeof(void*));
}

} // namespace
