#pragma once
// Where the last failure of this thread happened, as the layer that saw it can
// tell: the file, the resource (type, name, language), the offset and the field.
// The fixed texts of the event log and the error information stay as they are;
// this travels beside them, for the host to print on a line of its own.
#include <string>
#include <string_view>

namespace tervane {

const std::string& FailurePlace();
// Replaces the record; an empty text clears it.
void SetFailurePlace(std::string place);
// Puts what an outer layer knows in front of what an inner one said, so that
// the record reads from the file down to the field.
void PrependFailurePlace(std::string_view outer);
void ClearFailurePlace();

} // namespace tervane
