#pragma once
// The JSON Lines outputs of the commands: one object a line, UTF-8, keys in
// the order given, with the escapes JSON requires and any unpaired UTF-16
// surrogate written as a \uXXXX escape, so that a name no UTF-8 can hold still
// comes through. Every line any command writes is built here.
#include <cstdint>
#include <string>
#include <string_view>

namespace tervane::app {

class JsonLine {
public:
    JsonLine& Text(std::string_view key, std::u16string_view text);
    // Text already in UTF-8.
    JsonLine& Text(std::string_view key, std::string_view utf8);
    JsonLine& Number(std::string_view key, std::int64_t value);
    JsonLine& Bool(std::string_view key, bool value);
    // The object with its line end; the next field starts a new line, in the
    // same room.
    std::string_view Finish();

private:
    void Key(std::string_view key);

    std::string line_;
    bool finished_ = true;
};

} // namespace tervane::app
