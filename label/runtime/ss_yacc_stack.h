#pragma once
// The parser's stack as plain values. An entry refers to a lexeme object or a
// stack element only when one was asked for; the stack counts the entries
// that do, so that popping the others is a subtraction.
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex_token.h"
#include "label/runtime/ss_yacc_element.h"

namespace tervane {

struct SSYaccStackEntry {
    std::uint32_t state = 0; // the parser state entered when it was pushed
    bool holds = false;      // token.object or element is a reference held
    SSLexTokenData token;    // present for a terminal
    SSYaccStackElement* element = nullptr;
};

class SSYaccStack : public SSExceptionPresent {
public:
    SSYaccStack() { grow(); }
    SSYaccStack(const SSYaccStack&) = delete;
    SSYaccStack& operator=(const SSYaccStack&) = delete;
    ~SSYaccStack() { letGo(0); }

    std::size_t count() const { return count_; }

    // A non-terminal's entry.
    [[gnu::always_inline]] void push(std::uint32_t state) {
        SSYaccStackEntry& entry = next();
        entry.state = state;
        entry.holds = false;
        entry.token.present = false;
        entry.token.object = nullptr;
        entry.element = nullptr;
        ++count_;
    }
    // Takes over token's reference and adds one to element, which may be null.
    [[gnu::always_inline]] void push(std::uint32_t state, const SSLexTokenData& token,
                                     SSYaccStackElement* element) {
        SSYaccStackEntry& entry = next();
        entry.state = state;
        entry.token = token;
        entry.element = element;
        if (element)
            element->addRef();
        entry.holds = token.object || element;
        held_ += entry.holds;
        ++count_;
    }
    [[gnu::always_inline]] void pop(std::size_t n = 1) {
        if (n > count_)
            raise(ss_error::kPopEmpty, "SSLifo0004e: Cannot pop empty stack");
        if (held_)
            letGo(count_ - n);
        count_ -= n;
    }
    SSYaccStackEntry& top() {
        if (count_ == 0)
            raise(ss_error::kNoTop, "SSLifo0002e: No top, stack empty");
        return items_[count_ - 1];
    }
    // The entry i places below the top.
    SSYaccStackEntry& at(std::size_t i) {
        if (i >= count_)
            raise(ss_error::kInvalidIndex, "SSLifo0003e: Invalid index");
        return items_[count_ - 1 - i];
    }
    // The entry now holds what was put into its token or element.
    void holding(SSYaccStackEntry& entry) {
        if (!entry.holds && (entry.token.object || entry.element)) {
            entry.holds = true;
            ++held_;
        }
    }

private:
    static constexpr std::size_t kFirst = 16;
    static constexpr std::size_t kGrowth = 64;

    SSYaccStackEntry& next() {
        if (count_ == items_.size())
            grow();
        return items_[count_];
    }
    // Label stacks stay a few entries deep: the first room is small.
    [[gnu::noinline]] void grow() {
        try {
            items_.resize(items_.empty() ? kFirst : items_.size() + kGrowth);
        } catch (const std::bad_alloc&) {
            throw SSExceptionOutOfStorage();
        }
    }
    // Releases what the entries from first up to the top hold.
    [[gnu::noinline]] void letGo(std::size_t first) {
        for (std::size_t i = first; i < count_ && held_; ++i) {
            SSYaccStackEntry& entry = items_[i];
            if (!entry.holds)
                continue;
            entry.holds = false;
            --held_;
            entry.token.drop();
            if (SSYaccStackElement* element = entry.element) {
                entry.element = nullptr;
                element->release(true);
            }
        }
    }

    std::vector<SSYaccStackEntry> items_;
    std::size_t count_ = 0;
    std::size_t held_ = 0;
};

} // namespace tervane
