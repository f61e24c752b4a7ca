"""Checks the bilingual document of each PE file given.

check_xliff.py TERVANE SCHEMA WORKDIR [--write] FILE...

For every file whose extraction succeeds: `extract -o F.xlf` writes a document
that validates against the strict XLIFF 1.2 schema; `merge F.xlf --dry-run`
replays exactly the events of `extract --events` (identity); and after
`pseudo`, the replay has the same tags in the same order while the text of
every non-empty translatable segment has changed. With --write the writer
runs too: the untranslated document gives the same file as `merge --events`,
and the pseudo document a file whose extraction shows the same change.
Prints one line for each fault and a summary line.
"""
import json
import os
import subprocess
import sys

SEGMENTS = {"string", "comments", "legalcopyright", "productversion", "productname",
            "legaltrademarks", "item", "button", "label", "radiobutton", "checkbox", "caption"}


def run(args):
    return subprocess.run(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def events(text):
    out = []
    for line in text.decode("utf-8").splitlines():
        event = json.loads(line)
        if event["event"] != "Progress":
            out.append(event)
    return out


def segments(evs):
    """The texts and inline tags of each segment, as one string a segment."""
    found, current = [], None
    for event in evs:
        if event["event"] == "Tag" and not event["inline"]:
            if event["start"] and event["name"] in SEGMENTS:
                current = [event["name"], ""]
            elif event["start"] and event["name"] == "shortcut" and current:
                found.append(current[1])
                current = None
            elif event["end"] and current and event["name"] == current[0]:
                found.append(current[1])
                current = None
        elif current is not None:
            current[1] += event["text"]
    return found


def main():
    tervane, schema, work = sys.argv[1:4]
    files, faults, units, documents = sys.argv[4:], 0, 0, []
    write = files[:1] == ["--write"]
    files = files[1:] if write else files
    for index, path in enumerate(files):
        xlf = os.path.join(work, "%d.xlf" % index)
        pseudo = os.path.join(work, "%d.pseudo.xlf" % index)
        direct = run([tervane, "extract", "--no-scan", "--events", path])
        written = run([tervane, "extract", "--no-scan", "-o", xlf, path])
        if direct.returncode != 0:
            if written.returncode == 0:
                print("%s: a document of a file that fails to extract" % path)
                faults += 1
            continue
        if written.returncode != 0:
            print("%s: extract -o failed: %s" % (path, written.stderr.decode().strip()))
            faults += 1
            continue
        documents.append(xlf)
        source = events(direct.stdout)
        replay = run([tervane, "merge", "--no-scan", xlf, "--dry-run"])
        if replay.returncode != 0 or events(replay.stdout) != source:
            print("%s: the replay differs from extract --events: %s" %
                  (path, replay.stderr.decode().strip()))
            faults += 1
            continue
        if run([tervane, "pseudo", xlf, "-o", pseudo]).returncode != 0:
            print("%s: pseudo failed" % path)
            faults += 1
            continue
        replay = run([tervane, "merge", "--no-scan", pseudo, "--dry-run"])
        changed = events(replay.stdout) if replay.returncode == 0 else []
        tags = [e for e in source if e["event"] == "Tag"]
        if replay.returncode != 0 or [e for e in changed if e["event"] == "Tag"] != tags:
            print("%s: pseudo changed a tag: %s" % (path, replay.stderr.decode().strip()))
            faults += 1
            continue
        if write:
            direct_out, xliff_out = os.path.join(work, "direct.dll"), os.path.join(work, "x.dll")
            with open(os.path.join(work, "events"), "wb") as out:
                out.write(direct.stdout)
            a = run([tervane, "merge", "--no-scan", "--events", os.path.join(work, "events"), "--source",
                     path, "--lang", "de-DE", "-o", direct_out])
            b = run([tervane, "merge", "--no-scan", xlf, "--lang", "de-DE", "-o", xliff_out])
            if a.returncode != 0 or b.returncode != 0 or \
                    open(direct_out, "rb").read() != open(xliff_out, "rb").read():
                print("%s: merge from the document differs from merge --events: %s" %
                      (path, b.stderr.decode().strip()))
                faults += 1
                continue
            b = run([tervane, "merge", "--no-scan", pseudo, "--lang", "de-DE", "-o", xliff_out])
            written = run([tervane, "extract", "--no-scan", "--events", xliff_out])
            if b.returncode != 0 or written.returncode != 0:
                print("%s: the pseudo document did not merge: %s" %
                      (path, b.stderr.decode().strip()))
                faults += 1
                continue
            changed = events(written.stdout)
            if [e for e in changed if e["event"] == "Tag"] != tags:
                print("%s: the merged pseudo file has other tags" % path)
                faults += 1
                continue
        before, after = segments(source), segments(changed)
        units += len(before)
        # Shortcuts, which keep their text, are no segments of their own here.
        same = [b for b, a in zip(before, after) if b == a and b.strip() != ""]
        if len(before) != len(after) or same:
            print("%s: pseudo left %d texts as they were, e.g. %r" %
                  (path, len(same), same[:3]))
            faults += 1
    for start in range(0, len(documents), 200):
        check = run(["xmllint", "--noout", "--schema", schema] + documents[start:start + 200])
        if check.returncode != 0:
            for line in check.stderr.decode().splitlines():
                if not line.endswith(" validates"):
                    print(line)
                    faults += 1
    print("%d files, %d documents, %d segments, %d faults" %
          (len(files), len(documents), units, faults))


main()
