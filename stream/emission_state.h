#pragma once
// The state that ties the visits of one forward conversion together: which
// group tags are open and how many resources are still to come. One
// conversion runs at a time on a thread.

namespace tervane {

enum GroupIndex {
    kResourcesGroup = 0,
    kMenusGroup,
    kDialogsGroup,
    kStringTableGroup,
    kVersionInfoGroup
};
inline constexpr int kGroupCount = 5;

struct EmissionState {
    long open[kGroupCount] = {};
    long resourcesVisited = 0;
    long resourcesToVisit = 0;

    void ClearGroups() {
        for (long& flag : open)
            flag = 0;
    }
};

EmissionState& GetEmissionState();

} // namespace tervane
