#pragma once
// One typed token of a label, with its text in the escaped input form.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tervane {

struct LabelToken {
    std::uint32_t type = 0;
    std::u16string text;

    bool operator==(const LabelToken&) const = default;
};

// The list owns its records, so the caller has nothing to free.
using LabelTokenList = std::vector<LabelToken>;

// A token list for one label after another: clear() keeps the records and
// the room of their texts, so that the next label's tokens are written over
// them instead of being allocated again.
class LabelTokens {
public:
    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    void clear() { count_ = 0; }

    LabelToken& operator[](std::size_t i) { return records_[i]; }
    const LabelToken& operator[](std::size_t i) const { return records_[i]; }
    LabelToken& back() { return records_[count_ - 1]; }
    const LabelToken& back() const { return records_[count_ - 1]; }
    LabelToken* begin() { return records_.data(); }
    LabelToken* end() { return records_.data() + count_; }
    const LabelToken* begin() const { return records_.data(); }
    const LabelToken* end() const { return records_.data() + count_; }
    std::span<const LabelToken> view() const { return {records_.data(), count_}; }

    // A new last record of type 0 with an empty text.
    LabelToken& append() {
        if (count_ == records_.size())
            records_.emplace_back();
        LabelToken& token = records_[count_++];
        token.type = 0;
        token.text.clear();
        return token;
    }

private:
    std::vector<LabelToken> records_;
    std::size_t count_ = 0;
};

namespace label_token {
inline constexpr std::uint32_t kText = 1;
inline constexpr std::uint32_t kSpecial = 2;    // an escape of the String and Dialog kinds
inline constexpr std::uint32_t kMark = 3;       // hotkey mark, menu escape, shortcut separator
inline constexpr std::uint32_t kTab = 5;        // the tab in front of a menu shortcut
inline constexpr std::uint32_t kConversion = 8; // printf-like conversion of a string
} // namespace label_token

// Grammar kinds as the resource model names them.
enum class LabelKind : std::uint16_t { String = 1, Menu = 2, Dialog = 3 };

} // namespace tervane
