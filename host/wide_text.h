#pragma once
// An immutable wide text, shared by counting: copies share one block, and a
// constant made from a literal shares the literal itself, without a block or
// a count. Reads are those of a std::u16string_view; the text always ends in
// a zero unit. Blocks of short texts come from the block pool, as the pieces
// that hold them do.
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "platform/memory/block_pool.h"

namespace tervane {

class WideText {
public:
    constexpr WideText() noexcept = default;
    // Copies the text into a counted block of its own.
    WideText(std::u16string_view text) { Assign(text); }
    WideText(const std::u16string& text) { Assign(text); }
    WideText(const char16_t* text) { Assign(text); }

    // A text that stands on the literal's storage: for constants only, as
    // the literal must outlive every copy.
    template <std::size_t N>
    static constexpr WideText Constant(const char16_t (&literal)[N]) noexcept {
        WideText text;
        text.data_ = literal;
        text.size_ = static_cast<std::uint32_t>(N - 1);
        return text;
    }

    constexpr WideText(const WideText& other) noexcept
        : data_(other.data_), size_(other.size_), counted_(other.counted_) {
        if (counted_)
            HeaderOf(data_)->refs.fetch_add(1, std::memory_order_relaxed);
    }
    constexpr WideText(WideText&& other) noexcept
        : data_(std::exchange(other.data_, u"")), size_(std::exchange(other.size_, 0)),
          counted_(std::exchange(other.counted_, false)) {}
    constexpr WideText& operator=(WideText other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(counted_, other.counted_);
        return *this;
    }
    constexpr ~WideText() {
        if (counted_)
            Release(data_, size_);
    }

    constexpr operator std::u16string_view() const noexcept { return {data_, size_}; }
    constexpr std::u16string_view view() const noexcept { return {data_, size_}; }
    std::u16string str() const { return std::u16string(data_, size_); }

    constexpr const char16_t* data() const noexcept { return data_; }
    constexpr const char16_t* c_str() const noexcept { return data_; }
    constexpr std::size_t size() const noexcept { return size_; }
    constexpr std::size_t length() const noexcept { return size_; }
    constexpr bool empty() const noexcept { return size_ == 0; }
    constexpr const char16_t* begin() const noexcept { return data_; }
    constexpr const char16_t* end() const noexcept { return data_ + size_; }
    constexpr char16_t operator[](std::size_t at) const noexcept { return data_[at]; }
    constexpr char16_t front() const noexcept { return data_[0]; }
    constexpr char16_t back() const noexcept { return data_[size_ - 1]; }
    constexpr std::size_t find(std::u16string_view word, std::size_t from = 0) const noexcept {
        return view().find(word, from);
    }
    constexpr std::size_t find(char16_t unit, std::size_t from = 0) const noexcept {
        return view().find(unit, from);
    }
    // True when both share one block or one literal.
    constexpr bool SharesWith(const WideText& other) const noexcept {
        return data_ == other.data_ && size_ == other.size_;
    }

    friend constexpr bool operator==(const WideText& a, std::u16string_view b) noexcept {
        return a.view() == b;
    }

private:
    struct Header {
        std::atomic<std::uint32_t> refs;
    };
    // The units follow the header.
    static constexpr std::size_t kUnitsAt = sizeof(Header);
    static_assert(kUnitsAt % alignof(char16_t) == 0);

    static constexpr std::size_t BlockSize(std::size_t size) noexcept {
        return kUnitsAt + (size + 1) * 2;
    }

    static Header* HeaderOf(const char16_t* units) noexcept {
        return reinterpret_cast<Header*>(
            const_cast<char*>(reinterpret_cast<const char*>(units) - kUnitsAt));
    }

    void Assign(std::u16string_view text) {
        if (text.empty())
            return;
        if (text.size() >= UINT32_MAX)
            throw std::length_error("wide text too long");
        char* block = static_cast<char*>(block_pool::Allocate(BlockSize(text.size())));
        new (block) Header{1};
        auto* units = reinterpret_cast<char16_t*>(block + kUnitsAt);
        text.copy(units, text.size());
        units[text.size()] = 0;
        data_ = units;
        size_ = static_cast<std::uint32_t>(text.size());
        counted_ = true;
    }

    static void Release(const char16_t* units, std::size_t size) noexcept {
        Header* header = HeaderOf(units);
        // The last owner needs no atomic write: nobody else can see the block.
        if (header->refs.load(std::memory_order_acquire) == 1 ||
            header->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            header->~Header();
            block_pool::Free(header, BlockSize(size));
        }
    }

    const char16_t* data_ = u"";
    std::uint32_t size_ = 0;
    bool counted_ = false;
};

} // namespace tervane
