#pragma once
// Win32's "name or ordinal" of a resource type or name, as a value rather than
// an integer cast to a pointer. Names are narrow text in the process's
// conversion code page (UTF-8), as the A functions take them.
#include <compare>
#include <string>
#include <string_view>
#include <variant>

#include "platform/win32/types.h"

class ResName {
public:
    ResName() : value_(WORD{0}) {}
    ResName(WORD ordinal) : value_(ordinal) {}
    ResName(int ordinal) : value_(static_cast<WORD>(ordinal)) {}
    explicit ResName(std::string name) : value_(std::move(name)) {}
    ResName(const char* name) : value_(std::string(name)) {}

    // Win32 reads "#123" as the number 123 wherever a name is taken.
    static ResName FromText(std::string_view text);

    bool IsOrdinal() const { return std::holds_alternative<WORD>(value_); }
    WORD Ordinal() const { return IsOrdinal() ? std::get<WORD>(value_) : WORD{0}; }
    const std::string& Name() const;
    // The decimal number or the name, for messages.
    std::string ToString() const;

    bool operator==(const ResName&) const = default;

private:
    std::variant<WORD, std::string> value_;
};

inline ResName MAKEINTRESOURCEA(WORD ordinal) {
    return ResName(ordinal);
}
inline bool IS_INTRESOURCE(const ResName& r) {
    return r.IsOrdinal();
}

inline const ResName RT_CURSOR{WORD{1}};
inline const ResName RT_BITMAP{WORD{2}};
inline const ResName RT_ICON{WORD{3}};
inline const ResName RT_MENU{WORD{4}};
inline const ResName RT_DIALOG{WORD{5}};
inline const ResName RT_STRING{WORD{6}};
inline const ResName RT_RCDATA{WORD{10}};
inline const ResName RT_VERSION{WORD{16}};
inline const ResName RT_DLGINIT{WORD{240}};
