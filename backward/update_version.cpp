// A version block written anew with its translated values.
#include <cstdlib>

#include "backward/update_visitor.h"
#include "frame/diagnostics/trace.h"
#include "label/pieces/tag_predicates.h"
#include "model/text_checks.h"
#include "model/version_info_resource.h"
#include "platform/locale/code_pages.h"

namespace tervane {

int CUpdateVisitor::VisitVersionInfo(CVersionInfoResource* resource) {
    ClearContext();
    resourceKind = "versioninfo";
    const std::string number = std::to_string(std::atol(resource->identifierText.c_str()));
    Trace("\nReady to construct VersionInfo buffer............\n");
    Trace("Constructing versioninfo buffer id = " + number + "............\n");

    CVersionBlock& block = resource->block;
    block.buffer.SetContext("versioninfo id = " + resource->identifierText);
    for (const CLabelPieceList& entry : resource->entries) {
        std::u16string key;
        std::u16string text;
        for (const auto& piece : entry) {
            if (const CTextLabelPiece* part = TextOf(*piece)) {
                if (!key.empty())
                    text += part->text.view();
                continue;
            }
            const TagDescriptor* tag = TagOf(*piece);
            if (tag == nullptr)
                continue;
            if (tag->inlineTag) {
                // The forward conversion's marks: \n for a carriage return,
                // \r for a line feed.
                const std::u16string_view t = tag->tagText.empty() ? tag->name : tag->tagText;
                if (t == u"\\n")
                    text += u'\r';
                else if (t == u"\\r")
                    text += u'\n';
                else
                    text += t;
            } else if (tag->startTag && !tag->endTag) {
                controlName = Narrow(GetTagWord(*tag));
                key = tag->tagText.str();
            }
        }
        VerifyTranslatedTextLen(text, kVersionTextLimit, false, false);
        if (key == u"<comments>")
            block.newValues.comments = text;
        else if (key == u"<productname>")
            block.newValues.productName = text;
        else if (key == u"<productversion>")
            block.newValues.productVersion = text;
        else if (key == u"<legalcopyright>")
            block.newValues.legalCopyright = text;
        else if (key == u"<legaltrademarks>")
            block.newValues.legalTrademarks = text;
    }
    block.Rebuild();

    Trace("Constructed versioninfo buffer id = " + number + ".\n");
    Trace("Deleting source versioninfo id = " + number + "..........\n");
    Trace("Updating translated versioninfo id = " + number + "..........\n");
    UpdateResourceData(kVersionType, resource->identifierText, block.buffer.data(),
                       block.buffer.used(), resource->targetLanguage);
    return 0;
}

} // namespace tervane
