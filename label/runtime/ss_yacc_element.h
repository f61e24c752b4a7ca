#pragma once
// The parser's stack elements, and the pool in which a parser keeps the ones
// it has finished with: a label makes a dozen and lets go of them at once, and
// a kept element is handed out again without being built.
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex_lexeme.h"
#include "label/runtime/ss_pool.h"
#include "label/runtime/ss_ref.h"

namespace tervane {

class SSYaccElementPool;

class SSYaccStackElement : public SSRefCount, public SSExceptionPresent {
public:
    SSYaccStackElement() = default;
    void destroy() override { delete this; }
    // Final, so that holders of elements count without a virtual call. An
    // element of a pool goes back to it without one either.
    void addRef() final { SSRefCount::addRef(); }
    void release(bool deleteAtZero) final;
    // Grammars derive elements without fields: all come from one pool.
    static void* operator new(std::size_t size) {
        if (void* block = ss_pool::Allocate(size))
            return block;
        throw std::bad_alloc();
    }
    static void operator delete(void* block, std::size_t size) noexcept {
        ss_pool::Free(block, size);
    }
    ~SSYaccStackElement() override = default;

    std::uint32_t state = 0;   // the parser state entered when it was pushed
    SSRef<SSLexLexeme> lexeme; // empty for a non-terminal

private:
    friend class SSYaccElementPool;
    SSYaccElementPool* home_ = nullptr; // null for an element of no pool
    SSYaccStackElement* nextKept_ = nullptr;
};

// Elements of one type, kept for one parser. The parser and the elements that
// it handed out own the pool together: an element that outlives its parser
// still finds it, and the last of them frees it.
class SSYaccElementPool {
public:
    static SSYaccElementPool* create();
    SSYaccElementPool(const SSYaccElementPool&) = delete;
    SSYaccElementPool& operator=(const SSYaccElementPool&) = delete;

    // A new or kept Element with count 0 and nothing in it. The pool keeps
    // elements of the first type asked for; others come from the heap.
    template <typename Element> SSYaccStackElement* take() {
        static_assert(std::is_base_of_v<SSYaccStackElement, Element>);
        if (kind_ != &kKind<Element>) {
            if (kind_)
                return SSMakeCounted<Element>();
            kind_ = &kKind<Element>;
        }
        if (SSYaccStackElement* element = kept_) {
            kept_ = element->nextKept_;
            --keptCount_;
            return element;
        }
        SSYaccStackElement* element = SSMakeCounted<Element>();
        element->home_ = this;
        ++homed_;
        return element;
    }
    // The parser lets go: kept elements are freed, and so is the pool once no
    // element of it is left.
    void abandon();

    std::size_t keptCount() const { return keptCount_; }

private:
    friend class SSYaccStackElement;
    SSYaccElementPool() = default;
    ~SSYaccElementPool() = default;
    // An element of this pool whose count reached 0.
    void giveBack(SSYaccStackElement* element) {
        element->lexeme = nullptr;
        element->state = 0;
        if (abandoned_ || keptCount_ >= kMaxKept)
            return free(element);
        element->nextKept_ = kept_;
        kept_ = element;
        ++keptCount_;
    }
    void free(SSYaccStackElement* element);

    // More than the deepest label's stack; a damaged table may go beyond.
    static constexpr std::size_t kMaxKept = 256;

    template <typename Element> static constexpr char kKind = 0;

    SSYaccStackElement* kept_ = nullptr;
    std::size_t keptCount_ = 0;
    std::size_t homed_ = 0; // elements of the pool, kept or handed out
    const char* kind_ = nullptr;
    bool abandoned_ = false;
};

inline void SSYaccStackElement::release(bool deleteAtZero) {
    if (dropReference() && deleteAtZero) {
        if (home_)
            home_->giveBack(this);
        else
            destroy();
    }
}

} // namespace tervane
