#include "scanner/tervane_scanner.h"

#include <cstdio>

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "frame/diagnostics/trace.h"
#include "frame/resource.h"
#include "frame/resource_parser_impl.h"
#include "platform/com/class_objects.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

#define INVALID_FORMAT "The selected file appears to be of an invalid or unsupported format\n"

const char* const kNotEnumerated = INVALID_FORMAT "(Failed to enumerate resource types).";
const char* const kNotFound = INVALID_FORMAT "(Failed to find one or more resource(s)).";
const char* const kNotLoaded = INVALID_FORMAT "(Failed to load one or more resource(s)).";
const char* const kNotLocked = INVALID_FORMAT "(Failed to lock one or more resource(s)).";
const char* const kTwoCodePages =
    INVALID_FORMAT "(The file contains resources with more than one language).";
const char* const kDuplicateId =
    INVALID_FORMAT "(The file contains resources with duplicate resource id).";
const char* const kTruncation =
    INVALID_FORMAT "(Attempt to update resources in target file results in truncation).";

#undef INVALID_FORMAT

bool IsLocalisable(const ResName& type) {
    if (!type.IsOrdinal())
        return false;
    switch (type.Ordinal()) {
    case kMenuType:
    case kDialogType:
    case kStringType:
    case kVersionType:
    case kDlgInitType:
        return true;
    default:
        return false;
    }
}

// Releases the module on every way out of the scan.
class LoadedModule {
public:
    explicit LoadedModule(HMODULE module) : module_(module) {}
    ~LoadedModule() { Release(); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    HMODULE get() const { return module_; }
    void Release() {
        if (module_ != nullptr)
            FreeLibrary(module_);
        module_ = nullptr;
    }

private:
    HMODULE module_;
};

} // namespace

const char* ScanStatusText(std::uint32_t status) {
    switch (status) {
    case 1:
    case 2:
    case 3:
        return kNotEnumerated;
    case kScanNotFound:
        return kNotFound;
    case kScanNotLoaded:
        return kNotLoaded;
    case kScanNotLocked:
        return kNotLocked;
    case kScanTwoCodePages:
        return kTwoCodePages;
    case kScanDuplicateId:
        return kDuplicateId;
    case kScanTruncation:
        return kTruncation;
    default:
        return nullptr;
    }
}

InterfaceMap<TervaneScanner> TervaneScanner::Interfaces() {
    static const InterfaceEntry<TervaneScanner> map[] = {
        Entry<TervaneScanner, ITervaneScanner>(),
        Entry<TervaneScanner, IDispatch, ITervaneScanner>(),
        Entry<TervaneScanner, IFileScanner>(),
    };
    return map;
}

HRESULT TervaneScanner::Initialize(BSTR path, LONG secondArg, short language, LONG) {
    Trace("\n\n\n********** Sniffer Started***************\n\n");
    path_ = path ? std::u16string(path, SysStringLen(path)) : std::u16string();
    secondArg_ = secondArg;
    sourceLanguage_ = language;
    status_ = kScanClean;
    hasTranslatableItems_ = FALSE;
    codePage_ = 0xFFFF;
    char line[64];
    std::snprintf(line, sizeof line, "CodePage of source language is -> %u \n",
                  static_cast<unsigned>(static_cast<unsigned short>(sourceLanguage_)));
    Trace(line);
    return S_OK;
}

HRESULT TervaneScanner::get_Available(VARIANT_BOOL* available) {
    if (available == nullptr)
        return E_POINTER;
    *available = VARIANT_TRUE;
    return S_OK;
}

HRESULT TervaneScanner::get_Message(BSTR* message) {
    if (message != nullptr)
        *message = SysAllocString(u"");
    return S_OK;
}

HRESULT TervaneScanner::raw_Scan(VARIANT_BOOL* result) {
    if (result == nullptr)
        return E_POINTER;
    *result = VARIANT_FALSE;
    HRESULT hr = S_OK;
    // Only the family's failures are the host's to show; anything else is not caught.
    try {
        Scan(result, hr);
    } catch (const TervaneFilterException& error) {
        *result = VARIANT_FALSE;
        return ReportError(CLSID_TervaneScanner, error.message, IFileScanner::iid, E_FAIL);
    }
    return hr;
}

void TervaneScanner::Scan(VARIANT_BOOL* result, HRESULT& hr) {
    const std::string narrowPath = Narrow(path_);
    WIN32_FIND_DATAA found{};
    HANDLE find = FindFirstFileA(narrowPath.c_str(), &found);
    if (find == INVALID_HANDLE_VALUE) {
        Trace("File not found");
        hr = E_ACCESSDENIED;
        return;
    }
    FindClose(find);

    LoadedModule module(LoadLibraryExW(path_.c_str(), nullptr,
                                       DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE));
    if (module.get() == nullptr) {
        Trace("Cannot load the file\n");
        throw TervaneFilterException(kNotLoaded);
    }
    Trace("Enumerating the resources........\n\n");
    if (!EnumResourceTypesA(module.get(), &TypeCallback, reinterpret_cast<LONG_PTR>(this))) {
        module.Release();
        // A file without resources ends here too, with status 0 and no objection.
        if (const char* text = ScanStatusText(status_))
            throw TervaneFilterException(text);
    }
    Trace("\nEnumeration had done.\n\n");
    module.Release();
    *result = hasTranslatableItems_ ? VARIANT_TRUE : VARIANT_FALSE;
    Trace("\n\n*********Sniffer has been finished************\n\n");
}

BOOL TervaneScanner::TypeCallback(HMODULE module, const ResName& type, LONG_PTR context) {
    return EnumResourceNamesA(module, type, &NameCallback, context);
}

BOOL TervaneScanner::NameCallback(HMODULE module, const ResName& type, const ResName& name,
                                  LONG_PTR context) {
    return EnumResourceLanguagesA(module, type, name, &LanguageCallback, context);
}

BOOL TervaneScanner::LanguageCallback(HMODULE module, const ResName& type, const ResName& name,
                                      WORD language, LONG_PTR context) {
    return reinterpret_cast<TervaneScanner*>(context)->CheckResource(module, type, name, language);
}

BOOL TervaneScanner::CheckResource(HMODULE module, const ResName& type, const ResName& name,
                                   WORD language) {
    const bool localisable = IsLocalisable(type);
    if (!hasTranslatableItems_ && localisable) {
        hasTranslatableItems_ = TRUE;
        Trace("Exe having translatable items\n");
    }
    if (localisable) {
        const std::string identifier = CResourceParserImpl::IdentifierText(name);
        const bool first = firstLanguage_ == -1;
        if (first) {
            // The copy goes on every way out, a throw among them.
            struct Removal {
                TervaneScanner& self;
                ~Removal() { self.RemoveTemporary(); }
            } removal{*this};
            if (!UpdateTest(type.Ordinal(), identifier, language)) {
                status_ = kScanTruncation;
                return FALSE;
            }
            RemoveTemporary();
            char line[64];
            std::snprintf(line, sizeof line, "First resource language is %u\n",
                          static_cast<unsigned>(language));
            Trace(line);
            firstLanguage_ = language;
        }
        const WORD codePage = CResourceParserImpl::GetCodePage(language);
        if (!first && codePage_ != codePage) {
            status_ = kScanTwoCodePages;
            return FALSE;
        }
        codePage_ = codePage;
        // No separator and no language: a resource in two languages of one code page is a
        // duplicate.
        std::string key = std::to_string(type.Ordinal()) + identifier;
        if (seenIdentifiers_.count(key) != 0) {
            Trace("The exe having duplicate resource id\n");
            status_ = kScanDuplicateId;
            return FALSE;
        }
        seenIdentifiers_.emplace(std::move(key), identifier);
    }
    HRSRC info = FindResourceExA(module, type, name, language);
    if (info == nullptr) {
        status_ = kScanNotFound;
        return FALSE;
    }
    HGLOBAL loaded = LoadResource(module, info);
    if (loaded == nullptr) {
        status_ = kScanNotLoaded;
        return FALSE;
    }
    if (LockResource(loaded) == nullptr) {
        status_ = kScanNotLocked;
        return FALSE;
    }
    return TRUE;
}

void RegisterTervaneScannerClass() {
    static const bool registered = [] {
        RegisterComponentProgIds();
        IClassFactory* factory = CachedClassFactory<TervaneScanner>();
        DWORD cookie = 0;
        return factory != nullptr && SUCCEEDED(CoRegisterClassObject(CLSID_TervaneScanner, factory,
                                                                     CLSCTX_ALL, 0, &cookie));
    }();
    (void)registered;
}

} // namespace tervane
