// The backward conversion's pattern on a large file: for each of 1000
// resources a deletion and an addition, each its own transaction, then the
// file written once. Its peer, in the same run: one `cp` of the file.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/update/pending_files.h"
#include "platform/update/resource_update.h"

namespace {

constexpr int kResources = 1000;
constexpr std::size_t kResourceSize = 15 * 1024; // 1000 of them: a 15 MB file

std::vector<unsigned char> Payload(int i) {
    std::vector<unsigned char> bytes(kResourceSize);
    for (std::size_t k = 0; k < bytes.size(); ++k)
        bytes[k] = static_cast<unsigned char>(i * 31 + k);
    return bytes;
}

void Check(bool ok, const char* what) {
    if (!ok)
        throw std::runtime_error(what);
}

// The 15 MB file, built once from the sample fixture by the updater itself.
const std::string& BaseFile() {
    static const std::string path = [] {
        std::string dir = std::filesystem::temp_directory_path() / "tervane-update-bench";
        std::filesystem::create_directories(dir);
        std::string base = dir + "/base.dll";
        std::filesystem::copy_file(std::string(TERVANE_FIXTURE_DIR) + "/sample.x64.dll", base,
                                   std::filesystem::copy_options::overwrite_existing);
        HANDLE h = BeginUpdateResourceA(base.c_str(), FALSE);
        Check(h != nullptr, "begin");
        for (int i = 0; i < kResources; ++i) {
            auto data = Payload(i);
            Check(UpdateResourceA(h, RT_RCDATA, ResName(i + 1), 0x409, data.data(),
                                  static_cast<DWORD>(data.size())),
                  "update");
        }
        Check(EndUpdateResourceA(h, FALSE), "end");
        Check(!tervane::update::FlushPendingFile(base), "flush");
        return base;
    }();
    return path;
}

void Transactions(benchmark::State& state) {
    const std::string work = std::filesystem::path(BaseFile()).parent_path() / "work.dll";
    std::vector<std::vector<unsigned char>> payloads;
    for (int i = 0; i < kResources; ++i)
        payloads.push_back(Payload(i));
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::copy_file(BaseFile(), work,
                                   std::filesystem::copy_options::overwrite_existing);
        state.ResumeTiming();
        for (int i = 0; i < kResources; ++i) {
            HANDLE h = BeginUpdateResourceA(work.c_str(), FALSE);
            UpdateResourceA(h, RT_RCDATA, ResName(i + 1), 0x409, nullptr, 0);
            EndUpdateResourceA(h, FALSE);
        }
        for (int i = 0; i < kResources; ++i) {
            HANDLE h = BeginUpdateResourceA(work.c_str(), FALSE);
            UpdateResourceA(h, RT_RCDATA, ResName(i + 1), 0x407, payloads[i].data(),
                            static_cast<DWORD>(payloads[i].size()));
            EndUpdateResourceA(h, FALSE);
        }
        // The rewrite on disk is part of the cost.
        Check(!tervane::update::FlushPendingFile(work), "flush");
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(work));
}
BENCHMARK(Transactions)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

void CopyWithCp(benchmark::State& state) {
    const std::string copy = std::filesystem::path(BaseFile()).parent_path() / "copy.dll";
    const std::string command = "cp " + BaseFile() + " " + copy;
    for (auto _ : state)
        Check(std::system(command.c_str()) == 0, "cp");
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(copy));
}
BENCHMARK(CopyWithCp)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
