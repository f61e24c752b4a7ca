#include "model/text_checks.h"

#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "platform/locale/code_pages.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {

namespace {

std::string Utf8(std::u16string_view text) {
    return Narrow(text, CP_UTF8);
}

} // namespace

std::string ControlDescription(const std::string& name, const std::string& id) {
    std::string text = "control '" + name + "'";
    if (!id.empty())
        text += " id = '" + id + "'";
    return text;
}

std::string EmptyTextMessage(const char* severity, const TextContext& context,
                             const std::string& idText) {
    return std::string(severity) + ": There is no text between the opening and the closing tag (" +
           context.resourceKind + " resource " + idText + "\n" +
           ControlDescription(context.controlName, context.controlId) + ").\n";
}

void RaiseEmptyText(const TextContext& context, const std::string& idText) {
    std::string message = EmptyTextMessage("Error", context, idText);
    AddConversionMessage(message);
    message += kVerificationTrailer;
    throw CVerificationException(KeepText(message.c_str()), "CUpdateVisitor",
                                 "VerifyTranslatedTextLen");
}

void LimitTextLength(std::u16string& text, std::size_t maximum, const TextContext& context,
                     const char* className, const char* operationName) {
    if (text.size() <= maximum)
        return;
    if (g_writerMode == 0) {
        text.resize(maximum);
        return;
    }
    const std::string resource = context.resourceId.empty()
                                     ? context.resourceKind + " resource"
                                     : context.resourceKind + " id = " + context.resourceId;
    std::string control = " ,control name = '" + context.controlName + "'";
    if (!context.controlId.empty())
        control += " & id = " + context.controlId;
    const std::string message = "Error: Length of translated text is longer than the allowed " +
                                std::to_string(maximum) + " characters (" + resource + control +
                                ").\n" + kVerificationTrailer;
    throw CVerificationException(KeepText(message.c_str()), className, operationName);
}

char16_t UpperCaseUnit(char16_t unit) {
    return pe::UpcaseName(std::u16string_view(&unit, 1))[0];
}

void AddHotkey(HotkeyTable& table, char16_t key, const std::string& description) {
    const std::u16string wide = Widen(description, CP_UTF8);
    auto [place, added] = table.try_emplace(UpperCaseUnit(key), wide);
    if (!added)
        place->second += u"," + wide;
}

void AddShortcut(ShortcutTable& table, const std::u16string& key, const std::string& description) {
    const std::u16string wide = Widen(description, CP_UTF8);
    auto [place, added] = table.try_emplace(key, wide);
    if (!added)
        place->second += u"," + wide;
}

void ReportDuplicateHotkeys(const HotkeyTable& table, const char* kind, const std::string& id) {
    for (const auto& [key, users] : table)
        if (users.find(u',') != std::u16string::npos)
            AddConversionMessage("Alert: Hotkey '" + Utf8(std::u16string_view(&key, 1)) +
                                 "' character has been duplicated(" + kind +
                                 " resource id = " + id + "\n" + Utf8(users) + ").\n");
}

void ReportDuplicateShortcuts(const ShortcutTable& table, const char* kind, const std::string& id) {
    for (const auto& [key, users] : table)
        if (users.find(u',') != std::u16string::npos)
            AddConversionMessage("Alert: Shortcut key '" + Utf8(key) +
                                 "' string has been duplicated(" + kind + " resource id = " + id +
                                 "\n" + Utf8(users) + ").\n");
}

void AlertHotkeyAtEnd(const char* kind, const std::string& id, const std::string& description) {
    AddConversionMessage("Alert: Invalid hotkey character at the end of text(" + std::string(kind) +
                         " resource id = " + id + "\n" + description + ").\n");
}

} // namespace tervane
