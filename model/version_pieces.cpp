#include "model/version_pieces.h"

#include "label/pieces/tag_predicates.h"
#include "model/version_info_resource.h"

namespace tervane {

CLabelPieceList ParseValue(std::string_view key, std::u16string_view value) {
    CLabelPieceList entry;
    const std::string name(key);
    entry.push_back(MakeOpenTag(name, "<" + name + ">"));
    std::u16string text;
    for (char16_t c : value) {
        if (c != 13 && c != 10) {
            text += c;
            continue;
        }
        if (!text.empty())
            entry.push_back(MakeText(text));
        text.clear();
        // Carriage return is marked \n and line feed \r: the rewrite undoes
        // the same exchange, so the marks are names only.
        entry.push_back(MakeInlineTag(c == 13 ? u"\\n" : u"\\r"));
    }
    if (!text.empty())
        entry.push_back(MakeText(text));
    entry.push_back(MakeCloseTag(name, "</" + name + ">"));
    return entry;
}

void CVersionInfoResource::ExtractPieces(CPieceStream& stream) {
    const std::optional<std::size_t> after = AfterGroupOpen(stream, u"versioninfo");
    if (!after)
        return;
    const std::size_t start = *after;

    std::size_t accepted = start;  // behind the last entry taken
    std::vector<std::size_t> work; // positions of the pieces of the entry being read
    for (std::size_t at = start; at < stream.size(); ++at) {
        const CLabelPiece& piece = *stream[at];
        const TagDescriptor* tag = TagOf(piece);
        if (tag == nullptr && TextOf(piece) == nullptr)
            continue;
        if (tag && IsClose(*tag, u"versioninfo")) {
            accepted = at;
            break;
        }
        work.push_back(at);
        if (!tag || !tag->endTag)
            continue;
        CLabelPieceList entry;
        for (std::size_t i : work)
            entry.push_back(std::move(stream[i]));
        entries.push_back(std::move(entry));
        work.clear();
        accepted = at + 1;
    }
    stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(start),
                 stream.begin() + static_cast<std::ptrdiff_t>(accepted));
}

void CVersionInfoResource::MergePieces(CResource& other) {
    const auto& translated = static_cast<const CVersionInfoResource&>(other);
    for (std::size_t i = 0; i < translated.entries.size() && i < entries.size(); ++i)
        entries[i] = CloneList(translated.entries[i]);
}

} // namespace tervane
