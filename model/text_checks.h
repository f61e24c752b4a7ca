#pragma once
// The checks of a translated text on its way back into a resource, shared by
// the update visitor and the dialogs: the empty text, the length limit, and
// the tables of hotkeys and shortcuts that report clashes as Alerts.
#include <cstddef>
#include <map>
#include <string>

namespace tervane {

// The limits of the translated texts, in UTF-16 units.
inline constexpr std::size_t kStringTextLimit = 4096;
inline constexpr std::size_t kVersionTextLimit = 300;
inline constexpr std::size_t kMenuTextLimit = 256;
inline constexpr std::size_t kDialogTextLimit = 256;
inline constexpr std::size_t kListItemTextLimit = 32767;

// Where a text stands, for the messages about it.
struct TextContext {
    std::string resourceKind;
    std::string resourceId;
    std::string controlName;
    std::string controlId;
};

// "control 'NAME'", with " id = 'ID'" behind it when there is an id.
std::string ControlDescription(const std::string& name, const std::string& id);

// The text of an empty translation: "Error: ..." or "Alert: ...". idText
// follows the resource kind as it stands.
std::string EmptyTextMessage(const char* severity, const TextContext& context,
                             const std::string& idText);
// Adds the Error to g_messages and raises it, with the trailer, as a
// CVerificationException of the update visitor.
[[noreturn]] void RaiseEmptyText(const TextContext& context, const std::string& idText);

// A text over maximum is cut to it in a preview; in a final conversion it
// raises a CVerificationException with the given class and operation words.
void LimitTextLength(std::u16string& text, std::size_t maximum, const TextContext& context,
                     const char* className, const char* operationName);

// Hotkeys of one menu level or one dialog, by upper-case character, and
// shortcuts of one menu, by their text: each with the controls that use it,
// joined by ",".
using HotkeyTable = std::map<char16_t, std::u16string>;
using ShortcutTable = std::map<std::u16string, std::u16string>;

char16_t UpperCaseUnit(char16_t unit);
void AddHotkey(HotkeyTable& table, char16_t key, const std::string& description);
void AddShortcut(ShortcutTable& table, const std::u16string& key, const std::string& description);
// One Alert for each key used more than once.
void ReportDuplicateHotkeys(const HotkeyTable& table, const char* kind, const std::string& id);
void ReportDuplicateShortcuts(const ShortcutTable& table, const char* kind, const std::string& id);
// "Invalid hotkey character at the end of text" for the control described.
void AlertHotkeyAtEnd(const char* kind, const std::string& id, const std::string& description);

} // namespace tervane
