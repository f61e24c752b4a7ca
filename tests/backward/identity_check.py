#!/usr/bin/python3
"""usage: identity_check.py TERVANE LANG FILE...

Extracts each FILE, merges its events unchanged into the language LANG, and
checks the result: the merge succeeds; every menu, dialog, string block and
version block (and the dialog init data of a dialog) stands under LANG alone,
one for each name of the source; every other resource keeps its bytes;
python3-pefile and windres read the file; and extracting it gives the events
of the source (the progress lines aside). Where the source holds one resource
in several languages, the last written wins, so there the output's own events
must come back unchanged through a second merge. Prints a line for each file
that differs, then "N files, K differ".
"""
import json
import os
import subprocess
import sys
import tempfile

import pefile

LOCALISABLE = {4, 5, 6, 16}


def run(args):
    return subprocess.run(args, capture_output=True)


def resources(path):
    """(type, name, lang) -> bytes, through pefile."""
    pe = pefile.PE(path)
    found = {}
    if not hasattr(pe, 'DIRECTORY_ENTRY_RESOURCE'):
        return found
    for rtype in pe.DIRECTORY_ENTRY_RESOURCE.entries:
        tid = rtype.id if rtype.id is not None else str(rtype.name)
        for name in rtype.directory.entries:
            nid = name.id if name.id is not None else str(name.name)
            for lang in name.directory.entries:
                data = lang.data.struct
                found[(tid, nid, lang.id)] = pe.get_data(data.OffsetToData, data.Size)
    return found


def events(tervane, path):
    done = run([tervane, 'extract', '--no-scan', '--events', path])
    if done.returncode != 0:
        return None
    return [l for l in done.stdout.decode('utf-8', 'surrogatepass').splitlines()
            if '"Progress"' not in l]


def localisable(key, dialogs):
    return key[0] in LOCALISABLE or (key[0] == 240 and key[1] in dialogs)



def linked(path, work):
    """A link to path in work: the writer makes its work file beside the source
    it is given, and the source's own folder may be a system folder."""
    link = os.path.join(work, 'source' + os.path.splitext(path)[1])
    if not os.path.lexists(link):
        os.symlink(os.path.abspath(path), link)
    return link

def check(tervane, lang, path, work):
    source_events = events(tervane, path)
    if source_events is None:
        return 'the source does not extract'
    with open(os.path.join(work, 'src.jsonl'), 'w', encoding='utf-8', errors='surrogatepass') as f:
        f.write('\n'.join(source_events) + '\n')
    out = os.path.join(work, 'out' + os.path.splitext(path)[1])
    merged = run([tervane, 'merge', '--no-scan', '--events', os.path.join(work, 'src.jsonl'), '--source',
                  linked(path, work), '--lang', str(lang), '-o', out])
    if merged.returncode != 0:
        return 'merge failed: ' + merged.stderr.decode('utf-8', 'replace').strip()
    try:
        before, after = resources(path), resources(out)
    except pefile.PEFormatError as error:
        return 'pefile: %s' % error
    if run(['x86_64-w64-mingw32-windres', '-i', out, '-O', 'rc', '-o', os.devnull]).returncode:
        return 'windres cannot read the output'
    dialogs = {k[1] for k in before if k[0] == 5}
    names = {(t, n) for (t, n, l) in before if localisable((t, n, l), dialogs)}
    out_names = {(t, n) for (t, n, l) in after if localisable((t, n, l), dialogs)}
    if names != out_names:
        return 'localisable resources differ: %s' % sorted(map(str, names ^ out_names))[:5]
    stray = [k for k in after if localisable(k, dialogs) and k[2] != lang]
    if stray:
        return 'left under another language: %s' % stray[:5]
    kept_before = {k: v for k, v in before.items() if not localisable(k, dialogs)}
    kept_after = {k: v for k, v in after.items() if not localisable(k, dialogs)}
    if kept_before != kept_after:
        return 'other resources changed: %s' % sorted(
            str(k) for k in set(kept_before) ^ set(kept_after)
            | {k for k in kept_before if kept_after.get(k) != kept_before[k]})[:5]
    out_events = events(tervane, out)
    if out_events is None:
        return 'the output does not extract'
    several = len({(t, n, l) for (t, n, l) in before if localisable((t, n, l), dialogs)}) != len(names)
    if not several:
        if out_events != source_events:
            at = next(i for i, (a, b) in enumerate(zip(out_events + [''], source_events + ['']))
                      if a != b)
            return 'events differ at %d: %s / %s' % (at, source_events[at:at + 1],
                                                     out_events[at:at + 1])
        return None
    with open(os.path.join(work, 'out.jsonl'), 'w', encoding='utf-8', errors='surrogatepass') as f:
        f.write('\n'.join(out_events) + '\n')
    again = os.path.join(work, 'again' + os.path.splitext(path)[1])
    merged = run([tervane, 'merge', '--no-scan', '--events', os.path.join(work, 'out.jsonl'), '--source', out,
                  '--lang', str(lang), '-o', again])
    if merged.returncode != 0:
        return 'second merge failed: ' + merged.stderr.decode('utf-8', 'replace').strip()
    if events(tervane, again) != out_events:
        return 'the output does not come back through a second merge'
    return None


def main():
    tervane, lang, files = sys.argv[1], int(sys.argv[2], 0), sys.argv[3:]
    differ = 0
    for path in files:
        with tempfile.TemporaryDirectory() as work:
            why = check(tervane, lang, path, work)
        if why:
            differ += 1
            print('%s: %s' % (path, why))
    print('%d files, %d differ' % (len(files), differ))


if __name__ == '__main__':
    main()
