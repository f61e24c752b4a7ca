#pragma once
// A value or an error that carries a Win32 code and the context in which it
// happened ("resource directory at 0x3000: entry count runs past the section").
#include <string>
#include <utility>
#include <variant>

#include "platform/win32/types.h"

namespace tervane {

struct Error {
    DWORD code = 0;
    std::string context;

    // Prefixes outer context as the error travels up.
    Error&& With(const std::string& outer) && {
        context = context.empty() ? outer : outer + ": " + context;
        return std::move(*this);
    }
};

template <typename T> class [[nodiscard]] Result {
public:
    Result(T value) : v_(std::move(value)) {}
    Result(Error error) : v_(std::move(error)) {}

    explicit operator bool() const { return v_.index() == 0; }
    T& operator*() { return std::get<0>(v_); }
    const T& operator*() const { return std::get<0>(v_); }
    T* operator->() { return &std::get<0>(v_); }
    const T* operator->() const { return &std::get<0>(v_); }
    const Error& error() const { return std::get<1>(v_); }
    Error& error() { return std::get<1>(v_); }

private:
    std::variant<T, Error> v_;
};

} // namespace tervane
