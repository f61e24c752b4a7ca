#pragma once
// Walks every resource of a module through the Win32 calls the way the
// conversion does (types, names, languages; find, load, lock, size) and
// records what it met.
#include <string>
#include <vector>

#include "platform/win32/last_error.h"
#include "platform/win32/resources.h"

namespace tervane::test {

struct Walk {
    std::vector<std::string> seen; // "type/name/language" in enumeration order
    std::vector<std::string> data; // each resource's bytes as text
    DWORD firstError = 0;          // last error of the first call that failed

    void NoteFailure() {
        if (!firstError)
            firstError = GetLastError() ? GetLastError() : 0xFFFFFFFFu;
    }
    static Walk& Of(LONG_PTR p) { return *reinterpret_cast<Walk*>(p); }
    static BOOL Type(HMODULE m, const ResName& type, LONG_PTR p) {
        if (!EnumResourceNamesA(m, type, &Name, p))
            Of(p).NoteFailure();
        return TRUE;
    }
    static BOOL Name(HMODULE m, const ResName& type, const ResName& name, LONG_PTR p) {
        if (!EnumResourceLanguagesA(m, type, name, &Language, p))
            Of(p).NoteFailure();
        return TRUE;
    }
    static BOOL Language(HMODULE m, const ResName& type, const ResName& name, WORD language,
                         LONG_PTR p) {
        Walk& walk = Of(p);
        walk.seen.push_back(type.ToString() + "/" + name.ToString() + "/" +
                            std::to_string(language));
        HRSRC found = FindResourceExA(m, type, name, language);
        const void* bytes = LockResource(found ? LoadResource(m, found) : nullptr);
        if (!bytes)
            walk.NoteFailure();
        else
            walk.data.emplace_back(static_cast<const char*>(bytes), SizeofResource(m, found));
        return TRUE;
    }
};

inline Walk WalkResources(HMODULE module) {
    Walk walk;
    SetLastError(0);
    if (!EnumResourceTypesA(module, &Walk::Type, reinterpret_cast<LONG_PTR>(&walk)))
        walk.NoteFailure();
    return walk;
}

} // namespace tervane::test
