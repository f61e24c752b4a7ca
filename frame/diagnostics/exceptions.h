#pragma once
// Failures that carry a text for the user. The texts are not owned: each is a
// literal or a copy that lives for the rest of the process, so copying an
// exception copies the pointers.
#include <exception>

#include "platform/win32/types.h"

namespace tervane {

class TervaneFilterException : public std::exception {
public:
    explicit TervaneFilterException(const char* message) : message(message) {}
    TervaneFilterException(const char* message, const char* className, const char* methodName)
        : message(message), className(className), methodName(methodName) {}
    ~TervaneFilterException() override = default;
    const char* what() const noexcept override { return message; }

    const char* message;
    LONG code = -1;
    // Where it was raised; read by nobody.
    const char* className = nullptr;
    const char* methodName = nullptr;
};

class IOException : public TervaneFilterException {
public:
    using TervaneFilterException::TervaneFilterException;
};

class CVerificationException : public TervaneFilterException {
public:
    using TervaneFilterException::TervaneFilterException;
};

// A resource that can't be read. what() stays the one of std::exception:
// catch sites read message.
class CParserException : public std::exception {
public:
    explicit CParserException(const char* message) : message(message) {}
    const char* message;
};

// A lasting copy of a formatted text, for the exceptions above.
const char* KeepText(const char* text);

} // namespace tervane
