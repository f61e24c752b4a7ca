// tervane preview on a fixture's document, with a HOME and a registry store of
// the test's own: the whole chain from the events to the started previewer
// and the fit findings of the translated dialog.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/app/preview_run.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

TEST(PreviewCommand, FromTheDocumentToThePreviewer) {
    const std::string source = FixturePath("preview_dialogs", "x64");
    const ExtractRun extract = Extract("--events", source);
    ASSERT_EQ(extract.status, 0) << extract.err;
    struct Case {
        const char* what;
        std::string from, to; // an edit of the document's text
        std::string options;
        int status;
        const char* output; // in standard output, or in standard error on failure
    };
    const Case cases[] = {
        {"the source's texts fit", "", "", "--resource dialog:100", 0, "\"findings\":[]"},
        {"a translation too long for its button", "\"text\": \"Cancel\"",
         "\"text\": \"Abbrechen und alle Aenderungen verwerfen\"", "--resource dialog:100", 0,
         "\"findings\":[{\"id\":2,\"kind\":\"button\",\"problem\":\"width\""},
        {"a menu", "", "", "--resource menu:200", 0, ""},
        {"the cursor outside any resource", "", "", "--cursor 1", 1,
         "Preview is only possible if the cursor is placed within a valid menu or dialog "
         "resource."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string home = TempDir();
        std::string document = extract.out;
        if (!c.from.empty()) {
            const std::size_t at = document.find(c.from);
            ASSERT_NE(at, std::string::npos);
            document.replace(at, c.from.size(), c.to);
        }
        WriteFile(home + "/events.jsonl",
                  std::vector<unsigned char>(document.begin(), document.end()));
        const std::string environment = HomeEnvironment(home);
        const bool draws = c.options.find("--resource") != std::string::npos;
        int status = -1;
        const std::string out =
            RunCommand(environment + TERVANE_BINARY_DIR + "/tervane preview --events '" + home +
                           "/events.jsonl' --source '" + source + "' --lang de-DE " + c.options +
                           " --keep '" + home + "/preview.dll'" +
                           (draws ? " -o '" + home + "/p.png'" : "") + " 2>'" + home + "/err'",
                       &status);
        const auto err = ReadFile(home + "/err");
        const std::string errors(err.begin(), err.end());
        EXPECT_EQ(status, c.status) << errors;
        EXPECT_NE((status == 0 ? out : errors).find(c.output), std::string::npos) << out << errors;
        const unsigned previewer = RecordedPreviewer(home);
        if (c.status == 0) {
            EXPECT_NE(previewer, 0u);
            EXPECT_TRUE(std::filesystem::exists(home + "/preview.dll"));
            EXPECT_GT(std::filesystem::file_size(home + "/p.png"), 1000u);
            if (previewer != 0)
                ::kill(static_cast<pid_t>(previewer), SIGKILL); // ours, started just now
        } else {
            // A refusal writes nothing and starts nothing.
            EXPECT_EQ(previewer, 0u);
            EXPECT_FALSE(std::filesystem::exists(home + "/preview.dll"));
        }
    }
}

} // namespace
} // namespace tervane::test
