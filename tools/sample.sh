#!/usr/bin/env bash
# Sets up, builds, and runs the whole job on a built-in sample program: its
# resources, the bilingual document (XLIFF 1.2), a pseudo-translation of it, the
# translated executable merged from it, that file's resources and texts, and a
# picture of its dialog as Windows would lay it out. Everything goes into a
# temporary folder, which is named at the end.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/tools/setup.sh"
bash "$root/tools/build.sh" "$root/build"
tervane="$root/build/tervane"
# wine_probe: strings, a menu with a pop-up and a shortcut, a dialog. (sample.rc
# holds a string block in two languages on purpose, which the scanner refuses.)
work=$(mktemp -d)
cp "$root/build/fixtures/wine_probe.x64.dll" "$work/app.dll"
cd "$work"
run() { echo; echo "== tervane $*"; "$tervane" "$@"; }
run scan app.dll
run list app.dll
run extract app.dll -o app.xlf --target-lang de-DE
run pseudo app.xlf -o app.pseudo.xlf
run stats app.pseudo.xlf
run verify app.pseudo.xlf --source app.dll
run merge app.pseudo.xlf -o app.de.dll
run list app.de.dll
run extract app.de.dll
echo
echo "== TervanePreviewer: dialog 102 of app.de.dll"
"$root/build/TervanePreviewApp/TervanePreviewer" ?fp app.de.dll ?rd dialog ?rid 102 \
    --png dialog.de.png --svg dialog.de.svg --fit-json
echo
echo "The files are in $work (app.xlf, app.pseudo.xlf, app.de.dll, dialog.de.png)."
