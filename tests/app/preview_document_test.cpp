// tervane preview from a bilingual document: a unit's dialog or menu drawn
// through the preview writer, the refusals that start nothing and write
// nothing, and --all's folder of pictures with its index.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "tests/app/preview_run.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

namespace fs = std::filesystem;

std::string Text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The fixture's document for German, made beside a copy of the fixture, with
// the targets given (unit, text).
std::string Document(const std::string& dir, const std::string& fixture,
                     const std::vector<std::pair<std::string, std::string>>& targets = {}) {
    const std::string source = dir + "/" + fixture + ".dll";
    fs::copy_file(FixturePath(fixture, "x64"), source);
    int status = -1;
    const std::string out = RunCommand(std::string(TERVANE_BINARY_DIR) +
                                           "/tervane extract --no-scan --target-lang de-DE '" +
                                           source + "' -o '" + dir + "/doc.xlf' 2>&1",
                                       &status);
    EXPECT_EQ(status, 0) << out;
    std::string xml = Text(dir + "/doc.xlf");
    for (const auto& [unit, target] : targets) {
        const std::size_t at = xml.find("<trans-unit id=\"" + unit + "\"");
        EXPECT_NE(at, std::string::npos) << unit;
        const std::size_t end = xml.find("</source>", at) + std::string("</source>").size();
        xml.insert(end, "<target>" + target + "</target>");
    }
    Write(dir + "/doc.xlf", xml);
    return dir + "/doc.xlf";
}

// What a folder holds but the files named.
std::vector<std::string> Others(const std::string& dir, const std::vector<std::string>& known) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) {
        const std::string name = entry.path().filename();
        if (std::find(known.begin(), known.end(), name) == known.end())
            names.push_back(name);
    }
    return names;
}

TEST(PreviewDocument, UnitsDrawTheirResourceOrAreRefused) {
    struct Case {
        const char* what;
        std::string options;
        int status;
        const char* output;  // in standard output, or in standard error on failure
        const char* picture; // the first bytes of the picture written
    };
    const Case cases[] = {
        {"a dialog's unit", "--unit dlg.102.c1001 -o pic.png", 0,
         "\"kind\":\"dialog\",\"id\":\"102\"", "\x89PNG"},
        {"a menu item's unit", "--unit mnu.101.i40002 -o pic.svg", 0,
         "\"kind\":\"menu\",\"id\":\"101\"", "<?xml"},
        {"the dialog's last unit, before the string table", "--unit dlg.102.c1 -o pic.png", 0,
         "\"kind\":\"dialog\",\"id\":\"102\"", "\x89PNG"},
        {"a pop-up's unit", "--unit mnu.101.p1 -o pic.png", 0, "\"kind\":\"menu\",\"id\":\"101\"",
         "\x89PNG"},
        {"a dialog by its resource", "--resource dialog:102 -o pic.png", 0,
         "\"kind\":\"dialog\",\"id\":\"102\"", "\x89PNG"},
        {"a unit of a string table", "--unit str.1 -o pic.png", 1,
         "Preview is only possible for menus, and dialogs, not for string, and version info "
         "resources.",
         nullptr},
        {"a version value", "--unit ver.1.comments -o pic.png", 1,
         "Preview is only possible for menus, and dialogs", nullptr},
        {"a unit the document lacks", "--unit dlg.102.c999 -o pic.png", 1,
         "/doc.xlf: no unit dlg.102.c999 in the document\n", nullptr},
        {"a picture of no known kind", "--unit dlg.102.c1001 -o pic.gif", 1,
         "name a .png or an .svg file", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string home = TempDir();
        Document(home, "sample", {{"dlg.102.c1001", "Beispiel, Version 1.0"}});
        // An earlier picture: a failure must leave it as it was.
        const std::string picture = home + "/" + c.options.substr(c.options.rfind(' ') + 1);
        Write(picture, "earlier");
        const PreviewRun run = RunPreview(
            home, "'" + home + "/doc.xlf' --keep '" + home + "/shown.dll' " +
                      std::regex_replace(c.options, std::regex("pic\\."), home + "/pic."));
        EXPECT_EQ(run.status, c.status) << run.err;
        const std::string& said = run.status == 0 ? run.out : run.err;
        EXPECT_NE(said.find(c.output), std::string::npos) << said;
        const bool started = EndRecordedPreviewer(home);
        const std::string drawn = Text(picture);
        if (c.status == 0) {
            EXPECT_TRUE(started);
            EXPECT_TRUE(fs::exists(home + "/shown.dll"));
            EXPECT_EQ(drawn.substr(0, std::string(c.picture).size()), c.picture);
            EXPECT_GT(drawn.size(), 500u);
        } else {
            // Refused: nothing started, nothing written, the picture as it was.
            EXPECT_FALSE(started);
            EXPECT_FALSE(fs::exists(home + "/shown.dll"));
            EXPECT_EQ(drawn, "earlier");
        }
        EXPECT_EQ(Others(home, {"sample.dll", "doc.xlf", "shown.dll", "err", "config", "cache",
                                fs::path(picture).filename()}),
                  std::vector<std::string>{});
    }
}

// The fit report goes to standard output: a full one fails the command,
// although the picture was drawn.
TEST(PreviewDocument, FullStandardOutputFails) {
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    const std::string home = TempDir();
    Document(home, "sample", {{"dlg.102.c1001", "Beispiel, Version 1.0"}});
    const PreviewRun run = RunPreview(home, "'" + home + "/doc.xlf' --unit dlg.102.c1001 -o '" +
                                                home + "/pic.png' >/dev/full");
    EndRecordedPreviewer(home);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("standard output: not everything could be written"), std::string::npos)
        << run.err;
}

// The section of the index about one resource.
std::string Section(const std::string& index, const std::string& name) {
    const std::size_t start = index.find("<section id=\"" + name + "\">");
    if (start == std::string::npos)
        return {};
    return index.substr(start, index.find("</section>", start) - start);
}

TEST(PreviewDocument, AllDrawsEveryDialogAndMenuBesideItsSource) {
    const std::string home = TempDir();
    const std::string document = Document(
        home, "preview_dialogs", {{"dlg.100.c2", "Abbrechen und alle Aenderungen verwerfen"}});
    const std::string out = home + "/out";
    PreviewRun run = RunPreview(home, "--all '" + document + "' -o '" + out + "'");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(
        run.out.find("4 of 4 dialogs and menus drawn; texts that do not fit in translation: 5"),
        std::string::npos)
        << run.out;
    EXPECT_EQ(RecordedPreviewer(home), 0u) << "a batch starts no previewer";

    const std::string index = Text(out + "/index.html");
    std::vector<std::string> files = {"index.html"};
    for (const char* name : {"dialog-100", "dialog-101", "dialog-102", "menu-200"}) {
        SCOPED_TRACE(name);
        const std::string section = Section(index, name);
        ASSERT_FALSE(section.empty()) << index;
        for (const char* side : {".source.png", ".translation.png"}) {
            const std::string picture = std::string(name) + side;
            files.push_back(picture);
            EXPECT_NE(section.find("<img src=\"" + picture + "\""), std::string::npos);
            EXPECT_EQ(Text(out + "/" + picture).substr(0, 4), "\x89PNG");
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<std::string> written = Others(out, {});
    std::sort(written.begin(), written.end());
    EXPECT_EQ(written, files) << "pictures and the index, no work files";

    // The translation's long text does not fit; the source's text does.
    const std::string translated = Section(index, "dialog-100");
    const std::size_t translation = translated.find("translation (de-DE)");
    ASSERT_NE(translation, std::string::npos);
    EXPECT_NE(translated.find("Every text fits."), std::string::npos);
    EXPECT_LT(translated.find("Every text fits."), translation);
    const std::string translationSide = translated.substr(translation);
    std::smatch misfit;
    ASSERT_TRUE(std::regex_search(
        translationSide, misfit,
        std::regex("<li class=\"misfit\">button 2: <q>Abbrechen und alle Aenderungen verwerfen</q> "
                   "needs ([0-9]+)&times;[1-9][0-9]* px, room ([0-9]+)&times;[1-9][0-9]* px "
                   "\\(cut at the side\\)</li>")))
        << translated;
    EXPECT_GT(std::stoi(misfit[1]), std::stoi(misfit[2]));
    // The fixture's own German dialog fits on neither side.
    EXPECT_NE(Section(index, "dialog-101")
                  .find("<li class=\"misfit\">button 2: <q>Abbrechen und "
                        "verwerfen</q>"),
              std::string::npos);
    EXPECT_NE(index.find("<td class=\"bad\">1 text does not fit</td>"), std::string::npos);

    // Into an empty folder, the same.
    fs::create_directory(home + "/empty");
    run = RunPreview(home, "--all '" + document + "' -o '" + home + "/empty'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Text(home + "/empty/index.html"), index);

    // An earlier result is replaced whole.
    Write(out + "/dialog-100.source.png", "stale");
    run = RunPreview(home, "--all '" + document + "' -o '" + out + "/'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Text(out + "/dialog-100.source.png").substr(0, 4), "\x89PNG");
    EXPECT_EQ(Text(out + "/index.html"), index);
    EXPECT_EQ(Others(home, {"preview_dialogs.dll", "doc.xlf", "err", "out", "empty", "config"}),
              std::vector<std::string>{})
        << "neither the work folder nor the earlier result left beside";
}

TEST(PreviewDocument, AllOnADocumentWithoutDialogsOrMenusWritesTheIndexAlone) {
    const std::string home = TempDir();
    const std::string document = Document(home, "fwd_strings");
    const PreviewRun run = RunPreview(home, "--all '" + document + "' -o '" + home + "/out'");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Others(home + "/out", {}), std::vector<std::string>{"index.html"});
    EXPECT_NE(Text(home + "/out/index.html").find(": 0 dialogs and menus, 0 of them"),
              std::string::npos);
}

TEST(PreviewDocument, AllLeavesTheFolderAsItWasOnFailure) {
    const std::string home = TempDir();
    const std::string document = Document(home, "preview_dialogs");
    fs::create_directory(home + "/empty");
    fs::create_directory(home + "/mine");
    Write(home + "/mine/notes.txt", "mine");
    Write(home + "/file", "a file");
    fs::create_directory(home + "/pictures");
    Write(home + "/pictures/a.png", "a picture");
    fs::create_directory(home + "/earlier");
    Write(home + "/earlier/index.html", "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n"
                                        "<meta charset=\"utf-8\">\n<meta name=\"generator\" "
                                        "content=\"tervane preview --all\">\n");
    struct Case {
        const char* what;
        std::string options;
        const char* error;
    };
    const Case cases[] = {
        {"a folder of the user's", "-o '" + home + "/mine'", "holds other things"},
        {"pictures without our index", "-o '" + home + "/pictures'", "holds other things"},
        {"a file", "-o '" + home + "/file'", "exists and is not a folder"},
        {"no folder named", "", "--all needs -o DIR"},
        {"a failure once the work folder is made",
         "-o '" + home + "/earlier' --source '" + FixturePath("sample", "x64") + "'",
         "the document was made from another file"},
        {"an empty folder and the wrong source",
         "-o '" + home + "/empty' --source '" + FixturePath("sample", "x64") + "'",
         "the document was made from another file"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const PreviewRun run = RunPreview(home, "--all '" + document + "' " + c.options);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find(c.error), std::string::npos) << run.err;
        EXPECT_EQ(Text(home + "/mine/notes.txt"), "mine");
        EXPECT_EQ(Text(home + "/file"), "a file");
        EXPECT_EQ(Others(home + "/pictures", {}), std::vector<std::string>{"a.png"});
        EXPECT_TRUE(fs::is_empty(home + "/empty"));
        EXPECT_EQ(Others(home + "/earlier", {}), std::vector<std::string>{"index.html"});
        EXPECT_EQ(Others(home, {"preview_dialogs.dll", "doc.xlf", "err", "empty", "mine", "file",
                                "earlier", "pictures", "config", "cache"}),
                  std::vector<std::string>{})
            << "no work folder left";
    }
}

} // namespace
} // namespace tervane::test
