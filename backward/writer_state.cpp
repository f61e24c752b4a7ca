#include "backward/writer_state.h"

namespace tervane {

thread_local DWORD g_targetLanguage = 0;
thread_local DWORD g_writerMode = 1;
thread_local std::vector<std::u16string> g_messages;

} // namespace tervane
