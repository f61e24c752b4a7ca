#pragma once
// The calls into libxml2, which is opened on the first of them.
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlwriter.h>

namespace tervane::xliff {

#define TERVANE_XML_CALLS(X)                                                                       \
    X(xmlBufferContent)                                                                            \
    X(xmlBufferCreate)                                                                             \
    X(xmlBufferFree)                                                                               \
    X(xmlBufferLength)                                                                             \
    X(xmlBufferSetAllocationScheme)                                                                \
    X(xmlDocGetRootElement)                                                                        \
    X(xmlFreeDoc)                                                                                  \
    X(xmlFreeTextWriter)                                                                           \
    X(xmlGetLastError)                                                                             \
    X(xmlGetLineNo)                                                                                \
    X(xmlGetProp)                                                                                  \
    X(xmlNewTextWriterMemory)                                                                      \
    X(xmlNodeGetContent)                                                                           \
    X(xmlReadMemory)                                                                               \
    X(xmlResetLastError)                                                                           \
    X(xmlTextWriterEndDocument)                                                                    \
    X(xmlTextWriterEndElement)                                                                     \
    X(xmlTextWriterFlush)                                                                          \
    X(xmlTextWriterStartDocument)                                                                  \
    X(xmlTextWriterStartElement)                                                                   \
    X(xmlTextWriterStartElementNS)                                                                 \
    X(xmlTextWriterWriteAttribute)                                                                 \
    X(xmlTextWriterWriteString)

struct XmlCalls {
#define TERVANE_XML_MEMBER(name) decltype(&::name) name;
    TERVANE_XML_CALLS(TERVANE_XML_MEMBER)
#undef TERVANE_XML_MEMBER
    // xmlFree is a variable that holds the library's deallocator.
    xmlFreeFunc* freeFunction;

    void Free(void* memory) const {
        (*freeFunction)(memory);
    }
};

// Opens libxml2 on the first call; throws std::runtime_error if it can't.
const XmlCalls& Xml();

} // namespace tervane::xliff
