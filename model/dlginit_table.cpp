#include "model/dlginit_table.h"

namespace tervane {

class CDlgInitData {};

CDlgInitTable& CDlgInitTable::GetInstance() {
    // One conversion runs at a time on a thread.
    thread_local CDlgInitTable table;
    return table;
}

} // namespace tervane
