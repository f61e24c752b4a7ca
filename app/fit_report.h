#pragma once
// The previewer's fit check (its --fit-json) as the commands show it: the
// controls whose text does not fit, one by one.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tervane::app {

struct Misfit {
    long control = 0;    // the control's identifier
    std::string kind;    // button, static, ...
    std::string problem; // width or lines
    std::string text;    // what does not fit, UTF-8
    long neededWidth = 0, neededHeight = 0;
    long roomWidth = 0, roomHeight = 0;
};

// The findings of one report; none when the text is no report of the
// previewer's (error then says why).
std::optional<std::vector<Misfit>> ReadFitReport(std::string_view json, std::string& error);

} // namespace tervane::app
