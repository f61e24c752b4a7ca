#include "tests/preview/preview_svg.h"

#include <regex>

#include "tests/support/fixtures.h"

namespace tervane::test {

namespace {

template <typename F> void EachMatch(const std::string& text, const std::regex& pattern, F f) {
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it)
        f(*it);
}

} // namespace

std::vector<SvgRect> SvgRects(const std::string& svg) {
    static const std::regex kPath(
        R"re(<path style="([^"]*)" d="M ([-0-9.]+) ([-0-9.]+) L ([-0-9.]+) ([-0-9.]+) L ([-0-9.]+) ([-0-9.]+) L ([-0-9.]+) ([-0-9.]+) Z[^"]*")re");
    std::vector<SvgRect> rects;
    EachMatch(svg, kPath, [&](const std::smatch& m) {
        double v[8];
        for (int i = 0; i < 8; ++i)
            v[i] = std::stod(m[i + 2].str());
        // Corners in order: top left, top right, bottom right, bottom left.
        if (v[1] == v[3] && v[2] == v[4] && v[5] == v[7] && v[0] == v[6])
            rects.push_back({v[0], v[1], v[4], v[5], m[1].str()});
    });
    return rects;
}

std::vector<SvgGlyph> SvgGlyphs(const std::string& svg) {
    static const std::regex kUse(
        R"re(<use xlink:href="#glyph[^"]*" x="([-0-9.]+)" y="([-0-9.]+)")re");
    std::vector<SvgGlyph> glyphs;
    EachMatch(svg, kUse, [&](const std::smatch& m) {
        glyphs.push_back({std::stod(m[1].str()), std::stod(m[2].str())});
    });
    return glyphs;
}

std::vector<JsonControl> JsonControls(const std::string& json) {
    const std::string controls = json.substr(0, json.find("\"findings\""));
    static const std::regex kControl(
        R"re(\{"id":(\d+),"kind":"[^"]*","rect":\[(-?\d+),(-?\d+),(\d+),(\d+)\],"text":"([^"]*)")re");
    std::vector<JsonControl> out;
    EachMatch(controls, kControl, [&](const std::smatch& m) {
        out.push_back({std::stoi(m[1].str()), std::stoi(m[2].str()), std::stoi(m[3].str()),
                       std::stoi(m[4].str()), std::stoi(m[5].str()), m[6].str()});
    });
    return out;
}

std::vector<JsonFinding> JsonFindings(const std::string& json) {
    const auto start = json.find("\"findings\"");
    if (start == std::string::npos)
        return {};
    static const std::regex kFinding(R"re(\{"id":(\d+),"kind":"[^"]*","problem":"(\w+)")re");
    std::vector<JsonFinding> out;
    EachMatch(json.substr(start), kFinding, [&](const std::smatch& m) {
        out.push_back({std::stoi(m[1].str()), m[2].str()});
    });
    return out;
}

std::pair<int, int> JsonBaseUnits(const std::string& json) {
    static const std::regex kUnits(R"re("baseUnits":\[(\d+),(\d+)\])re");
    std::smatch m;
    if (!std::regex_search(json, m, kUnits))
        return {0, 0};
    return {std::stoi(m[1].str()), std::stoi(m[2].str())};
}

std::string PreviewerPath() {
    return std::string(TERVANE_BINARY_DIR) + "/TervanePreviewApp/TervanePreviewer";
}

std::string RunPreviewer(const std::string& arguments, int* status) {
    return RunCommand("'" + PreviewerPath() + "' " + arguments, status);
}

} // namespace tervane::test
