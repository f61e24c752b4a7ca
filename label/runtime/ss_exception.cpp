#include "label/runtime/ss_exception.h"

#include <cstdarg>
#include <cstdio>

namespace tervane {

namespace {
constexpr std::size_t kMaxMessage = 127;
constexpr std::size_t kFormatBuffer = 512;
} // namespace

SSException::SSException(std::int32_t code, const char* message) : code_(code) {
    std::string text = message ? message : "";
    if (text.size() > kMaxMessage)
        text.resize(kMaxMessage);
    message_ = std::move(text);
}

void SSExceptionPresent::raise(std::int32_t code, const char* message) {
    throw SSException(code, message);
}

void SSExceptionPresent::raiseFormatted(std::int32_t code, const char* format, ...) {
    char buffer[kFormatBuffer];
    va_list args;
    va_start(args, format);
    int written = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    if (written < 0 || static_cast<std::size_t>(written) >= kFormatBuffer)
        throw SSException(ss_error::kMessageTooLong, "SSException0002e: sprintf msg too long");
    throw SSException(code, buffer);
}

} // namespace tervane
