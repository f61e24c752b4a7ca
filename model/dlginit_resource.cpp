#include "model/dlginit_resource.h"

#include "frame/diagnostics/exceptions.h"
#include "model/dlginit_table.h"

namespace tervane {

int CDlgInitResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitDlgInit(this);
    return 0;
}

CResource* CDlgInitCommand::Execute(Bytes data, CResource* resource) {
    try {
        auto init = std::make_unique<CDlgInitData>();
        init->Parse(data, resource->size);
        init->language = resource->language;
        CDlgInitTable::GetInstance().Store(resource->identifierText, std::move(init));
    } catch (...) {
        throw CParserException(kCorruptedDocumentMessage);
    }
    return resource;
}

} // namespace tervane
