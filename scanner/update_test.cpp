// The scanner's one real test: the first localisable resource of a copy is
// taken out and put back through the resource update calls, and the copy's
// size must not change.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/diagnostics/trace.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"
#include "scanner/tervane_scanner.h"

namespace tervane {

namespace {

// A number when it is empty or holds neither a letter nor an underscore:
// "12-3" is the number 12, "1A" a name.
ResName UpdateName(const std::string& identifier) {
    for (char c : identifier)
        if (std::isalpha(static_cast<unsigned char>(c)) || c == '_')
            return ResName(identifier);
    return ResName(static_cast<WORD>(std::atoi(identifier.c_str())));
}

// The size as the C runtime sees it; -1 when the file can't be opened.
long FileSize(const std::u16string& path) {
    FILE* file = _wfopen(path.c_str(), u"rb");
    if (file == nullptr)
        return -1;
    std::fseek(file, 0, SEEK_END);
    long size = std::ftell(file);
    std::fclose(file);
    return size;
}

class Module {
public:
    explicit Module(HMODULE module) : module_(module) {}
    ~Module() {
        if (module_ != nullptr)
            FreeLibrary(module_);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    HMODULE get() const { return module_; }

private:
    HMODULE module_;
};

} // namespace

std::u16string TervaneScanner::TemporaryPathFor(std::u16string_view path) {
    // The last four characters go, but never more than the file's own name,
    // so that the copy stays in the source's folder.
    const std::size_t slash = path.find_last_of(u'/');
    const std::size_t name = slash == std::u16string_view::npos ? 0 : slash + 1;
    const std::size_t cut = std::min<std::size_t>(4, path.size() - name);
    return std::u16string(path.substr(0, path.size() - cut)) + u"_Sniffer.exe";
}

bool TervaneScanner::UpdateTest(WORD type, const std::string& identifier, WORD language) {
    temporaryPath_ = TemporaryPathFor(path_);
    const std::string narrowTemporary = Narrow(temporaryPath_);
    if (!CopyFileA(Narrow(path_).c_str(), narrowTemporary.c_str(), FALSE))
        return false;
    Trace("Temproary exe " + narrowTemporary + " created.\n");
    const long before = FileSize(temporaryPath_);

    const ResName name = UpdateName(identifier);
    {
        Module module(LoadLibraryExA(narrowTemporary.c_str(), nullptr,
                                     DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE));
        if (module.get() == nullptr)
            return false;
        HRSRC info = FindResourceExA(module.get(), ResName(type), name, language);
        if (info == nullptr)
            return false;
        HGLOBAL loaded = LoadResource(module.get(), info);
        if (loaded == nullptr)
            return false;
        const void* data = LockResource(loaded);
        if (data == nullptr)
            return false;
        const DWORD size = SizeofResource(module.get(), info);
        resourceCopy_.assign(static_cast<const char*>(data), size);
    }

    UpdateTemporary(type, identifier, nullptr, 0, language);
    // Windows needed a pause here before the file could be opened again; nothing on Linux does.
    UpdateTemporary(type, identifier, resourceCopy_.data(),
                    static_cast<DWORD>(resourceCopy_.size()), language);
    std::string().swap(resourceCopy_);
    return before == FileSize(temporaryPath_);
}

void TervaneScanner::UpdateTemporary(WORD type, const std::string& identifier, const void* data,
                                     DWORD size, WORD language) {
    SetLastError(0);
    bool madeWritable = false;
    if (_waccess(temporaryPath_.c_str(), 2) != 0) {
        _wchmod(temporaryPath_.c_str(), _S_IWRITE);
        madeWritable = true;
    }
    HANDLE update = BeginUpdateResourceA(Narrow(temporaryPath_).c_str(), FALSE);
    if (update == nullptr) {
        Trace("\n---------------Cannot update this resource(BeginUpdateResource)."
              "----------------\n\n");
        return;
    }
    if (!UpdateResourceA(update, ResName(type), UpdateName(identifier), language, data, size)) {
        Trace("\n---------------Cannot update this resource(UpdateResource).----------------\n\n");
        // The transaction is dropped rather than left open.
        EndUpdateResourceA(update, TRUE);
        return;
    }
    SetLastError(0);
    if (!EndUpdateResourceA(update, FALSE)) {
        Trace("\n---------------Cannot update this resource(EndUpdateResource)."
              "----------------\n\n");
        return;
    }
    if (madeWritable)
        _wchmod(temporaryPath_.c_str(), _S_IREAD);
}

void TervaneScanner::RemoveTemporary() {
    if (temporaryPath_.empty())
        return;
    const std::string narrow = Narrow(temporaryPath_);
    WIN32_FIND_DATAA found{};
    HANDLE find = FindFirstFileA(narrow.c_str(), &found);
    if (find == INVALID_HANDLE_VALUE)
        return;
    if (_waccess(temporaryPath_.c_str(), 2) != 0)
        _wchmod(temporaryPath_.c_str(), _S_IWRITE);
    DeleteFileA(narrow.c_str());
    FindClose(find);
}

} // namespace tervane
