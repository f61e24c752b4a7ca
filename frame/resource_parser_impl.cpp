#include "frame/resource_parser_impl.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "frame/diagnostics/event_logging.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/trace.h"
#include "model/dialog_resource.h"
#include "model/dlginit_resource.h"
#include "model/dlginit_table.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"
#include "platform/com/com_error.h"
#include "platform/diag/failure_place.h"
#include "platform/diag/trace_sink.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/locale_info.h"
#include "platform/win32/last_error.h"
#include "stream/emission_state.h"
#include "stream/output_visitor.h"

namespace tervane {

namespace {

std::string Format(const char* format, long value) {
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

// The multibyte white-space test of the C library, on the bytes of the text.
std::string TrimmedIdentifier(std::string text) {
    text += '\n';
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && std::isspace(static_cast<unsigned char>(text[begin])))
        ++begin;
    while (end > begin && std::isspace(static_cast<unsigned char>(text[end - 1])))
        --end;
    return text.substr(begin, end - begin);
}

// CheckLastError's answer, without building its context text when all is well.
bool Failed(const char* context) {
    return GetLastError() != 0 && CheckLastError(context) != 0;
}

// Puts the file and the resource in front of what the readers said, when the
// resource's extraction fails by a code or by a throw.
class ResourcePlace {
public:
    ResourcePlace(const std::u16string& path, const CResource& resource, WORD type)
        : path_(path), resource_(resource), type_(type) {
        ClearFailurePlace();
    }
    ResourcePlace(const ResourcePlace&) = delete;
    ResourcePlace& operator=(const ResourcePlace&) = delete;
    ~ResourcePlace() {
        if (done_)
            return;
        char language[8];
        std::snprintf(language, sizeof language, "0x%04X", resource_.language);
        PrependFailurePlace("resource type " + std::to_string(type_) + ", name " +
                            resource_.identifierText + ", language " + language);
        PrependFailurePlace(Narrow(path_));
    }
    void Done() { done_ = true; }

private:
    const std::u16string& path_;
    const CResource& resource_;
    WORD type_;
    bool done_ = false;
};

} // namespace

CResourceParserImpl::CResourceParserImpl() {
    EmissionState& state = GetEmissionState();
    state.resourcesVisited = 0;
    state.resourcesToVisit = 0;
    state.ClearGroups();
}

CResourceParserImpl::~CResourceParserImpl() {
    FreeModule();
}

void CResourceParserImpl::FreeModule() {
    if (module_ != nullptr)
        FreeLibrary(module_);
    module_ = nullptr;
    found_.clear();
}

void CResourceParserImpl::SetHost(IFilterHost* host) {
    host_ = ComPtr<IFilterHost>(host);
    progressWanted_ = 1;
}

HRESULT CResourceParserImpl::Load(const char* context) {
    SetLastError(0);
    ClearFailurePlace();
    module_ = LoadLibraryExW(path_.c_str(), nullptr,
                             DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE);
    // The last error decides, not the handle.
    if (CheckLastError(context)) {
        // A file that can't be read at all has nothing to add to its name.
        if (!FailurePlace().empty())
            PrependFailurePlace(Narrow(path_));
        return E_ACCESSDENIED;
    }
    return 0;
}

HRESULT CResourceParserImpl::InitialiseParser(const std::u16string& path) {
    try {
        FreeModule();
        path_ = path;
        Trace("\n\n##########   Forward conversion started     #######\n\n");
        return Load("CResourceParserImpl::InitialiseParser");
    } catch (...) {
        return 1;
    }
}

HRESULT CResourceParserImpl::InitialiseParserSettings(const std::u16string& path) {
    FreeModule();
    path_ = path;
    IsFileExist();
    return Load("CResourceParserImpl::InitialiseParserSettings");
}

void CResourceParserImpl::IsFileExist() {
    std::string narrow = Narrow(path_);
    WIN32_FIND_DATAA found{};
    HANDLE find = FindFirstFileA(narrow.c_str(), &found);
    if (find == INVALID_HANDLE_VALUE) {
        static thread_local std::string message;
        message = "Source file not found, make sure the source file is present in the following "
                  "path.\n('" +
                  narrow + "'.)";
        Trace("Cannot find the file " + narrow + "\n");
        throw IOException(message.c_str(), "CResourceParserImpl", "IsFileExist");
    }
    FindClose(find);
}

int CResourceParserImpl::EnumerateResources() {
    tracing_ = TraceAttached(); // traces are formatted only for a reader
    EnumResourceTypesA(module_, &TypeCallback, reinterpret_cast<LONG_PTR>(this));
    return 0;
}

BOOL CResourceParserImpl::TypeCallback(HMODULE module, const ResName& type, LONG_PTR context) {
    EnumResourceNamesA(module, type, &NameCallback, context);
    return TRUE;
}

BOOL CResourceParserImpl::NameCallback(HMODULE module, const ResName& type, const ResName& name,
                                       LONG_PTR context) {
    EnumResourceLanguagesA(module, type, name, &LanguageCallback, context);
    return TRUE;
}

BOOL CResourceParserImpl::LanguageCallback(HMODULE, const ResName& type, const ResName& name,
                                           WORD language, LONG_PTR context) {
    auto* self = reinterpret_cast<CResourceParserImpl*>(context);
    try {
        self->AddResource(type, name, language);
    } catch (const TervaneFilterException&) {
        throw;
    } catch (...) {
        return FALSE;
    }
    return TRUE;
}

void CResourceParserImpl::AddResource(const ResName& type, const ResName& name, WORD language) {
    if (!type.IsOrdinal())
        return;
    std::unique_ptr<CResource> resource = CreateResource(type.Ordinal());
    if (!resource)
        return;
    resource->language = language;
    resource->codePage = GetCodePage(language);
    resource->name = name;
    resource->identifierText = IdentifierText(name);
    const HRSRC info = FindInfo(*resource);
    resource->size = SizeofResource(module_, info);
    if (type.Ordinal() == kMenuType)
        ReadMenuHeader(*resource, info);
    const long typeNumber = type.Ordinal();
    CResource& added = *resource;
    // Entries stand at the place of their resource; any other place found
    // empty is looked up again when extracted.
    found_.resize(resources_.size());
    found_.push_back({type.Ordinal(), name, language, info});
    resources_.push_back(std::move(resource));
    if (!tracing_)
        return;
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, "Enumerating the resource %ld id = %s language id = %ld\n",
                  typeNumber, added.identifierText.c_str(), static_cast<long>(language));
    Trace(buffer);
}

std::string CResourceParserImpl::IdentifierText(const ResName& name) {
    return TrimmedIdentifier(name.ToString());
}

WORD CResourceParserImpl::GetCodePage(WORD language) {
    char buffer[6] = {};
    if (GetLocaleInfoA(language, LOCALE_IDEFAULTANSICODEPAGE, buffer, sizeof buffer) == 0 &&
        GetLocaleInfoA(language, LOCALE_IDEFAULTCODEPAGE, buffer, sizeof buffer) == 0)
        return 0;
    return static_cast<WORD>(std::atoi(buffer));
}

HRSRC CResourceParserImpl::FindInfo(const CResource& resource) {
    SetLastError(0);
    HRSRC info = FindResourceExA(module_, ResName(GetResourceType(resource)), resource.name,
                                 resource.language);
    static const char* const kContext = "CResourceParserImpl::GetSizeofResource";
    if (Failed(kContext))
        throw TervaneFilterException(kContext);
    return info;
}

DWORD CResourceParserImpl::GetSizeofResource(CResource& resource) {
    return SizeofResource(module_, FindInfo(resource));
}

bool CResourceParserImpl::ReadMenuHeader(CResource& resource) {
    auto& menu = static_cast<CMenuResource&>(resource);
    return ReadMenuHeader(resource,
                          FindResourceExA(module_, ResName(kMenuType), menu.name, menu.language));
}

bool CResourceParserImpl::ReadMenuHeader(CResource& resource, HRSRC info) {
    auto& menu = static_cast<CMenuResource&>(resource);
    static const char* const kContext = "CResourceParserImpl::GetResourceBuffer";
    HGLOBAL loaded = LoadResource(module_, info);
    Failed(kContext);
    const void* data = LockResource(loaded);
    Failed(kContext);
    // Without the bytes there is no header to read; the menu keeps an empty one.
    if (data == nullptr)
        return true;
    ByteReader reader(Bytes(static_cast<const std::uint8_t*>(data), SizeofResource(module_, info)));
    auto version = reader.ReadU16LE();
    if (!version)
        return true;
    if (*version != 1) {
        menu.plainVersion = *version;
        menu.plainHeaderSize = reader.ReadU16LE().value_or(0);
    } else {
        menu.extendedVersion = *version;
        menu.extendedOffset = reader.ReadU16LE().value_or(0);
        menu.extendedHelpId = reader.ReadU32LE().value_or(0);
    }
    return true;
}

WORD CResourceParserImpl::GetResourceType(const CResource& resource) {
    if (dynamic_cast<const CMenuResource*>(&resource))
        return kMenuType;
    if (dynamic_cast<const CDialogResource*>(&resource))
        return kDialogType;
    if (dynamic_cast<const CStringBlockResource*>(&resource))
        return kStringType;
    if (dynamic_cast<const CVersionInfoResource*>(&resource))
        return kVersionType;
    if (dynamic_cast<const CDlgInitResource*>(&resource))
        return kDlgInitType;
    return 0;
}

int CResourceParserImpl::GetResourceBuffer(CResource& resource) {
    SetLastError(0);
    return LoadBuffer(FindResourceExA(module_, ResName(GetResourceType(resource)), resource.name,
                                      resource.language));
}

HRSRC CResourceParserImpl::Remembered(const CResource& resource, std::size_t place,
                                      WORD type) const {
    if (place >= found_.size())
        return nullptr;
    const Found& found = found_[place];
    if (found.type != type || found.language != resource.language || found.name != resource.name)
        return nullptr;
    return found.info;
}

int CResourceParserImpl::GetResourceBuffer(CResource& resource, std::size_t place, WORD type) {
    // The enumeration found it in this module already: the same search gives the same answer.
    if (HRSRC info = Remembered(resource, place, type)) {
        SetLastError(0);
        return LoadBuffer(info);
    }
    return GetResourceBuffer(resource);
}

// Whatever failed since the last error was cleared fails the load.
int CResourceParserImpl::LoadBuffer(HRSRC info) {
    static const char* const kContext = "CResourceParserImpl::GetResourceBuffer";
    resourceInfo_ = info;
    resourceHandle_ = LoadResource(module_, resourceInfo_);
    if (Failed(kContext))
        return 1;
    const void* data = LockResource(resourceHandle_);
    if (Failed(kContext))
        return 1;
    resourceBytes_ = Bytes(static_cast<const std::uint8_t*>(data),
                           data ? SizeofResource(module_, resourceInfo_) : 0);
    return 0;
}

void CResourceParserImpl::ReportProgress() {
    done_ += 1.0;
    if (host_) {
        HRESULT hr = host_->raw_Progress(static_cast<long>(done_ / total_ * 100.0));
        if (FAILED(hr))
            _com_issue_errorex(hr, host_.get(), IFilterHost::iid);
    }
}

HRESULT CResourceParserImpl::ExtractResources(long emit) {
    try {
        Trace("Forward conversion started.....\n");
        const bool tracing = TraceAttached();
        total_ = static_cast<double>(static_cast<unsigned long>(resources_.size()));
        done_ = 0;
        if (resources_.empty())
            return 0;
        CDlgInitTable::GetInstance().Clear();

        // Dialogs read their init data, so all of it comes first.
        long dlgInits = 0;
        for (std::size_t place = resources_.size(); place-- > 0;) {
            CResource& resource = *resources_[place];
            if (GetResourceType(resource) != kDlgInitType)
                continue;
            ++dlgInits;
            if (tracing)
                Trace(Format("Extracting DlgInit resource %ld .....\n", dlgInits));
            ResourcePlace where(path_, resource, kDlgInitType);
            if (GetResourceBuffer(resource, place, kDlgInitType))
                return E_ACCESSDENIED;
            std::unique_ptr<CResourceCommand> command = CreateCommand(kDlgInitType);
            command->Execute(resourceBytes_, &resource);
            where.Done();
            if (progressWanted_)
                ReportProgress();
        }

        EmissionState& state = GetEmissionState();
        state.resourcesVisited = 0;
        state.resourcesToVisit = static_cast<long>(resources_.size()) - dlgInits;
        state.ClearGroups();

        const std::size_t batch = batchSize_ > 0 ? static_cast<std::size_t>(batchSize_) : 1;
        COutputVisitor visitor;
        visitor.SetSink(sink_.get());
        std::vector<CResource*> work;
        std::size_t next = 0;
        while (next < resources_.size()) {
            std::size_t taken = 0;
            while (taken < batch && next < resources_.size()) {
                const std::size_t place = next++;
                CResource& resource = *resources_[place];
                ++taken;
                const WORD type = GetResourceType(resource);
                if (type == kDlgInitType) {
                    work.push_back(&resource);
                    continue;
                }
                ResourcePlace where(path_, resource, type);
                if (GetResourceBuffer(resource, place, type))
                    return E_ACCESSDENIED;
                std::unique_ptr<CResourceCommand> command = CreateCommand(type);
                CResource* result = command->Execute(resourceBytes_, &resource);
                where.Done();
                if (tracing)
                    Trace(Format("Extracting resource %ld .....\n", type));
                work.push_back(result);
                if (progressWanted_)
                    ReportProgress();
            }
            for (CResource* resource : work) {
                if (tracing)
                    Trace(Format("Displaying resource %ld .....\n", GetResourceType(*resource)));
                if (emit) {
                    resource->Accept(visitor);
                    // Emitted for good: only the backward conversion, which
                    // never emits, reads the model after its batch.
                    resource->ReleaseContent();
                }
            }
            work.clear();
        }
        Trace("Extraction has been completed.\n");
        FreeModule();
        Trace("\n\n##########   Forward conversion finished     #######\n\n");
        return 0;
    } catch (const CParserException&) {
        // A resource that can't be read takes every model object with it.
        batchSize_ = 1;
        resources_.clear();
        throw;
    }
}

} // namespace tervane
