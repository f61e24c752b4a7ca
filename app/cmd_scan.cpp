// tervane scan [--json] [--trace FILE] FILE|DIR...: asks the scanner, as a
// host does before a conversion, whether each file can be handled, and
// prints its verdict.
#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "app/commands.h"
#include "app/failure.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "app/scan_host.h"
#include "platform/diag/trace_sink.h"
#include "platform/locale/code_pages.h"
#include "scanner/tervane_scanner.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

struct ScanOptions {
    bool json = false;
    unsigned jobs = 0; // 0: one for each core
    std::string trace;
    std::vector<std::string> operands;
};

// "MZ", and "PE\0\0" where the DOS header points.
bool IsPeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char dos[64] = {};
    if (!in.read(reinterpret_cast<char*>(dos), sizeof dos) || dos[0] != 'M' || dos[1] != 'Z')
        return false;
    const std::uint32_t at = dos[60] | dos[61] << 8 | dos[62] << 16 | std::uint32_t{dos[63]} << 24;
    char signature[4] = {};
    return in.seekg(at).read(signature, sizeof signature) &&
           std::string_view(signature, 4) == std::string_view("PE\0\0", 4);
}

// The files named, and the PE files below each folder named, in name order.
std::vector<std::string> FilesOf(const std::vector<std::string>& operands) {
    std::vector<std::string> files;
    for (const std::string& operand : operands) {
        std::error_code error;
        if (!fs::is_directory(operand, error)) {
            files.push_back(operand);
            continue;
        }
        std::vector<std::string> found;
        for (auto it = fs::recursive_directory_iterator(
                 operand, fs::directory_options::skip_permission_denied, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error))
            if (it->is_regular_file(error) && IsPeFile(it->path()))
                found.push_back(it->path().string());
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

void PrintLine(OutputFile& out, const std::string& file, const ScanVerdict& v) {
    std::string text = v.text;
    std::replace(text.begin(), text.end(), '\n', ' ');
    if (std::string_view(v.verdict) == "ok")
        text = "ok";
    else if (std::string_view(v.verdict) == "empty")
        text = "ok, no localisable resources";
    out.Write(file + ": " + text + "\n");
}

void PrintJson(OutputFile& out, JsonLine& line, const std::string& file, const ScanVerdict& v) {
    std::string_view text = line.Text("file", std::string_view(file))
                                .Text("verdict", std::string_view(v.verdict))
                                .Number("status", v.status)
                                .Text("text", std::string_view(v.text))
                                .Number("first_language", v.firstLanguage)
                                .Finish();
    out.Write(text);
}

void DrawBar(std::size_t done, std::size_t total) {
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = total ? done * kWidth / total : kWidth;
    std::fprintf(stderr, "\r[%.*s%*s] %zu/%zu", static_cast<int>(filled),
                 "########################################", static_cast<int>(kWidth - filled), "",
                 done, total);
    std::fflush(stderr);
}

// Scans every file on up to jobs threads and hands each verdict to report on
// this thread, in the order of the files. Files whose copies share a path
// (a.dll and a.exe) go in turn to one thread, so that no two scans meet there.
void ScanAll(const std::vector<std::string>& files, unsigned jobs,
             const std::function<void(std::size_t, const ScanVerdict&)>& report) {
    std::map<std::u16string, std::vector<std::size_t>> byCopy;
    for (std::size_t i = 0; i < files.size(); ++i)
        byCopy[TervaneScanner::TemporaryPathFor(Widen(files[i], CP_UTF8))].push_back(i);
    std::vector<std::vector<std::size_t>> groups;
    for (auto& [copy, group] : byCopy)
        groups.push_back(std::move(group));
    std::sort(groups.begin(), groups.end()); // by the first file of each

    std::vector<std::optional<ScanVerdict>> verdicts(files.size());
    std::mutex mutex;
    std::condition_variable ready;
    std::size_t nextGroup = 0;
    auto work = [&] {
        for (;;) {
            std::size_t g;
            {
                std::lock_guard lock(mutex);
                if (nextGroup == groups.size())
                    return;
                g = nextGroup++;
            }
            for (std::size_t i : groups[g]) {
                ScanVerdict verdict{"refused", 0, std::string(), -1};
                try {
                    verdict = ScanFile(files[i]);
                } catch (const std::exception& failure) {
                    verdict.text = std::string("unexpected failure: ") + failure.what();
                }
                std::lock_guard lock(mutex);
                verdicts[i] = std::move(verdict);
                ready.notify_one();
            }
        }
    };
    std::vector<std::jthread> workers;
    for (unsigned j = 0; j < std::min<std::size_t>(jobs, groups.size()); ++j)
        workers.emplace_back(work);
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::unique_lock lock(mutex);
        ready.wait(lock, [&] { return verdicts[i].has_value(); });
        const ScanVerdict verdict = std::move(*verdicts[i]);
        lock.unlock();
        report(i, verdict);
    }
}

int RunScan(const ScanOptions& options) {
    OutputFile out("-", {});
    CheckOutputPath(options.trace, options.operands);
    if (!options.trace.empty() && !AttachTraceFile(options.trace))
        throw CommandFailure(options.trace, "cannot write the trace file");
#if defined(__GLIBC__)
    // A scan reads, copies and rewrites whole files, each into a buffer of the
    // file's size. Kept in the heap, a freed buffer serves the next one; mapped
    // afresh, each costs its size again in page faults.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
    const std::vector<std::string> files = FilesOf(options.operands);
    const bool bar = ::isatty(STDERR_FILENO) != 0 && files.size() > 1;
    const unsigned jobs =
        options.jobs ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    JsonLine line;
    int status = 0;
    if (bar)
        DrawBar(0, files.size());
    ScanAll(files, jobs, [&](std::size_t i, const ScanVerdict& verdict) {
        if (bar)
            std::fputs("\r\033[K", stderr);
        if (options.json)
            PrintJson(out, line, files[i], verdict);
        else
            PrintLine(out, files[i], verdict);
        if (bar)
            std::fflush(stdout);
        if (bar)
            DrawBar(i + 1, files.size());
        const std::string_view v = verdict.verdict;
        if (v != "ok" && v != "empty")
            status = 1;
    });
    if (bar)
        std::fputs("\n", stderr);
    out.Commit();
    return status;
}

} // namespace

void AddScanCommand(CLI::App& app) {
    auto options = std::make_shared<ScanOptions>();
    CLI::App* command = AddCommand(
        app, "scan",
        "Tell for each PE file whether it can be converted, as a host asks before a conversion",
        [options] { return RunScan(*options); });
    command->footer(
        "For each FILE, or each PE file below it when it is a folder, prints \"ok\" or\n"
        "the reason why the file is refused: resources in more than one code page, a\n"
        "resource identifier twice, resources that can't be read, or a file whose size\n"
        "changes when one of its resources is rewritten (tried on a copy beside it, named\n"
        "NAME_Sniffer.exe, which is removed again; a file of that name already there\n"
        "is left alone and its source is not scanned).\n\n"
        "The exit status is 0 when every file can be handled, 1 when any is refused,\n"
        "missing or skipped, 2 for a wrong command line.");
    command->add_flag("--json", options->json,
                      "one JSON object a file: file, verdict (ok, empty, refused, missing, "
                      "skipped), status, text, first_language (-1 for none)");
    command->add_option("--trace", options->trace, "append the scanner's progress texts to FILE")
        ->type_name("FILE");
    command
        ->add_option("-j,--jobs", options->jobs,
                     "scan N files at once; the default is one for each core")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command->add_option("FILE", options->operands, "PE files, and folders to search for them")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
