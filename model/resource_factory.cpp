#include "model/dialog_resource.h"
#include "model/dlginit_resource.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"

namespace tervane {

std::unique_ptr<CTagLabelPiece> CResource::GroupTag(const char* groupName, bool open) {
    std::string text = std::string(open ? "<" : "</") + groupName + ">";
    return open ? MakeOpenTag(groupName, text) : MakeCloseTag(groupName, text);
}

std::unique_ptr<CResource> CreateResource(WORD type) {
    switch (type) {
    case kMenuType:
        return std::make_unique<CMenuResource>();
    case kDialogType:
        return std::make_unique<CDialogResource>();
    case kStringType:
        return std::make_unique<CStringBlockResource>();
    case kVersionType:
        return std::make_unique<CVersionInfoResource>();
    case kDlgInitType:
        return std::make_unique<CDlgInitResource>();
    default:
        return nullptr;
    }
}

std::unique_ptr<CResourceCommand> CreateCommand(WORD type) {
    switch (type) {
    case kMenuType:
        return std::make_unique<CMenuCommand>();
    case kDialogType:
        return std::make_unique<CDialogCommand>();
    case kStringType:
        return std::make_unique<CStringBlockCommand>();
    case kVersionType:
        return std::make_unique<CVersionInfoCommand>();
    case kDlgInitType:
        return std::make_unique<CDlgInitCommand>();
    default:
        return nullptr;
    }
}

} // namespace tervane
