#pragma once
// The scanner: tells the host, before any conversion, whether a file can be
// handled at all. Beyond reading, it rewrites the first localisable resource
// of a copy through the update calls that the backward conversion uses, and
// refuses the file when that changes the copy's size.
#include <cstdint>
#include <map>
#include <string>

#include "frame/component_ids.h"
#include "host/filter_components.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/win32/resources.h"

namespace tervane {

// The class's own dual interface: it has no operations.
struct ITervaneScanner : IDispatch {
    static constexpr IID iid = IID_ITervaneScanner;
};

// The verdicts of the enumeration callbacks.
enum ScanStatus : std::uint32_t {
    kScanClean = 0,
    kScanNotFound = 4,
    kScanNotLoaded = 5,
    kScanNotLocked = 6,
    kScanTwoCodePages = 7,
    kScanDuplicateId = 8,
    kScanTruncation = 10,
};

// The text of the refusal for a status; null for a status that has none (0, 9).
const char* ScanStatusText(std::uint32_t status);

class TervaneScanner : public ComObjectRoot,
                       public DispatchWithoutTypeInfo<ITervaneScanner>,
                       public IFileScanner {
public:
    static InterfaceMap<TervaneScanner> Interfaces();

    HRESULT Initialize(BSTR path, LONG secondArg, short language, LONG fourthArg) override;
    HRESULT raw_Scan(VARIANT_BOOL* result) override;
    HRESULT raw_Close() override { return S_OK; }
    HRESULT get_Available(VARIANT_BOOL* available) override;
    HRESULT get_Message(BSTR* message) override;

    // What the host may show beside the verdict.
    std::uint32_t Status() const { return status_; }
    LONG FirstLanguage() const { return firstLanguage_; }
    WORD CodePage() const { return codePage_; }
    // The copy beside the source, made from the path given to Initialize.
    static std::u16string TemporaryPathFor(std::u16string_view path);

private:
    void Scan(VARIANT_BOOL* result, HRESULT& hr);
    static BOOL TypeCallback(HMODULE module, const ResName& type, LONG_PTR context);
    static BOOL NameCallback(HMODULE module, const ResName& type, const ResName& name,
                             LONG_PTR context);
    static BOOL LanguageCallback(HMODULE module, const ResName& type, const ResName& name,
                                 WORD language, LONG_PTR context);
    BOOL CheckResource(HMODULE module, const ResName& type, const ResName& name, WORD language);

    // The update test on the copy (scanner/update_test.cpp).
    bool UpdateTest(WORD type, const std::string& identifier, WORD language);
    void UpdateTemporary(WORD type, const std::string& identifier, const void* data, DWORD size,
                         WORD language);
    void RemoveTemporary();

    LONG firstLanguage_ = -1;
    std::u16string temporaryPath_;
    std::string resourceCopy_;
    WORD codePage_ = 0xFFFF;
    // One key per localisable resource seen: the type's number and the identifier text.
    std::map<std::string, std::string> seenIdentifiers_;
    std::u16string path_;
    LONG secondArg_ = 0; // kept, not read
    short sourceLanguage_ = 0;
    std::uint32_t status_ = kScanClean;
    BOOL hasTranslatableItems_ = FALSE;
};

// Registers the class object of TervaneScanner with the process, once.
void RegisterTervaneScannerClass();

} // namespace tervane
