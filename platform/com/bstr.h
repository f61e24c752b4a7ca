#pragma once
// Automation strings: UTF-16 text preceded by its length in bytes (32 bits)
// and followed by a terminating zero unit. A null BSTR is the empty string.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "platform/win32/types.h"

using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;

BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
// Length in bytes; the text is copied as bytes and may be odd in length.
BSTR SysAllocStringByteLen(const char* bytes, UINT length);
// Returns FALSE, leaving *target alone, when memory runs out.
BOOL SysReAllocString(BSTR* target, const OLECHAR* text);
BOOL SysReAllocStringLen(BSTR* target, const OLECHAR* text, UINT length);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);

namespace tervane {

// Owner of one BSTR. Embedded zero units are part of the text.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::u16string_view text);
    Bstr(const Bstr& other);
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(Bstr other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() { SysFreeString(text_); }

    // Takes ownership of a string that a callee allocated.
    static Bstr Attach(BSTR text) {
        Bstr b;
        b.text_ = text;
        return b;
    }
    BSTR Detach() { return std::exchange(text_, nullptr); }
    // For out-parameters: frees the current text first.
    BSTR* Receive() {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

    BSTR get() const { return text_; }
    UINT length() const { return SysStringLen(text_); }
    std::u16string_view view() const { return {text_ ? text_ : u"", length()}; }
    std::u16string str() const { return std::u16string(view()); }

private:
    BSTR text_ = nullptr;
};

// A string refilled for one call after another, such as the argument of a
// setter that copies what it is given: a refill that fits the room it has is
// a copy in place, with no call.
class ReusedBstr {
public:
    ReusedBstr() = default;
    ReusedBstr(const ReusedBstr&) = delete;
    ReusedBstr& operator=(const ReusedBstr&) = delete;
    ~ReusedBstr() { SysFreeString(text_); }

    // Null when memory runs out.
    BSTR Fill(std::u16string_view text) {
        if (text_ == nullptr || text.size() > room_)
            return Regrow(text);
        // The room was counted in units, so the byte length fits its prefix.
        const auto bytes = static_cast<std::uint32_t>(text.size() * sizeof(OLECHAR));
        std::memcpy(reinterpret_cast<char*>(text_) - sizeof bytes, &bytes, sizeof bytes);
        if (bytes != 0)
            std::memcpy(text_, text.data(), bytes);
        text_[text.size()] = u'\0';
        return text_;
    }

private:
    BSTR Regrow(std::u16string_view text);

    BSTR text_ = nullptr;
    std::size_t room_ = 0; // units of text the string can hold
};

} // namespace tervane
