#pragma once
// Where every command's result goes, with the guarantees of cp and sed -i: a
// file is written as a temporary file beside it and renamed over it only when
// the command succeeds, so that on any failure the target is exactly as it was
// (absent, or the old file whole). "-" (or no -o at all) is standard output.
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tervane::app {

class OutputFile {
public:
    // Refuses, before any work is done, a target that exists and is not a
    // regular file (a link counts as the file it names) and one that is the
    // same file as any of inputs. Throws CommandFailure.
    OutputFile(const std::string& path, const std::vector<std::string>& inputs);
    // Without Commit the temporary file goes and the target stays as it was.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool IsStandardOutput() const { return temporary_.empty(); }
    // Every write is checked; a failed one throws CommandFailure.
    void Write(std::string_view bytes);
    void Write(std::span<const std::uint8_t> bytes);
    // The temporary file, for a command that fills it by its own means (the
    // resource updater) after writing what it starts from; not for standard
    // output, and no Write after it.
    const std::string& WorkPath();
    // Flushes standard output, or puts the temporary file in the target's
    // place with the target's permission bits. Throws CommandFailure.
    void Commit();

private:
    [[noreturn]] void Fail(const std::string& what) const;

    std::string shown_;     // the target as the user named it
    std::string target_;    // the path renamed over: a link's file, not the link
    std::string temporary_; // empty for standard output
    std::FILE* stream_ = nullptr;
    mode_t mode_ = 0;
    bool existed_ = false;
    uid_t owner_ = 0;
    gid_t group_ = 0;
    bool committed_ = false;
};

// The checks of OutputFile for an output written otherwise (a trace file).
void CheckOutputPath(const std::string& path, const std::vector<std::string>& inputs);

// The final flush and close of standard output, at the end of the program;
// throws CommandFailure when what was written did not all arrive.
void CloseStandardOutput();

} // namespace tervane::app
