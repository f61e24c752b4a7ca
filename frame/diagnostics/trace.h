#pragma once
// The trace channel: progress texts of every component, fully formatted by
// the caller. Discarded unless the platform's trace sink has a file.
#include <string>

namespace tervane {

void Trace(std::string text);

} // namespace tervane
