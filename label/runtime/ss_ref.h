#pragma once
// Intrusive reference counting of lexemes and stack elements. A new object is
// handed over with count 0 and lives from the first SSRef that takes it.
#include <cstdint>
#include <new>
#include <utility>

#include "label/runtime/ss_exception.h"

namespace tervane {

class SSRefCount {
public:
    SSRefCount() = default;
    SSRefCount(const SSRefCount&) = delete;
    SSRefCount& operator=(const SSRefCount&) = delete;

    virtual void addRef() { ++count_; }
    // Frees the object; the base has nothing to free.
    virtual void destroy() {}
    virtual void release(bool deleteAtZero) {
        if (dropReference() && deleteAtZero)
            destroy();
    }
    virtual ~SSRefCount() = default;

    std::uint32_t refCount() const { return count_; }

protected:
    // One reference less; true when none is left.
    bool dropReference() {
        if (count_ == 0)
            SSExceptionPresent::raise(ss_error::kRefCountBelowZero,
                                      "SSRef0001e: Reference count less than zero");
        return --count_ == 0;
    }

private:
    std::uint32_t count_ = 1;
};

// Makes a counted object and hands it over with count 0; a failed
// allocation raises the runtime's out-of-storage error.
template <typename T, typename... Args> T* SSMakeCounted(Args&&... args) {
    T* object = nullptr;
    try {
        object = new T(std::forward<Args>(args)...);
    } catch (const std::bad_alloc&) {
        throw SSExceptionOutOfStorage();
    }
    object->release(false);
    return object;
}

template <typename T> class SSRef {
public:
    SSRef() = default;
    SSRef(T* object) { assign(object); }
    SSRef(const SSRef& other) { assign(other.object_); }
    SSRef(SSRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    SSRef& operator=(const SSRef& other) {
        assign(other.object_);
        return *this;
    }
    SSRef& operator=(SSRef&& other) noexcept {
        if (this != &other) {
            T* old = std::exchange(object_, std::exchange(other.object_, nullptr));
            if (old)
                old->release(true);
        }
        return *this;
    }
    SSRef& operator=(T* object) {
        assign(object);
        return *this;
    }
    virtual ~SSRef() {
        if (object_)
            object_->release(true);
    }

    T* get() const { return object_; }
    // Lets go of the object without deleting it: it is handed on with the
    // count it had before this holder took it.
    T* detach() {
        T* object = std::exchange(object_, nullptr);
        if (object)
            object->release(false);
        return object;
    }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    // The new object gains its reference before the old one loses its own,
    // so assigning an object to itself keeps it alive.
    void assign(T* object) {
        if (object)
            object->addRef();
        T* old = object_;
        if (old)
            old->release(true);
        object_ = object;
    }

    T* object_ = nullptr;
};

} // namespace tervane
