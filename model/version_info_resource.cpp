#include "model/version_info_resource.h"

#include <algorithm>

#include "frame/diagnostics/exceptions.h"
#include "model/version_pieces.h"

namespace tervane {

int CVersionInfoResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitVersionInfo(this);
    return 0;
}

CResource* CVersionInfoCommand::Execute(Bytes data, CResource* resource) {
    auto* version = static_cast<CVersionInfoResource*>(resource);
    try {
        block_.Parse(data.first(std::min<std::size_t>(data.size(), version->size)));
        version->block = block_;
        for (const char* key : kVersionEntryKeys) {
            const std::u16string wide(key, key + std::char_traits<char>::length(key));
            std::u16string value = block_.GetValue(wide);
            if (value.empty())
                continue;
            version->entries.push_back(ParseValue(key, value));
            *version->sourceValues.Find(wide) = std::move(value);
        }
        if (version->entries.empty())
            version->hasValues = 0;
    } catch (...) {
        throw CParserException(kCorruptedDocumentMessage);
    }
    return version;
}

} // namespace tervane
