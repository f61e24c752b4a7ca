#include "backward/resource_updater.h"

#include "backward/text_format.h"
#include "backward/visitor_factory.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/trace.h"
#include "model/dialog_resource.h"
#include "model/dlginit_resource.h"
#include "model/dlginit_table.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

void TraceLine(const char* format, const std::string& identifier) {
    Trace(FormatText(format, identifier.c_str()));
}

// O, a new empty object of S's class, takes its pieces from the stream and
// gives them to S.
template <typename Model> void MergeInto(Model& source, Model& fresh, CPieceStream& stream) {
    fresh.identifierText = source.identifierText;
    fresh.ExtractPieces(stream);
    source.MergePieces(fresh);
}

} // namespace

HRESULT CResourceUpdater::Initialise(const std::u16string& target, LONG language) {
    Trace("\n\n########### Backward conversion started ###########\n\n");
    g_targetLanguage = static_cast<DWORD>(language);
    targetLanguage = static_cast<DWORD>(language);
    targetPath = target;
    Trace(FormatText("\n\n\nFile %s is selected for dest file.\n", Narrow(targetPath).c_str()));
    errorText.clear();
    report.clear();
    return S_OK;
}

void CResourceUpdater::MergeTranslations(CResource& resource) {
    const std::string& id = resource.identifierText;
    if (auto* block = dynamic_cast<CStringBlockResource*>(&resource)) {
        TraceLine("String resource id = %s is copying translated items.......\n", id);
        CStringBlockResource fresh;
        MergeInto(*block, fresh, pieces);
        TraceLine("String resource id = %s is copied translated items.\n", id);
        DeleteSourceResource(kStringType, id, resource.language);
    } else if (auto* dialog = dynamic_cast<CDialogResource*>(&resource)) {
        TraceLine("Dialog resource id = %s is copying translated items.......\n", id);
        const bool skipped = dialog->dialogs.empty() || dialog->dialogs.front()->skipped != 0;
        if (!skipped) {
            CDialogResource fresh;
            MergeInto(*dialog, fresh, pieces);
        }
        TraceLine("Dialog resource id = %s is copyied translated items.\n", id);
        DeleteSourceResource(kDialogType, id, resource.language);
        if (CDlgInitTable::GetInstance().Find(id) != nullptr)
            DeleteSourceResource(kDlgInitType, id, resource.language);
    } else if (auto* menu = dynamic_cast<CMenuResource*>(&resource)) {
        TraceLine("Menu resource id = %s is copying translated items.......\n", id);
        CMenuResource fresh;
        fresh.plainVersion = menu->plainVersion;
        fresh.plainHeaderSize = menu->plainHeaderSize;
        MergeInto(*menu, fresh, pieces);
        TraceLine("Menu resource id = %s is copyied translated items.\n", id);
        DeleteSourceResource(kMenuType, id, resource.language);
    } else if (auto* version = dynamic_cast<CVersionInfoResource*>(&resource)) {
        TraceLine("VersionInfo resource id = %s is copying translated items.......\n", id);
        if (version->hasValues != 0) {
            CVersionInfoResource fresh;
            MergeInto(*version, fresh, pieces);
        }
        TraceLine("VersionInfo resource id = %s is copyied translated items.\n", id);
        DeleteSourceResource(kVersionType, id, resource.language);
    }
}

void CResourceUpdater::RebuildResource(CResource& resource) {
    // Dialog init data goes out with its dialog.
    if (dynamic_cast<CDlgInitResource*>(&resource) != nullptr)
        return;
    std::unique_ptr<CResourceVisitor> visitor = CreateVisitor(kUpdateVisitorKind);
    visitor->workPath = workPath;
    resource.Accept(*visitor);
    const std::string& id = resource.identifierText;
    if (dynamic_cast<CStringBlockResource*>(&resource) != nullptr)
        TraceLine("String resource id = %s is Updated.\n", id);
    else if (dynamic_cast<CDialogResource*>(&resource) != nullptr)
        TraceLine("Dialog resource id = %s is Updated.\n", id);
    else if (dynamic_cast<CMenuResource*>(&resource) != nullptr)
        TraceLine("Menu resource id = %s is Updated.\n", id);
    else if (dynamic_cast<CVersionInfoResource*>(&resource) != nullptr)
        TraceLine("VersionInfo resource id = %s is Updated.\n", id);
}

int CResourceUpdater::UpdateResources(ResourceRefs resources, int mode) {
    Trace("Backward conversion is started.....\n");
    g_messages.clear();
    g_writerMode = static_cast<DWORD>(mode);

    Trace("Verification is started.......\n");
    CResourceVerifier verifier;
    verifier.VerifyTagStructure(resources, pieces);
    Trace("Verification has been done.\n");

    if (mode == 1)
        CreateTemporaryFile();
    else if (mode == 0)
        CreateDestinationFile();

    // Every deletion comes before the first addition: between the two loops
    // the work file holds no localisable resource of the source language.
    Trace("Copying all the translated items to the buffer......\n");
    for (CResource* resource : resources) {
        resource->targetLanguage = static_cast<WORD>(targetLanguage & 0xFFFF);
        if (pieces.empty())
            break;
        MergeTranslations(*resource);
    }

    Trace("Copied all the resources.\n\n\t\t###Updating all the resources to destination exe###\n");
    for (CResource* resource : resources) {
        RebuildResource(*resource);
        std::u16string first;
        if (!CheckFirstMessage(first).empty() && mode == 1)
            break;
    }
    Trace("Updated all the resources to destination exe.\n");

    CollectMessages(verifier.messages());
    if (mode == 1)
        MoveTemporaryFile();
    Trace("\n\n########### Backward conversion finished#########\n\n");
    return 0;
}

std::u16string CResourceUpdater::CheckFirstMessage(std::u16string& out) {
    out.clear();
    if (g_messages.size() != 1)
        return out;
    errorText.clear();
    if (g_messages.front().find(u"Error") != std::u16string::npos) {
        errorText = g_messages.front();
        RemoveTemporaryFile();
        out = g_messages.front();
    }
    return out;
}

void CResourceUpdater::CollectMessages(const std::u16string& verifierMessages) {
    report.clear();
    report += verifierMessages;
    for (const std::u16string& message : g_messages)
        report += message;
    if (!report.empty())
        report += Widen(kVerificationTrailer);
}

} // namespace tervane
