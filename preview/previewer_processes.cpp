#include "preview/previewer_processes.h"

#include <cstdio>
#include <filesystem>
#include <vector>

#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/process/processes.h"
#include "platform/registry/registry.h"
#include "platform/win32/handle.h"

namespace tervane {

namespace {

constexpr REGSAM kRecordAccess = 0xF003F;
constexpr REGSAM kCreateAccess = 0x2001F;
constexpr DWORD kPathBufferSize = 32000;

struct SideValues {
    const char* processId;
    const char* filePath;
    const char* start;
};
SideValues ValuesOf(int isSource) {
    return isSource ? SideValues{"SourceProcessId", "SourceFilePath", "SourceProcessStart"}
                    : SideValues{"DestProcessId", "DestFilePath", "DestProcessStart"};
}

void SetDword(HKEY key, const char* name, DWORD value) {
    RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
}

void SetText(HKEY key, const char* name, const std::string& text) {
    RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
}

void SetStart(HKEY key, const char* name, unsigned long long start) {
    RegSetValueExA(key, name, 0, REG_QWORD, reinterpret_cast<const BYTE*>(&start), sizeof start);
}

// Ours is a live TervanePreviewer that started when the record says.
bool IsOurPreviewer(const ProcessIdentity& identity, unsigned long long recordedStart) {
    const std::filesystem::path program(identity.executable);
    return program.filename() == std::filesystem::path(kPreviewerProgram).filename() &&
           program.parent_path().filename() ==
               std::filesystem::path(kPreviewerProgram).parent_path() &&
           recordedStart != 0 && identity.startTime == recordedStart;
}

// The words of a command line without quotes, as the C runtime splits it.
std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words;
    std::size_t start = 0;
    while (start < line.size()) {
        const std::size_t end = line.find(' ', start);
        if (end != start)
            words.push_back(line.substr(start, end - start));
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return words;
}

// The registered module's folder, with the program appended; empty when the
// class is not registered.
std::string FindPreviewer() {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, kPreviewWriterServerKey, 0, KEY_QUERY_VALUE, &key) !=
        ERROR_SUCCESS)
        return {};
    std::vector<BYTE> buffer(kPathBufferSize);
    DWORD size = kPathBufferSize;
    DWORD type = 0;
    const LONG read = RegQueryValueExA(key, nullptr, nullptr, &type, buffer.data(), &size);
    RegCloseKey(key);
    if (read != ERROR_SUCCESS)
        return {};
    std::string module(reinterpret_cast<const char*>(buffer.data()), size);
    module = module.c_str();
    const std::size_t slash = module.rfind('/');
    if (slash == std::string::npos)
        return {};
    return module.substr(0, slash + 1) + kPreviewerProgram;
}

} // namespace

std::string PreviewerCommandLine(const std::string& path, DWORD kind, const std::string& identifier,
                                 const char* side, bool dual) {
    const char* kindWord = kind == 5 ? "dialog" : kind == 4 ? "menu" : kind == 16 ? "version" : "";
    return std::string("TervanePreviewer ?fp ") + path + " ?rd " + kindWord + " ?rid " +
           identifier + " ?" + side + " ?" + (dual ? "dual" : "notdual");
}

void CPreviewerProcesses::LaunchPreviewer(const std::u16string& target, DWORD kind,
                                          const std::string& identifier) {
    const std::string narrowPath = Narrow(target, CP_ACP);
    const std::string line =
        PreviewerCommandLine(narrowPath, kind, identifier, SideWord(), dual == 1);
    const std::string program = FindPreviewer();
    ClosePreviousPreviewers();
    // Without the module's place the program can't be found: nothing starts.
    if (program.empty())
        return;
    const std::optional<pid_t> started = StartDetached(program, Words(line));
    if (!started)
        return;
    WritePreviewerRecord(SideWord()[0] == 's' ? 1 : 0, static_cast<DWORD>(*started));
}

void CPreviewerProcesses::ClosePreviousPreviewers() {
    if (dual == 0) {
        ClosePreviewer(ReadPreviewerRecord(1));
        ClosePreviewer(ReadPreviewerRecord(0));
        return;
    }
    ClosePreviewer(ReadPreviewerRecord(SideWord()[0] == 's' ? 1 : 0));
}

DWORD CPreviewerProcesses::ReadPreviewerRecord(int isSource) {
    const SideValues names = ValuesOf(isSource);
    DWORD id = kNoPreviewer;
    previewStart = 0;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, kRecordAccess, &key) !=
        ERROR_SUCCESS) {
        DWORD disposition = 0;
        if (RegCreateKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, "test", 0, kCreateAccess,
                            nullptr, &key, &disposition) != ERROR_SUCCESS)
            return id;
        SetDword(key, "SourceProcessId", kNoPreviewer);
        SetDword(key, "DestProcessId", kNoPreviewer);
        SetText(key, "SourceFilePath", "");
        SetText(key, "DestFilePath", "");
        RegCloseKey(key);
        return id;
    }
    DWORD size = sizeof id;
    if (RegQueryValueExA(key, names.processId, nullptr, nullptr, reinterpret_cast<BYTE*>(&id),
                         &size) == ERROR_SUCCESS)
        SetDword(key, names.processId, kNoPreviewer);
    unsigned long long start = 0;
    DWORD startSize = sizeof start;
    if (RegQueryValueExA(key, names.start, nullptr, nullptr, reinterpret_cast<BYTE*>(&start),
                         &startSize) == ERROR_SUCCESS) {
        previewStart = start;
        SetStart(key, names.start, 0);
    }
    std::vector<BYTE> buffer(kPathBufferSize);
    DWORD pathSize = kPathBufferSize;
    previewFile.clear();
    if (RegQueryValueExA(key, names.filePath, nullptr, nullptr, buffer.data(), &pathSize) !=
        ERROR_SUCCESS) {
        RegCloseKey(key);
        return id;
    }
    if (pathSize > 0) {
        previewFile = Widen(reinterpret_cast<const char*>(buffer.data()), CP_ACP);
        SetText(key, names.filePath, "");
    }
    RegCloseKey(key);
    return id;
}

void CPreviewerProcesses::ClosePreviewer(DWORD id) {
    // Any id above the largest process number, 0xFFFFFFFF among them, names none.
    std::optional<ProcessHandle> process;
    if (id != kNoPreviewer && id <= 0x3FFFFF)
        process = ProcessHandle::Open(static_cast<pid_t>(id));
    const std::string file = Narrow(previewFile, CP_ACP);
    bool found = false;
    WIN32_FIND_DATAA data{};
    HANDLE find = FindFirstFileA(file.c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        found = true;
        FindClose(find);
    }
    if (process) {
        const std::optional<ProcessIdentity> identity = process->Identity();
        if (identity && IsOurPreviewer(*identity, previewStart))
            process->Terminate();
    }
    if (found)
        DeleteFileA(file.c_str());
}

void CPreviewerProcesses::WritePreviewerRecord(int isSource, DWORD id) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, kRecordAccess, &key) !=
        ERROR_SUCCESS)
        return;
    const SideValues names = ValuesOf(isSource);
    SetDword(key, names.processId, id);
    SetText(key, names.filePath, Narrow(path, CP_ACP));
    const std::optional<ProcessIdentity> identity = IdentityOf(static_cast<pid_t>(id));
    SetStart(key, names.start, identity ? identity->startTime : 0);
    RegCloseKey(key);
}

} // namespace tervane
