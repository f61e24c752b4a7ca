#pragma once
// The previewer program: its command line, as the filter writes it, and its run.
//   TervanePreviewer ?fp PATH ?rd dialog|menu ?rid ID ?s|?d ?dual|?notdual
//                    [--png FILE] [--svg FILE] [--fit-json]
// The path is not quoted: every word between ?fp and ?rd is part of it.
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace tervane::preview {

struct PreviewerOptions {
    std::string path;
    std::string kind;
    std::string id;
    std::string side;     // "s" or "d"
    std::string dualWord; // "dual" or "notdual"
    std::string png;
    std::string svg;
    bool fitJson = false;
};

// Throws std::invalid_argument with the mistake.
PreviewerOptions ParsePreviewerArguments(const std::vector<std::string>& arguments);

// Draws and writes what the options ask; the JSON goes to out. Gives the
// exit status. Without an output asked for, the pictures go to the cache
// folder and the program stays until it is ended, as a window would.
int RunPreviewer(const PreviewerOptions& options, std::ostream& out, std::ostream& err);

} // namespace tervane::preview
