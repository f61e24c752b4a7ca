#pragma once
// The checks of what the translator wrote: the length and emptiness of each
// text, hotkeys and shortcuts within their scope, tags of one identifier and
// the texts of a combo box. Each returns 1 when it has reported something.
#include "verify/findings.h"

namespace tervane::verify {

class TextChecks {
public:
    explicit TextChecks(IVerificationReport* report) : report_(report) {}

    int CheckResources(const Pieces& target, const Pieces& source);
    int CheckVersionInfo(const Pieces& pieces);
    int CheckStrings(const Pieces& pieces);
    int CheckDialogs(const Pieces& pieces);
    int CheckMenus(const Pieces& pieces);
    int CheckDuplicateIds(const Pieces& pieces);
    int FindDuplicates(const CTagLabelPiece& tag, const Pieces& rest);
    void CheckHotkeys(const Pieces& pieces);
    void CheckShortcuts(const Pieces& pieces);
    void CheckComboBoxes(const Pieces& target);

    static bool TextFits(const Pieces& pieces, std::size_t limit, bool& isEmpty);

private:
    struct Scan {
        bool (*isStart)(const CTagLabelPiece&);
        bool (*isEnd)(const CTagLabelPiece&);
        std::size_t (*limitOf)(const CTagLabelPiece& end);
        LONG emptySeverity;
    };
    int TextScan(const Pieces& pieces, const Scan& scan);

    IVerificationReport* report_;
};

} // namespace tervane::verify
