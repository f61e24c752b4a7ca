// Hook for the six label tables (engineer "label"/"grammar" owns this file
// from now on). Return one Resource per table: type u"SSLEXTABLE" or
// u"SSYACCTABLE", name u"STRINGRESPARSE", u"MENURESPARSE" or u"DIALOGRESPARSE",
// language 0 or kEnglishUs, bytes in static storage. If the tables are
// generated at build time, add the generated .cpp to tervane_module_resources
// in frame/CMakeLists.txt and define LabelTables() there instead of here.
#include "frame/module_resources/module_resources.h"

namespace tervane::module_resources {

std::vector<Resource> LabelTables() {
    return {};
}

} // namespace tervane::module_resources
