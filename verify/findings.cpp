#include "verify/findings.h"

#include "platform/com/bstr.h"
#include "platform/com/com_error.h"

namespace tervane::verify {

void Report(IVerificationReport* report, LONG severity, LONG code, const std::u16string& message,
            const PieceRange& range) {
    if (report == nullptr)
        _com_issue_error(E_POINTER);
    BSTR text = SysAllocStringLen(message.data(), static_cast<UINT>(message.size()));
    LONG scratch = 0;
    HRESULT hr = report->Add(text, 0, severity, code, 0, range.start.first, range.start.second,
                             range.end.first, range.end.second, 3, 1, &scratch);
    SysFreeString(text);
    if (FAILED(hr))
        _com_issue_errorex(hr, report, IVerificationReport::iid);
}

std::u16string Compose(std::string_view format, std::initializer_list<std::u16string_view> args) {
    std::u16string out;
    auto next = args.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '%' && i + 1 < format.size() && format[i + 1] == 's' &&
            next != args.end()) {
            out += *next++;
            ++i;
        } else {
            out += static_cast<char16_t>(static_cast<unsigned char>(format[i]));
        }
    }
    return out;
}

Tags StructuralTags(const Pieces& pieces) {
    Tags tags;
    for (CLabelPiece* piece : pieces) {
        CTagLabelPiece* tag = AsTag(piece);
        if (tag != nullptr && !HasNoMark(*tag) && tag->tag.inlineTag == 0 &&
            tag->tag.tagText.view() != u"<separator/>")
            tags.push_back(tag);
    }
    return tags;
}

Pieces View(const CLabelPieceList& list) {
    Pieces pieces;
    pieces.reserve(list.size());
    for (const auto& piece : list)
        pieces.push_back(piece.get());
    return pieces;
}

} // namespace tervane::verify
