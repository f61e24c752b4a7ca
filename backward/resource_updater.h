#pragma once
// The backward engine: it gathers the translated stream as pieces, and at the
// end of the stream verifies them against the source's model, merges them in,
// has each resource rebuilt under the target language in a work file beside
// the source, and puts the work file in the target's place.
#include <string>
#include <vector>

#include "backward/resource_verifier.h"
#include "frame/resource.h"
#include "label/pieces/label_piece.h"
#include "platform/com/hresult.h"
#include "platform/win32/types.h"

namespace tervane {

class CResourceUpdater {
public:
    // Stores them; S_OK.
    HRESULT Initialise(const std::u16string& targetPath, LONG language);
    void SetSourceFile(const std::u16string& path) { sourcePath = path; }

    // Runs verification, merging, rebuilding and the file update; mode 1 is a
    // final conversion, 0 a preview. 0; failures leave as exceptions.
    int UpdateResources(ResourceRefs resources, int mode);

    // A copy of the source beside it, under the prefix "~zelkor.update.N.".
    // 0, or the last error of the copy.
    int CreateTemporaryFile();
    // A preview writes straight into the target. 0, or the last error.
    int CreateDestinationFile();
    // The work file onto the target, with the source's read-only mark.
    void MoveTemporaryFile();
    // 0, or 1 when the search for the work file reported an error.
    int RemoveTemporaryFile();
    // 0, or 1 when a Win32 call failed.
    int DeleteSourceResource(WORD type, const std::string& identifier, WORD language);
    // The first message of the run, if it is the only one and an Error: the
    // work file is removed and the text given back. Else the empty text.
    std::u16string CheckFirstMessage(std::u16string& out);
    // Joins the verifier's messages and those of the run into report.
    void CollectMessages(const std::u16string& verifierMessages);

    CPieceStream pieces;
    std::u16string errorText;
    DWORD targetLanguage = 0;
    std::u16string sourcePath;
    std::u16string targetPath;
    std::u16string report;
    std::u16string workPath;

private:
    void MergeTranslations(CResource& resource);
    void RebuildResource(CResource& resource);
};

} // namespace tervane
