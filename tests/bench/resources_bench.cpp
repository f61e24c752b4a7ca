// The resource reader on one PE file (TERVANE_BENCH_FILE): load it as data,
// then walk every resource through the Win32 calls as the conversion does.
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <string>

#include "platform/win32/resources.h"

namespace {

std::string BenchFile() {
    const char* path = std::getenv("TERVANE_BENCH_FILE");
    return path ? path : "";
}

struct Totals {
    std::size_t resources = 0;
    std::size_t bytes = 0;
};

BOOL OnLanguage(HMODULE module, const ResName& type, const ResName& name, WORD language,
                LONG_PTR param) {
    auto& totals = *reinterpret_cast<Totals*>(param);
    HRSRC found = FindResourceExA(module, type, name, language);
    const void* data = LockResource(LoadResource(module, found));
    benchmark::DoNotOptimize(data);
    ++totals.resources;
    totals.bytes += SizeofResource(module, found);
    return TRUE;
}

BOOL OnName(HMODULE module, const ResName& type, const ResName& name, LONG_PTR param) {
    return EnumResourceLanguagesA(module, type, name, OnLanguage, param), TRUE;
}

BOOL OnType(HMODULE module, const ResName& type, LONG_PTR param) {
    return EnumResourceNamesA(module, type, OnName, param), TRUE;
}

void LoadAndWalk(benchmark::State& state) {
    std::string path = BenchFile();
    Totals totals;
    for (auto _ : state) {
        HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        if (!module) {
            state.SkipWithError("set TERVANE_BENCH_FILE to a PE file");
            return;
        }
        totals = {};
        EnumResourceTypesA(module, OnType, reinterpret_cast<LONG_PTR>(&totals));
        FreeLibrary(module);
    }
    state.counters["resources"] = static_cast<double>(totals.resources);
    state.counters["resources/s"] = benchmark::Counter(static_cast<double>(totals.resources) *
                                                           static_cast<double>(state.iterations()),
                                                       benchmark::Counter::kIsRate);
}
BENCHMARK(LoadAndWalk)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
