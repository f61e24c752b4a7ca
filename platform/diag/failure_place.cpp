#include "platform/diag/failure_place.h"

namespace tervane {

namespace {
thread_local std::string t_place;
} // namespace

const std::string& FailurePlace() {
    return t_place;
}

void SetFailurePlace(std::string place) {
    t_place = std::move(place);
}

void PrependFailurePlace(std::string_view outer) {
    if (outer.empty())
        return;
    if (t_place.empty())
        t_place = outer;
    else
        t_place = std::string(outer) + ": " + t_place;
}

void ClearFailurePlace() {
    t_place.clear();
}

} // namespace tervane
