#include "frame/component_ids.h"

#include <mutex>

#include "platform/com/class_objects.h"

namespace tervane {

std::span<const ComponentClass> ComponentClasses() {
    static const ComponentClass classes[] = {
        {u"TervaneParser", CLSID_TervaneParser, u"Zelkor.TervaneParser.1", u"Zelkor.TervaneParser",
         IID_ITervaneParser, 102},
        {u"TervaneWriter", CLSID_TervaneWriter, u"Zelkor.TervaneWriter.1", u"Zelkor.TervaneWriter",
         IID_ITervaneWriter, 103},
        {u"TervanePreviewWriter", CLSID_TervanePreviewWriter, u"Zelkor.TervanePreviewWriter.1",
         u"Zelkor.TervanePreviewWriter", IID_ITervanePreviewWriter, 104},
        {u"TervaneScanner", CLSID_TervaneScanner, u"Zelkor.TervaneScanner.1",
         u"Zelkor.TervaneScanner", IID_ITervaneScanner, 105},
        {u"TervaneInteractiveParser", CLSID_TervaneInteractiveParser,
         u"Zelkor.TervaneInteractiveParser.1", u"Zelkor.TervaneInteractiveParser",
         IID_ITervaneInteractiveParser, 106},
        {u"TervaneVerifier", CLSID_TervaneVerifier, u"TervaneFilter.TervaneVerifier.1",
         u"TervaneFilter.TervaneVerifier", IID_ITervaneVerifier, 107},
    };
    return classes;
}

void RegisterComponentProgIds() {
    static std::once_flag once;
    std::call_once(once, [] {
        for (const ComponentClass& c : ComponentClasses())
            RegisterProgId(c.clsid, c.progId);
    });
}

} // namespace tervane
