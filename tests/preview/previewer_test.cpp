// The previewer run on fixtures of known geometry: the rectangles it draws,
// the hotkeys it underlines and the texts it finds too long, read back from
// its SVG and its JSON.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>

#include "preview/draw/dialog_scene.h"
#include "tests/preview/preview_svg.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

constexpr const char* kOutline = "stroke:rgb(60%,70%,85%)";
constexpr const char* kWindow =
    "stroke-width:1;stroke-linecap:butt;stroke-linejoin:miter;stroke:rgb(0%,47%,84%)";
constexpr const char* kMisfit = "stroke:rgb(100%,0%,0%)";

struct Drawn {
    std::string svg;
    std::string json;
};

Drawn Draw(const std::string& image, const std::string& id) {
    const std::string svg = TempDir() + "/dialog.svg";
    int status = -1;
    Drawn drawn;
    drawn.json = RunPreviewer("'?fp' '" + image + "' '?rd' dialog '?rid' " + id +
                                  " '?d' '?dual' --svg '" + svg + "' --fit-json",
                              &status);
    EXPECT_EQ(status, 0) << drawn.json;
    for (unsigned char c : ReadFile(svg))
        drawn.svg += static_cast<char>(c);
    return drawn;
}

bool Has(const std::string& style, const char* part) {
    return style.find(part) != std::string::npos;
}

// The pixels a one-pixel line on the rectangle's inner edge covers.
struct PixelRect {
    int x, y, width, height;
    bool operator==(const PixelRect&) const = default;
};
PixelRect FromStroke(const SvgRect& r) {
    return {static_cast<int>(std::floor(r.x0)), static_cast<int>(std::floor(r.y0)),
            static_cast<int>(std::lround(r.x1 - r.x0)) + 1,
            static_cast<int>(std::lround(r.y1 - r.y0)) + 1};
}

// Dialog 100 of preview_dialogs.rc: 260 x 150 units, MS Shell Dlg 8.
struct Placed {
    int id, x, y, cx, cy;
};
constexpr Placed kDialog100[] = {
    {1, 200, 7, 50, 14},    {2, 200, 24, 50, 14},  {3, 200, 41, 50, 14},   {10, 7, 7, 110, 50},
    {11, 14, 20, 90, 10},   {12, 14, 34, 90, 10},  {13, 125, 7, 70, 10},   {20, 7, 64, 30, 8},
    {21, 40, 62, 150, 12},  {22, 7, 80, 60, 8},    {23, 70, 80, 60, 8},    {24, 7, 92, 120, 16},
    {30, 140, 80, 110, 40}, {31, 7, 112, 110, 30}, {32, 140, 112, 20, 20}, {33, 170, 112, 60, 8},
};

class PreviewerFixture : public ::testing::TestWithParam<std::string> {};

TEST_P(PreviewerFixture, ControlsStandWhereDialogUnitsPutThem) {
    const Drawn drawn = Draw(FixturePath("preview_dialogs", GetParam()), "100");
    // Tahoma 8 gives Windows these base units; Liberation Sans at 11 pixels too.
    const auto [unitX, unitY] = JsonBaseUnits(drawn.json);
    ASSERT_EQ(unitX, 6);
    ASSERT_EQ(unitY, 13);
    auto px = [&](int units, int base, int divisor) {
        return preview::DialogUnitsToPixels(units, base, divisor);
    };
    const int clientWidth = px(260, unitX, 4), clientHeight = px(150, unitY, 8);

    const std::vector<SvgRect> rects = SvgRects(drawn.svg);
    // The window's frame, one pixel around the client area below the caption.
    auto window = std::find_if(rects.begin(), rects.end(),
                               [](const SvgRect& r) { return Has(r.style, kWindow); });
    ASSERT_NE(window, rects.end());
    const PixelRect frame = FromStroke(*window);
    ASSERT_EQ(frame.width, clientWidth + 2);
    const int originX = frame.x + 1, originY = frame.y + frame.height - 1 - clientHeight;

    std::vector<PixelRect> outlines;
    for (const SvgRect& r : rects)
        if (Has(r.style, kOutline))
            outlines.push_back(FromStroke(r));
    ASSERT_EQ(outlines.size(), std::size(kDialog100));
    for (const Placed& c : kDialog100) {
        const PixelRect expected{originX + px(c.x, unitX, 4), originY + px(c.y, unitY, 8),
                                 px(c.cx, unitX, 4), px(c.cy, unitY, 8)};
        EXPECT_NE(std::find(outlines.begin(), outlines.end(), expected), outlines.end())
            << "control " << c.id << " not at " << expected.x << "," << expected.y << " "
            << expected.width << "x" << expected.height;
    }
}

// Control, and the character under which the underline stands, or -1.
struct Hotkey {
    const char* dialog;
    int id;
    int character;
};
constexpr Hotkey kHotkeys[] = {
    {"100", 1, 0},  // &OK
    {"100", 2, -1}, // Cancel
    {"100", 3, 8},  // Save && E&xit: the doubled mark is no hotkey
    {"100", 10, 0}, {"100", 11, 0},  {"100", 13, 0},
    {"100", 20, 0}, {"100", 33, -1}, // SS_NOPREFIX shows the mark
    {"101", 1, 0},                   // the translation keeps &OK
};

TEST_P(PreviewerFixture, HotkeyMarksAreUnderlined) {
    std::map<std::string, Drawn> drawings;
    for (const Hotkey& hotkey : kHotkeys) {
        if (!drawings.count(hotkey.dialog))
            drawings[hotkey.dialog] =
                Draw(FixturePath("preview_dialogs", GetParam()), hotkey.dialog);
        const Drawn& drawn = drawings[hotkey.dialog];
        const auto controls = JsonControls(drawn.json);
        auto control = std::find_if(controls.begin(), controls.end(),
                                    [&](const JsonControl& c) { return c.id == hotkey.id; });
        ASSERT_NE(control, controls.end()) << hotkey.id;
        auto inside = [&](double x, double y) {
            return x >= control->x && x < control->x + control->width && y >= control->y &&
                   y < control->y + control->height;
        };
        // An underline is a bar of about a pixel, filled, not stroked; it
        // belongs to the smallest control around it (a group box holds others).
        auto owner = [&](double x, double y) {
            const JsonControl* best = nullptr;
            for (const JsonControl& c : controls)
                if (x >= c.x && x < c.x + c.width && y >= c.y && y < c.y + c.height &&
                    (!best || c.width * c.height < best->width * best->height))
                    best = &c;
            return best;
        };
        std::vector<SvgRect> underlines;
        for (const SvgRect& r : SvgRects(drawn.svg))
            if (Has(r.style, "stroke:none") && r.y1 - r.y0 <= 2 && r.x1 > r.x0 &&
                owner(r.x0, r.y0) == &*control)
                underlines.push_back(r);
        SCOPED_TRACE(std::string("dialog ") + hotkey.dialog + " control " +
                     std::to_string(hotkey.id) + " '" + control->text + "'");
        if (hotkey.character < 0) {
            EXPECT_TRUE(underlines.empty());
            continue;
        }
        ASSERT_EQ(underlines.size(), 1u);
        // The glyphs of the text's line, on the baseline just above the bar.
        std::vector<double> row;
        for (const SvgGlyph& g : SvgGlyphs(drawn.svg))
            if (inside(g.x, g.y) && underlines[0].y0 - g.y >= 0 && underlines[0].y0 - g.y < 4)
                row.push_back(g.x);
        std::sort(row.begin(), row.end());
        ASSERT_EQ(row.size(), control->text.size());
        EXPECT_EQ(underlines[0].x0, row[static_cast<std::size_t>(hotkey.character)]);
    }
}

TEST_P(PreviewerFixture, TooLongTranslationsAreFoundAndMarked) {
    struct Case {
        const char* dialog;
        std::map<int, std::string> findings;
    };
    const Case cases[] = {
        {"100", {}},
        {"101", {{2, "width"}, {3, "width"}, {24, "lines"}, {33, "width"}}},
        {"102", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string("dialog ") + c.dialog);
        const Drawn drawn = Draw(FixturePath("preview_dialogs", GetParam()), c.dialog);
        std::map<int, std::string> found;
        for (const JsonFinding& f : JsonFindings(drawn.json))
            found[f.id] = f.problem;
        EXPECT_EQ(found, c.findings);
        // Each finding is outlined in red at its control's rectangle, and nothing else is.
        std::vector<PixelRect> red;
        for (const SvgRect& r : SvgRects(drawn.svg))
            if (Has(r.style, kMisfit))
                red.push_back({static_cast<int>(r.x0) - 1, static_cast<int>(r.y0) - 1,
                               static_cast<int>(r.x1 - r.x0) + 2,
                               static_cast<int>(r.y1 - r.y0) + 2});
        ASSERT_EQ(red.size(), c.findings.size());
        for (const JsonControl& control : JsonControls(drawn.json))
            if (c.findings.count(control.id)) {
                EXPECT_NE(std::find(red.begin(), red.end(),
                                    PixelRect{control.x, control.y, control.width, control.height}),
                          red.end())
                    << control.id;
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Images, PreviewerFixture, ::testing::Values("x64", "x86"));

TEST(Previewer, RefusesWhatItCannotDraw) {
    const std::string image = FixturePath("preview_dialogs", "x64");
    struct Case {
        std::string arguments;
        int status;
    };
    const Case cases[] = {
        {"'?fp' '" + image + "' '?rd' dialog '?rid' 999 --fit-json", 1},
        {"'?fp' '" + image + "' '?rd' menu '?rid' 100 --fit-json", 1},
        {"'?fp' '" + image + "' '?rd' version '?rid' 1 --fit-json", 2},
        {"'?fp' /no/such/file.dll '?rd' dialog '?rid' 100 --fit-json", 1},
        {"'?fp' '" + image + "' '?rd' dialog --fit-json", 2},
    };
    for (const Case& c : cases) {
        int status = -1;
        const std::string out = RunPreviewer(c.arguments + " 2>/dev/null", &status);
        EXPECT_EQ(status, c.status) << c.arguments;
        EXPECT_EQ(out, "") << c.arguments;
    }
}

} // namespace
} // namespace tervane::test
