#include "frame/conversion_state.h"

#include "platform/locale/code_pages.h"

namespace tervane {

thread_local DWORD g_targetLanguage = 0;
thread_local DWORD g_writerMode = 1;
thread_local std::vector<std::u16string> g_messages;

void AddConversionMessage(const std::string& text) {
    g_messages.push_back(Widen(text));
}

} // namespace tervane
