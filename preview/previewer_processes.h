#pragma once
// The previewer processes of the preview writer: the record of the running
// previewers under the current user, closing the last one, and starting the
// previewer program that stands beside the registered module.
#include <string>

#include "platform/win32/types.h"

namespace tervane {

inline constexpr const char* kPreviewRecordKey = "Zelkor_TervanePreviewProcessId";
inline constexpr const char* kPreviewWriterServerKey =
    "CLSID\\{A9F23F59-2DDA-4A05-9BA9-0D6BE568606B}\\InprocServer32";
// Linux's program in the place of TervanePreviewer.exe.
inline constexpr const char* kPreviewerProgram = "TervanePreviewApp/TervanePreviewer";
inline constexpr DWORD kNoPreviewer = 0xFFFFFFFF;

class CPreviewerProcesses {
public:
    // kind: 5 dialog, 4 menu, 16 version info.
    void LaunchPreviewer(const std::u16string& target, DWORD kind, const std::string& identifier);
    void ClosePreviousPreviewers();
    DWORD ReadPreviewerRecord(int isSource);
    void ClosePreviewer(DWORD id);
    void WritePreviewerRecord(int isSource, DWORD id);

    // "s" when the preview is of the source side, else "d".
    const char* SideWord() const { return language == documentNumber ? "s" : "d"; }

    std::u16string path;
    std::u16string previewFile;
    DWORD dual = 0;
    DWORD language = 0;
    DWORD documentNumber = 0;
    // A process number alone may name another process by now: the record
    // also keeps the previewer's start time, read with the number.
    unsigned long long previewStart = 0;
};

// The command line the previewer is started with, as one text.
std::string PreviewerCommandLine(const std::string& path, DWORD kind, const std::string& identifier,
                                 const char* side, bool dual);

} // namespace tervane
