#pragma once
// Sending one tag or one text to a sink as the framework expects: a new item
// from its class, filled, handed over, released. A failure loses that one
// event and is reported as error information; it never stops the caller.
#include <string_view>

#include "host/events.h"
#include "host/tag_descriptor.h"

namespace tervane {

HRESULT SendTagEvent(IEvents* sink, const TagDescriptor& tag);
HRESULT SendTextEvent(IEvents* sink, std::u16string_view text);

} // namespace tervane
