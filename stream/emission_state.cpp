#include "stream/emission_state.h"

namespace tervane {

EmissionState& GetEmissionState() {
    thread_local EmissionState state;
    return state;
}

} // namespace tervane
