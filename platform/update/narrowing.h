#pragma once
// Sizes and offsets narrowed to the 16- and 32-bit fields of a file, each
// checked where it happens. The plan before the write should make every value
// fit; one that does not is a fault of that plan, kept with the field's name
// so that the write fails as a whole instead of storing a value cut short.
#include <cstdint>
#include <optional>
#include <string>

#include "platform/result.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

class Narrowing {
public:
    explicit Narrowing(std::string where) : where_(std::move(where)) {}

    std::uint16_t U16(std::uint64_t value, const char* field) {
        return static_cast<std::uint16_t>(Check(value, 0xFFFF, field));
    }
    std::uint32_t U32(std::uint64_t value, const char* field) {
        return static_cast<std::uint32_t>(Check(value, 0xFFFFFFFF, field));
    }
    // Below 2^31: an offset that shares its field with a high flag bit.
    std::uint32_t U31(std::uint64_t value, const char* field) {
        return static_cast<std::uint32_t>(Check(value, 0x7FFFFFFF, field));
    }
    // Records a fault found otherwise; only the first is kept.
    void Fault(const std::string& what) {
        if (!fault_)
            fault_ = Error{ERROR_INVALID_DATA, where_ + ": " + what};
    }
    const std::optional<Error>& FirstFault() const { return fault_; }

private:
    std::uint64_t Check(std::uint64_t value, std::uint64_t limit, const char* field) {
        if (value <= limit)
            return value;
        Fault(std::string(field) + " of " + std::to_string(value) + " does not fit in its field");
        return 0;
    }

    std::string where_;
    std::optional<Error> fault_;
};

} // namespace tervane::update
