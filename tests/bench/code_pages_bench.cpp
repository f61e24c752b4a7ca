// Short labels and a long text through MultiByteToWideChar and back, beside
// glibc iconv with a descriptor kept open (the peer), in the same run.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <string>
#include <vector>

#include "platform/locale/code_pages.h"

namespace {

struct Sample {
    UINT codePage;
    const char* iconvName;
    std::u16string label;
};

const Sample kSamples[] = {
    {932, "CP932", u"\u30D5\u30A1\u30A4\u30EB\u3092\u4FDD\u5B58\u3057\u307E\u3059\u304B(&S)?"},
    {1251, "CP1251",
     u"\u0421\u043E\u0445\u0440\u0430\u043D\u0438\u0442\u044C \u0444\u0430\u0439\u043B?"},
    {1252, "CP1252", u"Datei speichern unter\u2026 (&S)"},
    {CP_UTF8, "UTF-8", u"\u00C9tat de l'impression: %1 pages"},
};

std::string Bytes(const Sample& sample, std::size_t repeat) {
    std::u16string text;
    for (std::size_t i = 0; i < repeat; ++i)
        text += sample.label;
    return tervane::Narrow(text, sample.codePage);
}

void Tervane(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    const std::string bytes = Bytes(sample, static_cast<std::size_t>(state.range(1)));
    std::vector<char16_t> wide(bytes.size() + 1);
    for (auto _ : state) {
        const int n =
            MultiByteToWideChar(sample.codePage, 0, bytes.data(), static_cast<int>(bytes.size()),
                                wide.data(), static_cast<int>(wide.size()));
        benchmark::DoNotOptimize(n);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(sample.iconvName);
}

void IconvPeer(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    const std::string bytes = Bytes(sample, static_cast<std::size_t>(state.range(1)));
    std::vector<char16_t> wide(bytes.size() + 1);
    iconv_t cd = iconv_open("UTF-16LE", sample.iconvName);
    for (auto _ : state) {
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(bytes.data());
        std::size_t inLeft = bytes.size();
        char* out = reinterpret_cast<char*>(wide.data());
        std::size_t outLeft = wide.size() * 2;
        benchmark::DoNotOptimize(iconv(cd, &in, &inLeft, &out, &outLeft));
    }
    iconv_close(cd);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
    state.SetLabel(sample.iconvName);
}

void TervaneNarrow(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    std::u16string text;
    for (int i = 0; i < state.range(1); ++i)
        text += sample.label;
    for (auto _ : state)
        benchmark::DoNotOptimize(tervane::Narrow(text, sample.codePage));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.SetLabel(sample.iconvName);
}

// One label (about 20 characters) and a 1000-label text, in each code page.
void Arguments(benchmark::internal::Benchmark* b) {
    for (int sample = 0; sample < 4; ++sample) {
        b->Args({sample, 1});
        b->Args({sample, 1000});
    }
}

BENCHMARK(Tervane)->Apply(Arguments);
BENCHMARK(IconvPeer)->Apply(Arguments);
BENCHMARK(TervaneNarrow)->Apply(Arguments);

} // namespace

BENCHMARK_MAIN();
