#pragma once
// The runtime's growing stack and its unsorted set.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "label/runtime/ss_exception.h"

namespace tervane {

// The first Inline slots live in the object itself, so that a stack that
// stays small costs no allocation; only slots below count hold live items.
template <typename T, std::size_t Inline = 0> class SSLifo : public SSExceptionPresent {
public:
    // growth 0 makes a stack of fixed size.
    SSLifo(std::size_t capacity, std::size_t growth) : growth_(growth) {
        if (capacity <= Inline)
            capacity_ = capacity;
        else
            reserve(capacity);
    }
    SSLifo(const SSLifo&) = delete;
    SSLifo& operator=(const SSLifo&) = delete;
    ~SSLifo() {
        while (count_)
            destroyAt(--count_);
        release();
    }

    void push(const T& item) {
        // A copy first: item may live in the slots that a growth moves.
        if (count_ + 1 > capacity_)
            return push(T(item));
        new (items_ + count_) T(item);
        ++count_;
    }
    void push(T&& item) {
        if (count_ + 1 > capacity_) {
            if (growth_ == 0)
                raise(ss_error::kStackFull, "SSLifo0001e: Stack full");
            reserve(capacity_ + growth_);
        }
        new (items_ + count_) T(std::move(item));
        ++count_;
    }
    // push(T(args...)) without the temporary.
    template <typename... Args> void emplace(Args&&... args) {
        if (count_ + 1 > capacity_)
            return push(T(std::forward<Args>(args)...));
        new (items_ + count_) T(std::forward<Args>(args)...);
        ++count_;
    }
    T& top() {
        if (count_ == 0)
            raise(ss_error::kNoTop, "SSLifo0002e: No top, stack empty");
        return items_[count_ - 1];
    }
    // Popped items are destroyed, so that a stack of references lets go at once.
    // Inline, as the parser pops at every reduction.
    [[gnu::always_inline]] void pop(std::size_t n = 1) {
        if (n > count_)
            raise(ss_error::kPopEmpty, "SSLifo0004e: Cannot pop empty stack");
        for (std::size_t i = 0; i < n; ++i)
            destroyAt(--count_);
    }
    // The item i places below the top.
    T& at(std::size_t i) {
        if (i >= count_)
            raise(ss_error::kInvalidIndex, "SSLifo0003e: Invalid index");
        return items_[count_ - 1 - i];
    }

    std::size_t count() const { return count_; }
    std::size_t capacity() const { return capacity_; }
    std::size_t growth() const { return growth_; }

private:
    void reserve(std::size_t capacity) {
        if (capacity > SIZE_MAX / sizeof(T))
            throw SSExceptionOutOfStorage();
        auto* items = static_cast<T*>(::operator new(capacity * sizeof(T), std::nothrow));
        if (!items)
            throw SSExceptionOutOfStorage();
        for (std::size_t i = 0; i < count_; ++i) {
            new (items + i) T(std::move(items_[i]));
            destroyAt(i);
        }
        release();
        items_ = items;
        capacity_ = capacity;
    }
    // The slots hold exactly T: a qualified call skips a virtual destructor's
    // dispatch.
    void destroyAt(std::size_t i) { items_[i].T::~T(); }
    void release() {
        if (items_ != inlineItems())
            ::operator delete(items_);
    }
    T* inlineItems() { return reinterpret_cast<T*>(inline_); }

    std::size_t growth_;
    std::size_t count_ = 0;
    alignas(T) unsigned char inline_[(Inline ? Inline : 1) * sizeof(T)];
    T* items_ = inlineItems();
    std::size_t capacity_ = 0;
};

class SSSetArray : public SSExceptionPresent {
public:
    SSSetArray(std::size_t capacity, std::size_t growth) : growth_(growth), capacity_(capacity) {
        allocate(capacity);
    }

    // A value already present is not added again.
    void add(std::uint32_t value) {
        if (contains(value))
            return;
        if (count_ == capacity_) {
            if (growth_ == 0)
                raise(ss_error::kSetFull, "SSSetArray0001e: Set full");
            allocate(capacity_ + growth_);
            capacity_ += growth_;
        }
        items_[count_++] = value;
    }
    bool contains(std::uint32_t value) const {
        for (std::size_t i = 0; i < count_; ++i)
            if (items_[i] == value)
                return true;
        return false;
    }
    void clear() { count_ = 0; }
    std::size_t count() const { return count_; }
    bool empty() const { return count_ == 0; }

private:
    void allocate(std::size_t capacity) {
        std::unique_ptr<std::uint32_t[]> items;
        try {
            items.reset(new std::uint32_t[capacity]);
        } catch (const std::bad_alloc&) {
            throw SSExceptionOutOfStorage();
        }
        for (std::size_t i = 0; i < count_; ++i)
            items[i] = items_[i];
        items_ = std::move(items);
    }

    std::size_t growth_;
    std::unique_ptr<std::uint32_t[]> items_;
    std::size_t capacity_;
    std::size_t count_ = 0;
};

} // namespace tervane
