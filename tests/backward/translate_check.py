#!/usr/bin/python3
"""usage: translate_check.py TERVANE LANG FILE...

A deterministic pseudo-translation of every translatable text of each FILE's document
(vowels accented, about 40% longer; tags, and so placeholders, hotkey marks
and the text of shortcuts, kept) is merged into the language LANG; extracting
the result must give the translated document. Files that hold one resource in
several languages are passed over. Prints a line for each file that differs,
then "N files, K differ".
"""
import json
import os
import subprocess
import sys
import tempfile

ACCENTS = str.maketrans('aeiouAEIOU', 'áéíóúÁÉÍÓÚ')


def pseudo(text):
    # A caption's hotkey mark comes as a text of its own.
    if not text.strip() or text == '&':
        return text
    return text.translate(ACCENTS) + '·' * max(1, (len(text) * 2 + 4) // 5)


def events(tervane, path):
    done = subprocess.run([tervane, 'extract', '--no-scan', '--events', path], capture_output=True)
    if done.returncode != 0:
        return None
    return [json.loads(l) for l in done.stdout.decode('utf-8').splitlines()
            if '"Progress"' not in l]


# The elements whose text is a segment of the host's; the text of any other
# (an edit control, a combo box's own title) does not go back.
SEGMENTS = {'string', 'item', 'button', 'label', 'radiobutton', 'checkbox', 'caption', 'comments',
            'legalcopyright', 'productversion', 'productname', 'legaltrademarks'}


def translated(document):
    out, in_segment, in_shortcut = [], False, False
    for event in document:
        event = dict(event)
        if event['event'] == 'Tag' and event['name'] == 'shortcut':
            in_shortcut = event['start'] == 1
        elif event['event'] == 'Tag' and event['name'] in SEGMENTS and not event['inline']:
            in_segment = event['start'] == 1
        elif event['event'] == 'Text' and in_segment and not in_shortcut:
            event['text'] = pseudo(event['text'])
        out.append(event)
    return out


def single_language(tervane, path):
    done = subprocess.run([tervane, 'list', '--json', path], capture_output=True)
    seen = set()
    for line in done.stdout.decode('utf-8').splitlines():
        entry = json.loads(line)
        if entry['type'] in (4, 5, 6, 16):
            key = (entry['type'], entry['name'])
            if key in seen:
                return False
            seen.add(key)
    return True



def linked(path, work):
    """A link to path in work: the writer makes its work file beside the source
    it is given, and the source's own folder may be a system folder."""
    link = os.path.join(work, 'source' + os.path.splitext(path)[1])
    if not os.path.lexists(link):
        os.symlink(os.path.abspath(path), link)
    return link

def check(tervane, lang, path, work):
    document = events(tervane, path)
    if document is None:
        return 'the source does not extract'
    wanted = translated(document)
    with open(os.path.join(work, 'ev.jsonl'), 'w', encoding='utf-8') as f:
        for event in wanted:
            f.write(json.dumps(event, ensure_ascii=False) + '\n')
    out = os.path.join(work, 'out.dll')
    merged = subprocess.run([tervane, 'merge', '--no-scan', '--events', os.path.join(work, 'ev.jsonl'),
                             '--source', linked(path, work), '--lang', str(lang), '-o', out],
                            capture_output=True)
    if merged.returncode != 0:
        return 'merge failed: ' + merged.stderr.decode('utf-8', 'replace').strip()
    got = events(tervane, out)
    if got != wanted:
        at = next(i for i, (a, b) in enumerate(zip(got + [None], wanted + [None])) if a != b)
        return 'differs at event %d: got %s, wanted %s' % (at, got[at:at + 1], wanted[at:at + 1])
    return None


def main():
    tervane, lang, files = sys.argv[1], int(sys.argv[2], 0), sys.argv[3:]
    checked = differ = 0
    for path in files:
        if not single_language(tervane, path):
            continue
        checked += 1
        with tempfile.TemporaryDirectory() as work:
            why = check(tervane, lang, path, work)
        if why:
            differ += 1
            print('%s: %s' % (path, why))
    print('%d files, %d differ' % (checked, differ))


if __name__ == '__main__':
    main()
