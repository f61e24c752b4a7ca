// Labels per second through CLabelParser (Initialise and Parse for every
// label, as the resource model calls it), for realistic labels of each kind,
// beside a std::regex tokenizer of the String kind's language as a peer.
#include <benchmark/benchmark.h>
// GCC 12 with the sanitizers warns falsely inside std::regex's automaton.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <regex>
#include <string>
#include <vector>

#include "label/grammars/label_parser.h"

namespace {

using tervane::LabelKind;

// About 20 characters each, in the escaped input form.
const std::vector<std::u16string> kStrings = {
    u"Save changes to %s?",  u"%d of %d files done",  u"Cannot open %1!s!.",
    u"Line %u: %-8.3lf\\n",  u"100%% complete\\r\\n", u"Free: %I64u bytes",
    u"C:\\\\Temp\\\\%s.tmp", u"50% off all items",    u"Error %08X at %p",
};
const std::vector<std::u16string> kMenus = {
    u"&Open...\\tCtrl+O", u"Save &As...\\tF12", u"E&xit\\tAlt+F4",       u"&Undo\\tCtrl+Z",
    u"Zoom &In\\tCtrl++", u"&&Print %d copies", u"Select &All\\tCtrl+A", u"Close\\tCtrl+Shift+W",
};
const std::vector<std::u16string> kDialogs = {
    u"&Name of the file:", u"Fish && Chips menu", u"%d%% &Done\\r\\n",   u"&Remember password",
    u"Cancel the &upload", u"Page %1 of %2",      u"&Advanced settings", u"Show \\bhidden\\b",
};

void Labels(benchmark::State& state, LabelKind kind, const std::vector<std::u16string>& corpus) {
    std::size_t tokens = 0;
    for (auto _ : state) {
        for (const std::u16string& label : corpus) {
            tervane::LabelTokenList list;
            tervane::CLabelParser parser;
            parser.Initialise(kind);
            parser.Parse(label, list);
            tokens += list.size();
            benchmark::DoNotOptimize(list.data());
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * corpus.size()));
    state.counters["tokens/label"] =
        static_cast<double>(tokens) / static_cast<double>(state.iterations() * corpus.size());
}

void StringLabels(benchmark::State& state) {
    Labels(state, LabelKind::String, kStrings);
}
void MenuLabels(benchmark::State& state) {
    Labels(state, LabelKind::Menu, kMenus);
}
void DialogLabels(benchmark::State& state) {
    Labels(state, LabelKind::Dialog, kDialogs);
}

// The peer: the String kind's token language as one std::regex alternation,
// longest alternatives first (regex alternation is leftmost, not longest).
void RegexStringLabels(benchmark::State& state) {
    const std::wregex token(LR"(%[ #+\-]*[0-9]*(\.[0-9]*\*?|\*\.?[0-9]*\*?)?[Lhl]?(I64)?)"
                            LR"([CEGSXcdefginopsux]|%[0-9]+|\\[bfnrt]|\\+|%%|%|[^%\\]+)");
    std::vector<std::wstring> corpus;
    for (const std::u16string& label : kStrings)
        corpus.emplace_back(label.begin(), label.end());
    std::size_t tokens = 0;
    for (auto _ : state) {
        for (const std::wstring& label : corpus) {
            for (std::wsregex_iterator it(label.begin(), label.end(), token), end; it != end; ++it)
                ++tokens;
        }
    }
    benchmark::DoNotOptimize(tokens);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * corpus.size()));
}

BENCHMARK(StringLabels);
BENCHMARK(MenuLabels);
BENCHMARK(DialogLabels);
BENCHMARK(RegexStringLabels);

} // namespace

BENCHMARK_MAIN();
