// Random bytes as the JSON Lines event stream that merge reads: every line
// is read or refused with a reason, never more.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "app/json_reader.h"
#include "app/replay_host.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const tervane::app::ParsedJsonLine line = tervane::app::ParseJsonLine(rest.substr(0, end));
        if (line.error.empty())
            (void)tervane::app::JsonNumber(line.object, "start");
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    std::string error;
    (void)tervane::app::ReadReplayEvents(bytes, error);
    return 0;
}
