#!/usr/bin/python3
"""usage: check_filter.py TERVANE FILE...

`extract --events --filter` must give the events of `extract --events` with
each tag named by the first keyword found in its text, each inline tag cut at
every backslash, plus, percent and ampersand, and nothing else changed.
Prints a line per file that differs, then "N files, M events, K differ".
"""
import json
import subprocess
import sys

KEYWORDS = ['resources', 'menus', 'dialogs', 'stringtable', 'versioninfo', 'menu', 'items',
            'item', 'shortcut', 'separator', 'dialog', 'radiobutton', 'button', 'groupbox',
            'label', 'combobox', 'checkbox', 'listbox', 'edit', 'caption', 'string',
            'comments', 'productversion', 'productname', 'legalcopyright', 'legaltrademarks']


def name_of(text):
    return next((word for word in KEYWORDS if word in text), text)


def placeholders(text):
    starts = [0] + [i for i in range(1, len(text)) if text[i] in '\\+%&']
    return [text[a:b] for a, b in zip(starts, starts[1:] + [len(text)])] or ['']


def expected(events):
    for event in events:
        if event['event'] != 'Tag':
            yield event
            continue
        text, start = event['text'], event['start']
        if 'separator' in text:
            start = 0
        if start == 0 and event['end'] == 0 and event['inline'] == 1:
            for run in placeholders(text):
                yield dict(event, text=run, name=run, start=0)
        else:
            yield dict(event, name=name_of(text), start=start)


def events_of(tervane, path, *options):
    run = subprocess.run([tervane, 'extract', '--no-scan', '--events', *options, path], capture_output=True)
    return run.returncode, [json.loads(line) for line in run.stdout.splitlines()]


def main():
    tervane, files = sys.argv[1], sys.argv[2:]
    count = differ = 0
    for path in files:
        status, before = events_of(tervane, path)
        filtered_status, after = events_of(tervane, path, '--filter')
        want = list(expected(before))
        count += len(want)
        if status != filtered_status or want != after:
            differ += 1
            at = next((i for i, (a, b) in enumerate(zip(want, after)) if a != b),
                      min(len(want), len(after)))
            print(f'{path}: exit {status}/{filtered_status}, {len(want)}/{len(after)} events, '
                  f'first difference at {at}: '
                  f'{want[at] if at < len(want) else None} != {after[at] if at < len(after) else None}')
    print(f'{len(files)} files, {count} events, {differ} differ')


if __name__ == '__main__':
    main()
