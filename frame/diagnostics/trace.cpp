#include "frame/diagnostics/trace.h"

#include "platform/diag/trace_sink.h"

namespace tervane {

void Trace(std::string text) {
    WriteTrace(text);
}

} // namespace tervane
