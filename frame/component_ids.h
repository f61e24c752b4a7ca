#pragma once
// The identifiers of the module's six classes: the contract with the host.
#include <span>

#include "platform/com/guid.h"

namespace tervane {

inline constexpr CLSID CLSID_TervaneParser = MakeGuid("{F3CC2DB3-29A7-4CC3-82E7-8EAAD9875B2F}");
inline constexpr CLSID CLSID_TervaneWriter = MakeGuid("{758B7A60-23F8-4E7D-9B8E-4E2D4DFA75C3}");
inline constexpr CLSID CLSID_TervanePreviewWriter =
    MakeGuid("{A9F23F59-2DDA-4A05-9BA9-0D6BE568606B}");
inline constexpr CLSID CLSID_TervaneScanner = MakeGuid("{85F9F636-07B6-4FCC-A7F1-2560135377F9}");
inline constexpr CLSID CLSID_TervaneInteractiveParser =
    MakeGuid("{C10218AC-3535-4815-9059-06F6F1CCBEFE}");
inline constexpr CLSID CLSID_TervaneVerifier = MakeGuid("{D6054293-4139-462C-8654-4EE69B00234B}");

// The classes' own dual interfaces, which have no operations.
inline constexpr IID IID_ITervaneParser = MakeGuid("{220504C1-0248-48FE-9DA2-0B1C5731C1E9}");
inline constexpr IID IID_ITervaneWriter = MakeGuid("{16D5F066-FD5A-40F3-BC0D-9B1D47415241}");
inline constexpr IID IID_ITervanePreviewWriter = MakeGuid("{E6E96B73-EF98-48DD-B089-AFA90F3B55E4}");
inline constexpr IID IID_ITervaneScanner = MakeGuid("{670018E0-B94F-4A39-8D34-056EAFC36861}");
inline constexpr IID IID_ITervaneInteractiveParser =
    MakeGuid("{8CE37397-3D9C-406B-9047-0CB9E6469AAF}");
inline constexpr IID IID_ITervaneVerifier = MakeGuid("{A2DF1706-8B25-465C-8965-0561E9959335}");

inline constexpr GUID LIBID_TervaneFilterLib = MakeGuid("{CBFF1EDF-61B7-408F-8C5C-E0EA82826D03}");
inline constexpr GUID APPID_TervaneFilter = MakeGuid("{90B2652A-BC45-4F38-A613-9336EA7D798E}");

struct ComponentClass {
    const char16_t* name;
    const CLSID& clsid;
    const char16_t* progId;
    const char16_t* versionIndependentProgId;
    const IID& ownInterface;
    int scriptResource;
};

std::span<const ComponentClass> ComponentClasses();

// Puts the six classes' versioned ProgIDs into the lookup that error
// information takes its source from. Idempotent.
void RegisterComponentProgIds();

} // namespace tervane
