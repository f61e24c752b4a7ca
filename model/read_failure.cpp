#include "model/read_failure.h"

#include <cstdio>
#include <string>

#include "frame/diagnostics/exceptions.h"
#include "frame/resource.h"
#include "platform/diag/failure_place.h"

namespace tervane {

void ThrowCorrupted(std::size_t offset, std::string_view field) {
    char at[32];
    std::snprintf(at, sizeof at, "offset 0x%zX", offset);
    SetFailurePlace(std::string(at) + ", field " + std::string(field));
    throw CParserException(kCorruptedDocumentMessage);
}

} // namespace tervane
