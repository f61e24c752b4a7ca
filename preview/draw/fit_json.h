#pragma once
// The fit check as one JSON object: the base units, every control's drawn
// rectangle in the picture, and the findings.
#include <iosfwd>
#include <vector>

#include "preview/draw/fit_check.h"
#include "preview/draw/picture.h"
#include "preview/draw/previewer_run.h"

namespace tervane::preview {

void WriteFitJson(std::ostream& out, const PreviewerOptions& options, const DialogScene& scene,
                  const DialogFrame& frame, const std::vector<FitFinding>& findings);

} // namespace tervane::preview
