#pragma once
// A command's failure, thrown from wherever it is found and reported in one
// place: "tervane COMMAND: SUBJECT: TEXT", then on a line of its own where the
// platform or the model saw it go wrong, when they could tell.
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tervane::app {

class CommandFailure : public std::runtime_error {
public:
    // subject: what failed, usually a file; text: the component's or the
    // system's words, unchanged.
    CommandFailure(std::string subject, const std::string& text, std::string hint = {})
        : std::runtime_error(text), subject_(std::move(subject)), hint_(std::move(hint)) {}

    const std::string& Subject() const { return subject_; }
    // A last line of advice, such as where the system's messages went.
    const std::string& Hint() const { return hint_; }

private:
    std::string subject_;
    std::string hint_;
};

// Writes the failure to standard error for the command of that name.
void ReportFailure(std::string_view command, const CommandFailure& failure);

// The error information a component left on this thread, or else "the WHAT
// failed (0x........)" with the result.
std::string ComponentErrorText(std::int32_t hr, const char* what);

// The system's text for a Win32 error code, with subject in place of %1.
std::string SystemText(unsigned long code, std::string_view subject);

} // namespace tervane::app
