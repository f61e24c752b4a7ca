#pragma once
// The page of `tervane preview --all`: every dialog and menu of a document,
// the source's picture beside the translation's, with the texts that do not
// fit listed under each.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/fit_report.h"

namespace tervane::app {

// One side of a resource: its picture, or why there is none.
struct PreviewSide {
    std::string picture; // the file's name in the folder; empty when not drawn
    std::string failure;
    std::vector<Misfit> misfits;
};

struct PreviewEntry {
    std::string kind, id; // "dialog" or "menu", and the resource's name
    std::string name;     // the anchor on the page, and what its pictures' names start with
    PreviewSide source, translation;
};

struct PreviewPage {
    std::string document, sourceFile;
    std::string sourceLanguage, targetLanguage;
    std::vector<PreviewEntry> entries;
};

std::string IndexHtml(const PreviewPage& page);

// A name for a resource made of letters, digits, '-' and '_' only, so that
// any identifier gives a safe file name; two may be alike.
std::string SafeName(const std::string& kind, const std::string& id);

// Whether folder is an earlier result: an index of ours and pictures only.
bool IsPreviewFolder(const std::filesystem::path& folder);

} // namespace tervane::app
