#include "app/xliff/xml_calls.h"

#include "app/xliff/shared_library.h"

namespace tervane::xliff {

namespace {

XmlCalls Load() {
    static const SharedLibrary library("libxml2.so.2");
    XmlCalls calls{};
#define TERVANE_XML_RESOLVE(name) calls.name = library.Symbol<decltype(calls.name)>(#name);
    TERVANE_XML_CALLS(TERVANE_XML_RESOLVE)
#undef TERVANE_XML_RESOLVE
    calls.freeFunction = library.Symbol<decltype(calls.freeFunction)>("xmlFree");
    return calls;
}

} // namespace

const XmlCalls& Xml() {
    static const XmlCalls calls = Load();
    return calls;
}

} // namespace tervane::xliff
