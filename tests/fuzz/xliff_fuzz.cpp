// Random bytes as a bilingual document. What the reader accepts must write
// again and read back to the same units: a document we can take in but not
// give out would strand a translator's work.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "app/xliff/document.h"
#include "app/xliff/xliff_io.h"

namespace {

using namespace tervane::xliff;

// Groups without units are not written again: compare the units only.
std::vector<const Unit*> UnitsOf(const Document& document) {
    std::vector<const Unit*> units;
    for (const Group& group : document.groups)
        for (const Unit& unit : group.units)
            units.push_back(&unit);
    return units;
}

bool SameUnits(const Document& a, const Document& b) {
    const auto left = UnitsOf(a), right = UnitsOf(b);
    if (left.size() != right.size())
        return false;
    for (std::size_t u = 0; u < left.size(); ++u)
        if (left[u]->id != right[u]->id || left[u]->source != right[u]->source ||
            left[u]->target != right[u]->target || left[u]->translate != right[u]->translate)
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Document document;
    try {
        document = ReadXliff(bytes, "fuzz.xlf");
    } catch (const DocumentError&) {
        return 0;
    }
    for (const Group& group : document.groups)
        for (const Unit& unit : group.units) {
            (void)ToEvents(unit.source, true);
            if (unit.target)
                (void)Flatten(*unit.target);
        }
    const std::string written = WriteXliff(document, "fuzz");
    Document again;
    try {
        again = ReadXliff(written, "again.xlf");
    } catch (const DocumentError&) {
        std::abort(); // our own output refused
    }
    if (!SameUnits(document, again))
        std::abort();
    return 0;
}
