#include "model/dialog_resource.h"

#include "frame/diagnostics/exceptions.h"
#include "label/pieces/tag_predicates.h"

namespace tervane {

int CDialogResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitDialog(this);
    return 0;
}

void CDialogResource::ExtractPieces(CPieceStream& stream) {
    const std::optional<std::size_t> after = AfterGroupOpen(stream, u"dialogs");
    if (!after)
        return;
    const std::size_t start = *after;

    auto item = std::make_unique<CDialogItem>();
    std::size_t end = start;
    for (; end < stream.size(); ++end) {
        CLabelPiece& piece = *stream[end];
        if (TagOf(piece) == nullptr && TextOf(piece) == nullptr)
            continue;
        if (IsClose(piece, u"dialog")) {
            ++end; // the end tag goes, but is not kept
            break;
        }
        item->pieces.push_back(std::move(stream[end]));
    }
    stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(start),
                 stream.begin() + static_cast<std::ptrdiff_t>(end));
    dialogs.push_back(std::move(item));
}

void CDialogResource::MergePieces(CResource& other) {
    auto& source = static_cast<CDialogResource&>(other);
    if (source.dialogs.empty() || dialogs.empty())
        return;
    dialogs.front()->pieces = std::move(source.dialogs.front()->pieces);
}

CResource* CDialogCommand::Execute(Bytes data, CResource* resource) {
    auto* dialog = static_cast<CDialogResource*>(resource);
    try {
        Bytes bytes = data.first(std::min<std::size_t>(data.size(), dialog->size));
        auto item = std::make_unique<CDialogItem>();
        item->ParseDialog(bytes, dialog->identifierText, dialog->language);
        dialog->dialogs.push_back(std::move(item));
    } catch (...) {
        throw CParserException(kCorruptedDocumentMessage);
    }
    return dialog;
}

} // namespace tervane
