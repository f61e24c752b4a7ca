// The files of a run: the work copy beside the source, its move onto the
// target at the very end, and its removal on every failure.
#include <cstdlib>

#include "backward/resource_transaction.h"
#include "backward/resource_updater.h"
#include "backward/text_format.h"
#include "frame/diagnostics/event_logging.h"
#include "frame/diagnostics/trace.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/win32/last_error.h"

namespace tervane {

namespace {

// From the last dot of the file's name on. Taken from the name alone: on this
// platform folders often hold dots, which would make an extension of a path.
std::u16string Extension(const std::u16string& path) {
    const std::size_t slash = path.rfind(u'/');
    const std::size_t dot = path.rfind(u'.');
    if (dot == std::u16string::npos || (slash != std::u16string::npos && dot < slash))
        return {};
    return path.substr(dot);
}

// The target takes the source's extension unless it already ends in one of
// four characters that is it.
void AppendExtension(std::u16string& target, const std::u16string& extension) {
    const std::size_t found = target.find(extension);
    if (target.size() < 4 || found != target.size() - 4)
        target += extension;
}

} // namespace

int CResourceUpdater::CreateTemporaryFile() {
    const std::size_t slash = sourcePath.rfind(u'/');
    const std::size_t split = slash == std::u16string::npos ? 0 : slash + 1;
    workPath = sourcePath.substr(0, split) + Widen(FormatText("~zelkor.update.%d.", std::rand())) +
               sourcePath.substr(split);
    const std::string from = Narrow(sourcePath), to = Narrow(workPath);
    if (!CopyFileA(from.c_str(), to.c_str(), FALSE))
        return static_cast<int>(GetLastError());
    Trace(FormatText("Temprory exe %s created.\n", to.c_str()));
    return 0;
}

int CResourceUpdater::CreateDestinationFile() {
    AppendExtension(targetPath, Extension(sourcePath));
    const std::string from = Narrow(sourcePath), to = Narrow(targetPath);
    workPath = targetPath;
    if (!CopyFileA(from.c_str(), to.c_str(), FALSE))
        return static_cast<int>(GetLastError());
    Trace(FormatText("Destination exe %s created.\n", to.c_str()));
    return 0;
}

void CResourceUpdater::MoveTemporaryFile() {
    const std::u16string extension = Extension(sourcePath);
    const bool wasReadOnly = _waccess(workPath.c_str(), 2) != 0;
    if (wasReadOnly) {
        _wchmod(workPath.c_str(), _S_IWRITE);
        if (targetPath == sourcePath)
            _wchmod(sourcePath.c_str(), _S_IWRITE);
    }
    AppendExtension(targetPath, extension);
    SetLastError(0);
    const std::string from = Narrow(workPath), to = Narrow(targetPath);
    MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED);
    if (wasReadOnly)
        _wchmod(targetPath.c_str(), _S_IREAD);
}

int CResourceUpdater::RemoveTemporaryFile() {
    const std::string path = Narrow(workPath);
    WIN32_FIND_DATAA found{};
    HANDLE find = FindFirstFileA(path.c_str(), &found);
    if (find == INVALID_HANDLE_VALUE)
        return CheckLastError("Win32API::FindFile") ? 1 : 0;
    if (_waccess(workPath.c_str(), 2) != 0)
        _wchmod(workPath.c_str(), _S_IWRITE);
    if (workPath != sourcePath)
        DeleteFileA(path.c_str());
    FindClose(find);
    return 0;
}

int CResourceUpdater::DeleteSourceResource(WORD type, const std::string& identifier,
                                           WORD language) {
    return UpdateOneResource(workPath, type, identifier, nullptr, 0, language,
                             TransactionKind::Delete);
}

} // namespace tervane
