#pragma once
// What a test reads back from the previewer: the rectangles, glyphs and thin
// filled bars of its SVG, and the controls and findings of its JSON.
#include <string>
#include <vector>

namespace tervane::test {

struct SvgRect {
    double x0, y0, x1, y1;
    std::string style;
};
struct SvgGlyph {
    double x, y;
};

// Closed four-corner paths, axis-aligned: strokes and fills alike.
std::vector<SvgRect> SvgRects(const std::string& svg);
std::vector<SvgGlyph> SvgGlyphs(const std::string& svg);

struct JsonControl {
    int id = 0;
    int x = 0, y = 0, width = 0, height = 0;
    std::string text;
};
struct JsonFinding {
    int id = 0;
    std::string problem;
};
std::vector<JsonControl> JsonControls(const std::string& json);
std::vector<JsonFinding> JsonFindings(const std::string& json);
std::pair<int, int> JsonBaseUnits(const std::string& json);

// The previewer program of the build.
std::string PreviewerPath();
// Runs it with the words given (each quoted for the shell); gives stdout.
std::string RunPreviewer(const std::string& arguments, int* status);

} // namespace tervane::test
