#pragma once
// The backward road for one resource at a time: a fixture read as the writer
// reads its source, a stream of pieces merged into a model, and the rebuilt
// bytes caught where they would go into the work file.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "backward/update_visitor.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/resource_parser_impl.h"
#include "label/pieces/label_piece.h"
#include "model/dialog_resource.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"
#include "platform/locale/code_pages.h"
#include "platform/win32/resources.h"
#include "tests/model/test_images.h"
#include "tests/support/fixtures.h"

namespace tervane::test {

struct Written {
    WORD type = 0;
    std::string identifier;
    std::vector<std::uint8_t> bytes;
    WORD language = 0;
};

class CapturingVisitor : public CUpdateVisitor {
public:
    int UpdateResourceData(WORD type, const std::string& identifier, const void* data, DWORD size,
                           WORD language) override {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        written.push_back({type, identifier, {bytes, bytes + size}, language});
        return 0;
    }
    std::vector<Written> written;
};

// The resources of a fixture image, read without emission, and their bytes.
class SourceFile {
public:
    explicit SourceFile(const std::string& path) : path_(path) {
        engine_.InitialiseParser(std::u16string(path.begin(), path.end()));
        engine_.EnumerateResources();
        engine_.ExtractResources(0);
    }
    CResource& Find(WORD type, const std::string& identifier, WORD language = 0x409) {
        for (auto& resource : engine_.Resources())
            if (CResourceParserImpl::GetResourceType(*resource) == type &&
                resource->identifierText == identifier && resource->language == language)
                return *resource;
        throw std::runtime_error("no resource " + identifier + " in " + path_);
    }
    std::vector<std::unique_ptr<CResource>>& Resources() { return engine_.Resources(); }
    std::vector<std::uint8_t> BytesOf(const CResource& resource) const {
        HMODULE module = LoadLibraryExA(path_.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        HRSRC info =
            FindResourceExA(module, ResName(CResourceParserImpl::GetResourceType(resource)),
                            resource.name, resource.language);
        const auto* data =
            static_cast<const std::uint8_t*>(LockResource(LoadResource(module, info)));
        std::vector<std::uint8_t> bytes(data, data + SizeofResource(module, info));
        FreeLibrary(module);
        return bytes;
    }

private:
    std::string path_;
    CResourceParserImpl engine_;
};

// The bytes with zeros up to a multiple of 4: a rebuilt template aligns its
// last item, where the resource compiler leaves it unpadded.
inline std::vector<std::uint8_t> Padded(std::vector<std::uint8_t> bytes) {
    while (bytes.size() % 4 != 0)
        bytes.push_back(0);
    return bytes;
}

// Pieces spelt as [text], {inline tag}, <open>, </close> and <empty/>.
inline CLabelPieceList Pieces(const std::u16string& spelt) {
    CLabelPieceList pieces;
    std::size_t at = 0;
    while (at < spelt.size()) {
        const char16_t open = spelt[at];
        const char16_t close = open == u'[' ? u']' : open == u'{' ? u'}' : u'>';
        const std::size_t end = spelt.find(close, at + 1);
        const std::u16string inner = spelt.substr(at + 1, end - at - 1);
        if (open == u'[') {
            pieces.push_back(MakeText(inner));
        } else if (open == u'{') {
            pieces.push_back(MakeInlineTag(inner));
        } else {
            const std::u16string text = spelt.substr(at, end - at + 1);
            const bool isClose = inner.starts_with(u"/");
            const bool isEmpty = inner.ends_with(u"/");
            std::u16string name = inner.substr(isClose ? 1 : 0);
            name = name.substr(0, std::min(name.find(u' '), name.find(u'/')));
            if (isClose)
                pieces.push_back(MakeCloseTag(name, text));
            else if (isEmpty)
                pieces.push_back(MakeEmptyTag(name, text));
            else
                pieces.push_back(MakeOpenTag(name, text));
        }
        at = end + 1;
    }
    return pieces;
}

// The resource's pieces in document order: string and version entries,
// menu records depth first, a dialog's flat list.
inline void AppendRecords(const std::vector<MenuItemRecord>& records, std::u16string& out) {
    for (const MenuItemRecord& record : records) {
        out += Widen(Spell(record.pieces), CP_UTF8);
        AppendRecords(record.children, out);
    }
}
inline std::u16string SpeltPieces(const CResource& resource) {
    std::u16string out;
    auto append = [&out](const CLabelPieceList& pieces) { out += Widen(Spell(pieces), CP_UTF8); };
    if (auto* block = dynamic_cast<const CStringBlockResource*>(&resource))
        std::for_each(block->entries.begin(), block->entries.end(), append);
    else if (auto* version = dynamic_cast<const CVersionInfoResource*>(&resource))
        std::for_each(version->entries.begin(), version->entries.end(), append);
    else if (auto* dialog = dynamic_cast<const CDialogResource*>(&resource))
        append(dialog->dialogs.front()->pieces);
    else if (auto* menu = dynamic_cast<const CMenuResource*>(&resource))
        AppendRecords(menu->items, out);
    return out;
}

// The stream of the resource's group as the writer receives it: its own
// pieces, with each change's text replaced by its translation.
inline CPieceStream Stream(const CResource& resource,
                           const std::vector<std::pair<std::string, std::u16string>>& changes) {
    std::u16string spelt = SpeltPieces(resource);
    for (const auto& [from, to] : changes) {
        const std::u16string wide = Widen(from, CP_UTF8);
        const std::size_t at = spelt.find(wide);
        EXPECT_NE(at, std::u16string::npos) << "nothing to change: " << from;
        if (at != std::u16string::npos)
            spelt.replace(at, wide.size(), to);
    }
    CPieceStream stream;
    stream.push_back(resource.GetOpenTag());
    for (auto& piece : Pieces(spelt))
        stream.push_back(std::move(piece));
    stream.push_back(resource.GetCloseTag());
    return stream;
}

// Takes the resource's pieces out of stream into a new object and merges them.
inline void Merge(CResource& source, CPieceStream stream) {
    std::unique_ptr<CResource> other = CreateResource(CResourceParserImpl::GetResourceType(source));
    other->identifierText = source.identifierText;
    if (auto* menu = dynamic_cast<CMenuResource*>(&source)) {
        auto* into = static_cast<CMenuResource*>(other.get());
        into->plainVersion = menu->plainVersion;
        into->plainHeaderSize = menu->plainHeaderSize;
    }
    other->ExtractPieces(stream);
    source.MergePieces(*other);
}

// The bytes the update visitor writes for the resource, under language.
inline std::vector<Written> Rebuild(CResource& resource, WORD language = 0x407) {
    g_targetLanguage = language;
    resource.targetLanguage = language;
    CapturingVisitor visitor;
    resource.Accept(visitor);
    return visitor.written;
}

// The text of the verification error that the rebuilding raises, or empty.
inline std::string RebuildError(CResource& resource, WORD language = 0x407) {
    try {
        Rebuild(resource, language);
    } catch (const CVerificationException& e) {
        return e.message;
    }
    return {};
}

inline const std::string kTrailer = kVerificationTrailer;

// Sets the mode of the conversion and empties its messages for one test.
struct ConversionMode {
    explicit ConversionMode(DWORD mode) {
        g_writerMode = mode;
        g_messages.clear();
    }
    ~ConversionMode() {
        g_writerMode = 1;
        g_messages.clear();
    }
    std::vector<std::string> Messages() const {
        std::vector<std::string> out;
        for (const auto& message : g_messages)
            out.push_back(Narrow(message));
        return out;
    }
};

} // namespace tervane::test
