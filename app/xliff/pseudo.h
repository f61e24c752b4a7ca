#pragma once
// Pseudo-localisation: a target that looks translated and shows what a
// translation would break. Letters become accented look-alikes of the
// target's ANSI code pages of Western Europe, the text grows by a share of
// its length, and brackets show where a control cuts it. Placeholders, the
// hotkey mark and its letter stay as they are. The same source always gives
// the same target.
#include "app/xliff/document.h"

namespace tervane::xliff {

// expandPercent: how much longer the text grows, in percent of its letters.
Content Pseudo(const Content& source, int expandPercent);

// A pseudo target for every unit the translator may change; the others keep
// theirs.
void PseudoLocalise(Document& document, int expandPercent);

// Each target the translator may change a copy of its source, marked as still
// to translate: some tools translate the target in place.
void CopySourceToTarget(Document& document);

} // namespace tervane::xliff
