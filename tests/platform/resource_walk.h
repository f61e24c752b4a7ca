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
};

inline void NoteFailure(Walk& walk) {
    if (!walk.firstError)
        walk.firstError = GetLastError() ? GetLastError() : 0xFFFFFFFFu;
}

inline Walk WalkResources(HMODULE module) {
    struct Context {
        HMODULE module;
        Walk walk;
        ResName type, name;
    } context{module, {}, {}, {}};
    SetLastError(0);
    BOOL ok = EnumResourceTypesA(
        module,
        [](HMODULE m, const ResName& type, LONG_PTR p) -> BOOL {
            auto& c = *reinterpret_cast<Context*>(p);
            c.type = type;
            BOOL names = EnumResourceNamesA(
                m, type,
                [](HMODULE m, const ResName& type, const ResName& name, LONG_PTR p) -> BOOL {
                    auto& c = *reinterpret_cast<Context*>(p);
                    BOOL languages = EnumResourceLanguagesA(
                        m, type, name,
                        [](HMODULE m, const ResName& type, const ResName& name, WORD language,
                           LONG_PTR p) -> BOOL {
                            auto& c = *reinterpret_cast<Context*>(p);
                            c.walk.seen.push_back(type.ToString() + "/" + name.ToString() + "/" +
                                                  std::to_string(language));
                            HRSRC found = FindResourceExA(m, type, name, language);
                            HGLOBAL loaded = found ? LoadResource(m, found) : nullptr;
                            const void* bytes = LockResource(loaded);
                            if (!bytes) {
                                NoteFailure(c.walk);
                                return TRUE;
                            }
                            c.walk.data.emplace_back(static_cast<const char*>(bytes),
                                                     SizeofResource(m, found));
                            return TRUE;
                        },
                        p);
                    if (!languages)
                        NoteFailure(c.walk);
                    return TRUE;
                },
                p);
            if (!names)
                NoteFailure(c.walk);
            return TRUE;
        },
        reinterpret_cast<LONG_PTR>(&context));
    if (!ok)
        NoteFailure(context.walk);
    return context.walk;
}

} // namespace tervane::test
