#include "preview/draw/previewer_run.h"

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <unistd.h>

#include "preview/draw/fit_check.h"
#include "preview/draw/fit_json.h"
#include "preview/draw/picture.h"

namespace tervane::preview {

namespace {

const char* const kMarks[] = {"?fp", "?rd", "?rid"};

bool IsMark(const std::string& word) {
    for (const char* mark : kMarks)
        if (word == mark)
            return true;
    return false;
}

// Where a previewer started by the filter leaves its pictures.
std::filesystem::path CacheFolder() {
    if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache && *cache)
        return std::filesystem::path(cache) / "tervane";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home ? home : "/tmp") / ".cache" / "tervane";
}

struct Module {
    explicit Module(const std::string& path)
        : handle(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {
        if (handle == nullptr)
            throw std::runtime_error("can't open " + path);
    }
    ~Module() { FreeLibrary(handle); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    HMODULE handle;
};

// The menu font of Windows 10, which no menu template names.
const DialogFont kMenuFont{u"Segoe UI", 9, 400, false};

} // namespace

PreviewerOptions ParsePreviewerArguments(const std::vector<std::string>& arguments) {
    PreviewerOptions options;
    std::string* current = nullptr;
    std::vector<std::string> questions;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        if (word == "--png" || word == "--svg") {
            if (i + 1 >= arguments.size())
                throw std::invalid_argument(word + " needs a file");
            (word == "--png" ? options.png : options.svg) = arguments[++i];
            current = nullptr;
        } else if (word == "--fit-json") {
            options.fitJson = true;
            current = nullptr;
        } else if (word == "?fp") {
            current = &options.path;
        } else if (word == "?rd") {
            current = &options.kind;
        } else if (word == "?rid") {
            current = &options.id;
        } else if (word.size() > 1 && word[0] == '?' && !IsMark(word)) {
            questions.push_back(word.substr(1));
            current = nullptr;
        } else if (current == &options.path && !options.path.empty()) {
            options.path += ' ' + word; // a path with blanks comes in words
        } else if (current != nullptr && current->empty()) {
            *current = word;
        } else {
            throw std::invalid_argument("unexpected argument '" + word + "'");
        }
    }
    if (options.path.empty() || options.kind.empty() || options.id.empty())
        throw std::invalid_argument("?fp PATH ?rd KIND ?rid ID are needed");
    if (options.kind != "dialog" && options.kind != "menu")
        throw std::invalid_argument("no preview of a resource of kind '" + options.kind + "'");
    if (!questions.empty())
        options.side = questions[0];
    if (questions.size() > 1)
        options.dualWord = questions[1];
    return options;
}

int RunPreviewer(const PreviewerOptions& options, std::ostream& out, std::ostream& err) {
    try {
        Module module(options.path);
        const ResName name = ResourceNameFromText(options.id);
        std::optional<CTextMeasure> measure;
        DialogScene scene;
        std::vector<MenuNode> bar;
        std::vector<FitFinding> findings;
        Picture picture;
        if (options.kind == "dialog") {
            const DialogSource source = ReadDialogSource(module.handle, name);
            measure.emplace(FontOf(source.header));
            scene = LayOutDialog(source, measure->Units());
            findings = CheckFit(scene, *measure);
            picture = DialogPicture(scene, *measure, findings);
        } else {
            bar = ReadMenu(module.handle, name);
            measure.emplace(kMenuFont);
            picture = MenuPicture(bar, *measure);
        }
        const bool waits = options.png.empty() && options.svg.empty() && !options.fitJson;
        if (waits) {
            std::filesystem::create_directories(CacheFolder());
            const std::string base =
                (CacheFolder() / ("preview-" + (options.side.empty() ? "s" : options.side)))
                    .string();
            WritePng(picture, base + ".png");
            WriteSvg(picture, base + ".svg");
        }
        if (!options.png.empty())
            WritePng(picture, options.png);
        if (!options.svg.empty())
            WriteSvg(picture, options.svg);
        if (options.fitJson)
            WriteFitJson(out, options, scene, FrameOf(scene, *measure), findings);
        if (waits)
            for (;;)
                pause();
        return 0;
    } catch (const std::exception& failure) {
        err << "TervanePreviewer: " << failure.what() << '\n';
        return 1;
    }
}

} // namespace tervane::preview
