#pragma once
// The error carriers of the lexer and parser runtime. Every runtime error is
// thrown as an SSException; the label parse catches it around each parse.
#include <cstdint>
#include <exception>
#include <string>

namespace tervane {

class SSException : public std::exception {
public:
    // Messages longer than 127 characters are cut, as the fixed buffer of the
    // original carrier did.
    SSException(std::int32_t code, const char* message);

    std::int32_t code() const { return code_; }
    const std::string& message() const { return message_; }
    const char* what() const noexcept override { return message_.c_str(); }

private:
    std::int32_t code_;
    std::string message_;
};

class SSExceptionOutOfStorage : public SSException {
public:
    SSExceptionOutOfStorage() : SSException(-1, "SSException0001e: Out of storage") {}
};

// Base of every runtime class: gives it raise().
class SSExceptionPresent {
public:
    [[noreturn]] static void raise(std::int32_t code, const char* message);
    // Composed in a 512-byte buffer; a text that does not fit raises code 46.
    template <typename... Args>
    requires(sizeof...(Args) > 0)
        [[noreturn]] static void raise(std::int32_t code, const char* format, Args... args) {
        raiseFormatted(code, format, args...);
    }
    [[noreturn]] static void raiseFormatted(std::int32_t code, const char* format, ...)
        __attribute__((format(printf, 2, 3)));
};

// Error codes and messages of the runtime.
namespace ss_error {
inline constexpr std::int32_t kInvalidTable = 4;
inline constexpr std::int32_t kInvalidToken = 5;
inline constexpr std::int32_t kInvalidListIndex = 6;
inline constexpr std::int32_t kMissingTableOrConsumer = 7;
inline constexpr std::int32_t kStackFull = 8;
inline constexpr std::int32_t kNoTop = 9;
inline constexpr std::int32_t kPopEmpty = 10;
inline constexpr std::int32_t kInvalidIndex = 11;
inline constexpr std::int32_t kParseFailed = 13;
inline constexpr std::int32_t kReadPastEof = 14;
inline constexpr std::int32_t kNoValidToken = 16;
inline constexpr std::int32_t kErrorTokenEof = 17;
inline constexpr std::int32_t kInvalidGoto = 18;
inline constexpr std::int32_t kInvalidElementIndex = 19;
inline constexpr std::int32_t kMissingTable = 20;
inline constexpr std::int32_t kMissingLex = 21;
inline constexpr std::int32_t kErrorReadingTable = 22;
inline constexpr std::int32_t kSetFull = 23;
inline constexpr std::int32_t kRefCountBelowZero = 28;
inline constexpr std::int32_t kLexResourceNotFound = 36;
inline constexpr std::int32_t kYaccResourceNotFound = 37;
inline constexpr std::int32_t kInvalidKeywordIndex = 44;
inline constexpr std::int32_t kMessageTooLong = 46;
inline constexpr std::int32_t kOutOfStorage = -1;
} // namespace ss_error

} // namespace tervane
