#include "platform/com/bstr.h"
#include "platform/com/com_error.h"
#include "platform/com/com_ptr.h"
#include "verify/tag_order.h"

namespace tervane::verify {

namespace {

Tags Keep(const Tags& tags, bool (*keep)(const TagDescriptor&)) {
    Tags kept;
    for (CTagLabelPiece* tag : tags)
        if (keep(tag->tag))
            kept.push_back(tag);
    return kept;
}

CLabelPiece* FirstOf(const Tags& tags) {
    return tags.empty() ? nullptr : tags.front();
}

struct EntryFacts {
    LONG severity = 0, first = 0, second = 0;
    std::u16string text;
};

EntryFacts ReadEntry(IVerificationReport* report, LONG index) {
    ComPtr<IDispatch> object;
    HRESULT hr = report->get_Item(IndexVariant(index), object.Receive());
    if (FAILED(hr))
        _com_issue_errorex(hr, report, IVerificationReport::iid);
    ComPtr<IReportEntry> entry;
    hr = QueryInterfaceAs(object.get(), entry.Receive());
    if (FAILED(hr))
        _com_issue_error(hr);
    EntryFacts facts;
    BSTR text = nullptr;
    if (FAILED(hr = entry->get_Severity(&facts.severity)) ||
        FAILED(hr = entry->get_StartPair(&facts.first, &facts.second)) ||
        FAILED(hr = entry->get_Message(&text)))
        _com_issue_errorex(hr, entry.get(), IReportEntry::iid);
    facts.text = text != nullptr ? std::u16string(text, SysStringLen(text)) : std::u16string();
    SysFreeString(text);
    return facts;
}

void Remove(IVerificationReport* report, LONG index) {
    HRESULT hr = report->Remove(index);
    if (FAILED(hr))
        _com_issue_errorex(hr, report, IVerificationReport::iid);
}

// Of two entries at one start pair, the lower severity goes; of two equal
// ones, one.
void CleanReport(IVerificationReport* report) {
    LONG count = 0;
    HRESULT hr = report->get_Count(&count);
    if (FAILED(hr))
        _com_issue_errorex(hr, report, IVerificationReport::iid);
    for (LONG i = count - 1; i >= 1; --i) {
        for (LONG j = 0; j < i; ++j) {
            const EntryFacts later = ReadEntry(report, i);
            const EntryFacts earlier = ReadEntry(report, j);
            if (later.first != earlier.first || later.second != earlier.second)
                continue;
            if (later.severity < earlier.severity ||
                (later.severity == earlier.severity && later.text == earlier.text)) {
                Remove(report, i);
                break;
            }
            if (earlier.severity < later.severity) {
                Remove(report, j);
                --i;
                --j;
            }
        }
    }
}

} // namespace

void RunStages(const Pieces& source, const Pieces& target, IVerificationReport* report) {
    try {
        TagComparison compare(report);
        TextChecks texts(report);
        int result = 0;
        CTagOrderChecker checker(report);
        result = checker.CheckTagOrder(target);
        if (result == 0)
            result = checker.CheckNesting(target);
        if (result == 0)
            result = texts.CheckResources(target, source);

        const Tags S = StructuralTags(source);
        const Tags T = StructuralTags(target);

        auto groupTag = [](const TagDescriptor& t) {
            return IsResourceOpen(t) || IsResourcesOpen(t);
        };
        const Tags groupsS = Keep(S, groupTag), groupsT = Keep(T, groupTag);
        if (result == 0)
            result = compare.CompareTagSets(groupsT, groupsS, FirstOf(groupsT), kError);

        // The entries of menus or dialogs as sets and in order, then each
        // resource's own tags.
        auto resourceStage = [&](const Tags& entriesS, const Tags& entriesT, const TagMap& mapS,
                                 const TagMap& mapT, bool whole) {
            if (result != 0)
                return;
            if (whole) {
                result = compare.CompareTagSets(entriesT, entriesS, FirstOf(entriesT), kError);
                if (result == 0)
                    result = compare.CompareTagOrder(entriesS, entriesT, kError);
                if (result != 0)
                    return;
            }
            for (const auto& [key, tagsS] : mapS) {
                auto found = mapT.find(key);
                const Tags tagsT = found != mapT.end() ? found->second : Tags();
                CLabelPiece* anchor = !tagsT.empty() ? tagsT.front() : FirstOf(tagsS);
                if (compare.CompareTagSets(tagsT, tagsS, anchor, kError) == 1)
                    result = 1;
            }
        };
        {
            Tags entriesS, entriesT;
            TagMap mapS, mapT;
            TagComparison::ExtractMenus(S, entriesS, mapS);
            TagComparison::ExtractMenus(T, entriesT, mapT);
            resourceStage(entriesS, entriesT, mapS, mapT, true);
        }
        for (int flag : {1, 0}) {
            Tags entriesS, entriesT;
            TagMap mapS, mapT;
            TagComparison::ExtractDialogs(S, flag, entriesS, mapS);
            TagComparison::ExtractDialogs(T, flag, entriesT, mapT);
            resourceStage(entriesS, entriesT, mapS, mapT, flag == 1);
        }

        auto stringTag = [](const TagDescriptor& t) {
            return IsStringOpen(t) || IsOpen(t, u"stringtable");
        };
        const Tags stringsS = Keep(S, stringTag), stringsT = Keep(T, stringTag);
        if (result == 0) {
            result = compare.CompareTagSets(stringsT, stringsS, FirstOf(stringsT), kError);
            if (result == 0)
                result = compare.CompareTagOrder(stringsS, stringsT, kError);
        }

        auto versionTag = [](const TagDescriptor& t) {
            return IsVersionInfoEntryOpen(t) || IsVersionInfoOpen(t);
        };
        const Tags versionS = Keep(S, versionTag), versionT = Keep(T, versionTag);
        if (result == 0)
            result = compare.CompareTagSets(versionT, versionS, FirstOf(versionT), kError);
        if (result == 0)
            result = compare.CompareTagOrder(versionS, versionT, kError);
        if (result == 0)
            result = compare.CompareTagSets(T, S, FirstOf(T), kError);
        if (result == 0)
            result = compare.CompareTagOrder(S, T, kError);

        CleanReport(report);

        if (result == 0) {
            texts.CheckComboBoxes(target);
            result = compare.CompareInlineTags(target, source);
        }
        if (result == 1 && !T.empty())
            Report(report, kNote, 5,
                   Compose("The Verification is incomplete.Please correct the existing errors and "
                           "run the verification again.",
                           {}),
                   T.back()->range);
    } catch (...) {
        // A check that throws ends the stages; the run goes on with its clean-up.
    }
}

} // namespace tervane::verify
