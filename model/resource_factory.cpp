#include "model/dialog_resource.h"
#include "model/dlginit_resource.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"

namespace tervane {

namespace {

struct GroupTexts {
    std::string_view group;
    WideText name;
    WideText open;
    WideText close;
};

constexpr GroupTexts kGroups[] = {
    {"dialogs", WideText::Constant(u"dialogs"), WideText::Constant(u"<dialogs>"),
     WideText::Constant(u"</dialogs>")},
    {"menus", WideText::Constant(u"menus"), WideText::Constant(u"<menus>"),
     WideText::Constant(u"</menus>")},
    {"stringtable", WideText::Constant(u"stringtable"), WideText::Constant(u"<stringtable>"),
     WideText::Constant(u"</stringtable>")},
    {"versioninfo", WideText::Constant(u"versioninfo"), WideText::Constant(u"<versioninfo>"),
     WideText::Constant(u"</versioninfo>")},
};

} // namespace

std::unique_ptr<CTagLabelPiece> CResource::GroupTag(const char* groupName, bool open) {
    for (const GroupTexts& known : kGroups)
        if (known.group == groupName)
            return MakeStructuralTag(known.name, open ? known.open : known.close, open ? 0 : 1,
                                     open ? 1 : 0);
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
