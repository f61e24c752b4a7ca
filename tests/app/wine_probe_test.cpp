// A file translated by tervane merge, as a Windows program sees it: under
// Wine, LoadStringW, LoadMenuW with GetMenuStringW and the loaded dialog
// template give the new texts, under the new language and under it alone.
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"

#ifndef TERVANE_WINE_PROBE
#define TERVANE_WINE_PROBE ""
#endif

namespace tervane {
namespace {

std::string Wine() {
    for (const char* wine : {"/usr/lib/wine/wine64", "/usr/bin/wine64"})
        if (!test::RunCommand(std::string("test -x ") + wine + " && echo yes").empty())
            return wine;
    return {};
}

// The text of one event of the document, and what the translator made of it.
struct Change {
    const char* from;
    const char* to;
};
const Change kChanges[] = {
    {"File", "Fichier"},
    {"Open...", "Ouvrir…"},
    {"Recent", "Récents"},
    {"Clear the list", "Vider la liste"},
    {"E", "Q"}, // the hotkey mark moves with the text
    {"xit", "uitter"},
    {"About the sample", "À propos de l’exemple"},
    {"Sample version 1.0", "Exemple, version 1.0"},
    {"Remember the choice", "Mémoriser le choix"},
    {"OK", "D’accord"},
    {"&Open the file", "&Ouvrir le fichier"},
    {"Save ", "Enregistrer "},
    {" before closing?", " avant de fermer ?"},
    {"Ready", "Prêt"},
};

// What the program prints, in its order: each resource's languages, then its texts.
const char* const kSeen[] = {
    "language string 1: 040C",
    "string 1: &Ouvrir le fichier",
    "string 2: Enregistrer %s avant de fermer ?",
    "language string 2: 040C",
    "string 17: Prêt",
    "language menu 101: 040C",
    "menu 101.0: &Fichier",
    "menu 101.0.0: &Ouvrir…\tCtrl+O",
    "menu 101.0.2: &Récents",
    "menu 101.0.2.0: &Vider la liste",
    "menu 101.0.3: Q&uitter",
    "language dialog 102: 040C",
    "dialog 102 caption: À propos de l’exemple",
    "dialog 102 control 1001: Exemple, version 1.0",
    "dialog 102 control 1002: &Mémoriser le choix",
    "dialog 102 control 1: D’accord",
};

TEST(WineProbe, TranslatedTextsThroughTheWin32Calls) {
    const std::string probe = TERVANE_WINE_PROBE;
    const std::string wine = Wine();
    if (probe.empty() || wine.empty())
        GTEST_SKIP() << "needs wine64 and MinGW's C compiler";

    const std::string dir = test::TempDir();
    std::string events = test::Extract("--events", test::FixturePath("wine_probe", "x64")).out;
    for (const Change& change : kChanges) {
        const std::string from = std::string("\"text\": \"") + change.from + "\"}";
        const std::size_t at = events.find(from);
        ASSERT_NE(at, std::string::npos) << change.from;
        ASSERT_EQ(events.find(from, at + 1), std::string::npos) << change.from;
        events.replace(at, from.size(), std::string("\"text\": \"") + change.to + "\"}");
    }
    test::WriteFile(dir + "/fr.jsonl", {events.begin(), events.end()});
    int status = -1;
    test::RunCommand(std::string(TERVANE_BINARY_DIR) + "/tervane merge --events " + dir +
                         "/fr.jsonl --source " + test::FixturePath("wine_probe", "x64") +
                         " --lang fr-FR -o " + dir + "/fr.dll",
                     &status);
    ASSERT_EQ(status, 0);

    // A prefix of its own, made on the first run; nothing but the program's lines.
    const std::string seen =
        test::RunCommand("cd " + dir + " && WINEPREFIX=" + dir + "/prefix WINEDEBUG=-all " +
                             "WINEDLLOVERRIDES=mscoree,mshtml= timeout 300 " + wine + " " + probe +
                             " fr.dll 2>/dev/null",
                         &status);
    ASSERT_EQ(status, 0) << seen;
    EXPECT_EQ(test::Lines(seen), std::vector<std::string>(std::begin(kSeen), std::end(kSeen)));
}

} // namespace
} // namespace tervane
