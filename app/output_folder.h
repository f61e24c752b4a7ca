#pragma once
// A folder of results written as a whole, as OutputFile writes one file: it
// is filled as a temporary folder beside the target and takes the target's
// place only when the command succeeds, so that on any failure the target is
// exactly as it was and nothing half-written is left.
#include <filesystem>
#include <functional>
#include <string>

namespace tervane::app {

class OutputFolder {
public:
    // isOurs: whether an existing folder is an earlier result of the same
    // command, which may be replaced. Refuses, before any work is done, a
    // target that exists and is neither an empty folder nor one of ours (a
    // link too). Throws CommandFailure.
    OutputFolder(const std::string& path,
                 const std::function<bool(const std::filesystem::path&)>& isOurs);
    // Without Commit the temporary folder goes, with all it holds.
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    // The folder to fill.
    const std::filesystem::path& WorkPath() const { return temporary_; }
    // Puts the work folder in the target's place; an earlier result there is
    // removed only once the new one stands. Throws CommandFailure.
    void Commit();

private:
    std::string shown_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    bool committed_ = false;
};

} // namespace tervane::app
