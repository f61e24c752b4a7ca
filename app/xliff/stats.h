#pragma once
// What a project manager asks first: how much there is to translate and how
// much is done, by kind of resource.
#include <cstdint>
#include <string>
#include <vector>

#include "app/xliff/document.h"

namespace tervane::xliff {

struct Tally {
    std::uint64_t units = 0, words = 0, characters = 0;
};

struct KindStats {
    std::string kind; // strings, dialogs, menus, versions, or the id's first part
    Tally translated, untranslated, locked; // locked: units the translator may not change
};

// Words and characters are the source's, placeholders left out; a word is a
// run of letters and digits. A unit counts as translated when its target has
// text other than its source, or its source with a state past translation.
// Kinds in the order first met, then a total.
std::vector<KindStats> CountDocument(const Document& document);

} // namespace tervane::xliff
