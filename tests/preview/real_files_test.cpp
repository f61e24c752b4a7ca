// Whole pictures: two kept as golden images, compared within a tolerance that
// a change of font rendering passes and a moved control does not; and every
// dialog and menu of real Windows files drawn without error.
#include <cairo.h>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

#include "platform/win32/resources.h"
#include "tests/preview/preview_svg.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface LoadPng(const std::string& path) {
    return Surface(cairo_image_surface_create_from_png(path.c_str()), &cairo_surface_destroy);
}

// The share of pixels of which a channel differs by more than a quarter.
double DifferentPixels(cairo_surface_t* a, cairo_surface_t* b) {
    const int width = cairo_image_surface_get_width(a), height = cairo_image_surface_get_height(a);
    const unsigned char* pa = cairo_image_surface_get_data(a);
    const unsigned char* pb = cairo_image_surface_get_data(b);
    const int sa = cairo_image_surface_get_stride(a), sb = cairo_image_surface_get_stride(b);
    long different = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                if (std::abs(pa[y * sa + 4 * x + c] - pb[y * sb + 4 * x + c]) > 64) {
                    ++different;
                    break;
                }
    return static_cast<double>(different) / (static_cast<double>(width) * height);
}

TEST(GoldenPictures, MatchWithinTolerance) {
    struct Case {
        const char* golden;
        const char* kind;
        const char* id;
    };
    const Case cases[] = {{"dialog100.png", "dialog", "100"}, {"menu200.png", "menu", "200"}};
    const std::string dir = TempDir();
    for (const Case& c : cases) {
        const std::string png = dir + "/" + c.golden;
        int status = -1;
        RunPreviewer("'?fp' '" + FixturePath("preview_dialogs", "x64") + "' '?rd' " + c.kind +
                         " '?rid' " + c.id + " --png '" + png + "'",
                     &status);
        ASSERT_EQ(status, 0);
        Surface drawn = LoadPng(png);
        Surface golden =
            LoadPng(std::string(TERVANE_SOURCE_DIR) + "/tests/preview/golden/" + c.golden);
        ASSERT_EQ(cairo_surface_status(golden.get()), CAIRO_STATUS_SUCCESS) << c.golden;
        ASSERT_EQ(cairo_image_surface_get_width(drawn.get()),
                  cairo_image_surface_get_width(golden.get()));
        ASSERT_EQ(cairo_image_surface_get_height(drawn.get()),
                  cairo_image_surface_get_height(golden.get()));
        EXPECT_LT(DifferentPixels(drawn.get(), golden.get()), 0.005) << c.golden;
    }
}

// Every dialog and menu of the file, by number or name.
std::vector<std::pair<std::string, std::string>> Previewable(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> found;
    HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (module == nullptr)
        return found;
    for (WORD type : {WORD{4}, WORD{5}}) {
        std::pair<std::vector<std::pair<std::string, std::string>>*, const char*> context{
            &found, type == 4 ? "menu" : "dialog"};
        EnumResourceNamesA(
            module, ResName(type),
            [](HMODULE, const ResName&, const ResName& name, LONG_PTR param) -> BOOL {
                auto* c = reinterpret_cast<decltype(context)*>(param);
                c->first->emplace_back(c->second, name.ToString());
                return TRUE;
            },
            reinterpret_cast<LONG_PTR>(&context));
    }
    FreeLibrary(module);
    return found;
}

TEST(WineFiles, EveryDialogAndMenuDraws) {
    const std::string wine = test::WineDir() + "/";
    const char* files[] = {"notepad.exe", "comdlg32.dll"};
    if (!std::filesystem::exists(wine + files[0]))
        GTEST_SKIP() << "wine64 is not installed";
    const std::string dir = TempDir();
    std::size_t drawn = 0;
    for (const char* file : files) {
        const auto resources = Previewable(wine + file);
        EXPECT_FALSE(resources.empty()) << file;
        for (const auto& [kind, id] : resources) {
            const std::string png = dir + "/" + file + "." + kind + "." + id + ".png";
            int status = -1;
            const std::string out =
                RunPreviewer("'?fp' '" + wine + file + "' '?rd' " + kind + " '?rid' '" + id +
                                 "' --png '" + png + "' --fit-json",
                             &status);
            EXPECT_EQ(status, 0) << file << " " << kind << " " << id;
            EXPECT_GT(std::filesystem::file_size(png), 1000u) << png;
            if (kind == "dialog") {
                EXPECT_NE(out.find("\"baseUnits\":["), std::string::npos);
            }
            ++drawn;
        }
    }
    EXPECT_GT(drawn, 10u);
}

} // namespace
} // namespace tervane::test
