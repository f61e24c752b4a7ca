#pragma once
// Reading JSON Lines of flat objects, as the commands write them: each line
// one object whose values are strings, numbers or booleans. Strings come back
// as UTF-16, a \uXXXX escape of a lone surrogate kept as that unit.
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tervane::app {

using JsonValue = std::variant<std::u16string, double, bool>;
// A line holds a handful of members: a list searched in order beats a tree.
using JsonObject = std::vector<std::pair<std::string, JsonValue>>;

// The object of one line, or the reason it is not one.
struct ParsedJsonLine {
    JsonObject object;
    std::string error; // empty when the line was read
};

ParsedJsonLine ParseJsonLine(std::string_view line);

// The member as a string, or null when it is missing or of another type.
const std::u16string* JsonText(const JsonObject& object, const std::string& key);
std::optional<long> JsonNumber(const JsonObject& object, const std::string& key);

} // namespace tervane::app
