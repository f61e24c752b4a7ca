#pragma once
// The one bounds-checked reader of untrusted bytes. Every read either succeeds
// whole or fails and consumes nothing; endianness is in the method's name.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace tervane {

using Bytes = std::span<const std::uint8_t>;

// True when [offset, offset + length) lies within size; written in the
// subtraction form so that no sum can wrap.
constexpr bool InBounds(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
    return offset <= size && length <= size - offset;
}

class ByteReader {
public:
    explicit ByteReader(Bytes data) : data_(data) {}

    std::size_t Offset() const { return offset_; }
    std::size_t Remaining() const { return data_.size() - offset_; }
    std::size_t Size() const { return data_.size(); }
    bool AtEnd() const { return offset_ == data_.size(); }

    bool Seek(std::size_t offset) {
        if (offset > data_.size())
            return false;
        offset_ = offset;
        return true;
    }
    bool Skip(std::size_t count) {
        if (count > Remaining())
            return false;
        offset_ += count;
        return true;
    }
    // Moves to the next multiple of alignment, counted from the start of the data.
    bool AlignTo(std::size_t alignment) {
        std::size_t pad = (alignment - offset_ % alignment) % alignment;
        return Skip(pad);
    }

    std::optional<std::uint8_t> ReadU8() { return ReadLE<std::uint8_t>(); }
    std::optional<std::uint16_t> ReadU16LE() { return ReadLE<std::uint16_t>(); }
    std::optional<std::uint32_t> ReadU32LE() { return ReadLE<std::uint32_t>(); }
    std::optional<std::uint64_t> ReadU64LE() { return ReadLE<std::uint64_t>(); }

    std::optional<Bytes> ReadBytes(std::size_t count) {
        if (count > Remaining())
            return std::nullopt;
        Bytes out = data_.subspan(offset_, count);
        offset_ += count;
        return out;
    }

    // A sub-reader over [offset, offset + length) of the same data.
    std::optional<ByteReader> Slice(std::size_t offset, std::size_t length) const {
        if (!InBounds(offset, length, data_.size()))
            return std::nullopt;
        return ByteReader(data_.subspan(offset, length));
    }

    Bytes Data() const { return data_; }

private:
    template <typename T> std::optional<T> ReadLE() {
        if (sizeof(T) > Remaining())
            return std::nullopt;
        T value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i)
            value |= static_cast<T>(static_cast<T>(data_[offset_ + i]) << (8 * i));
        offset_ += sizeof(T);
        return value;
    }

    Bytes data_;
    std::size_t offset_ = 0;
};

// Little-endian loads and stores at a checked position, for writers that
// back-patch lengths.
inline std::uint16_t LoadU16LE(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}
inline std::uint32_t LoadU32LE(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
           (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}
inline void StoreU16LE(std::uint8_t* p, std::uint16_t v) {
    p[0] = static_cast<std::uint8_t>(v);
    p[1] = static_cast<std::uint8_t>(v >> 8);
}
inline void StoreU32LE(std::uint8_t* p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<std::uint8_t>(v >> (8 * i));
}

} // namespace tervane
