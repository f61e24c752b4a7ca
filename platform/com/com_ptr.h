#pragma once
// Owner of one counted interface reference.
#include <utility>

#include "platform/com/unknown.h"

namespace tervane {

template <typename T> class ComPtr {
public:
    ComPtr() = default;
    ComPtr(std::nullptr_t) {}
    // Adds a reference: the caller keeps its own.
    explicit ComPtr(T* p) : p_(p) {
        if (p_)
            p_->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.p_) {}
    ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }
    ~ComPtr() { Reset(); }

    // Takes over a reference that the caller already owns.
    static ComPtr Attach(T* p) {
        ComPtr c;
        c.p_ = p;
        return c;
    }
    T* Detach() { return std::exchange(p_, nullptr); }
    void Reset() {
        if (T* p = std::exchange(p_, nullptr))
            p->Release();
    }
    // For out-parameters: releases the current reference first.
    T** Receive() {
        Reset();
        return &p_;
    }
    void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

    T* get() const { return p_; }
    T* operator->() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }

    template <typename U> HRESULT As(ComPtr<U>& out) const {
        if (p_ == nullptr)
            return E_POINTER;
        return p_->QueryInterface(U::iid, out.ReceiveVoid());
    }
    // Returns a new reference in an out-parameter, as COM methods do.
    HRESULT CopyTo(T** out) const {
        if (out == nullptr)
            return E_POINTER;
        *out = p_;
        if (p_)
            p_->AddRef();
        return S_OK;
    }

    friend bool operator==(const ComPtr& a, const ComPtr& b) { return a.p_ == b.p_; }

private:
    T* p_ = nullptr;
};

} // namespace tervane
