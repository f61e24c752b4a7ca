#!/usr/bin/python3
"""usage: check_texts.py TERVANE FILE...

Every text of the dialogs, menus, string tables and version values that an
independent reader (python3-pefile and the template layouts) finds must come
out of `tervane extract --events` exactly once. Texts compare by their letters
and digits only: escapes, hotkey marks and placeholders become tags. Prints a
line per file that differs, then "N files, M texts, K differ".
"""
import collections
import json
import struct
import subprocess
import sys

import pefile

KNOWN_CLASSES = {0x80, 0x81, 0x82, 0x83, 0x85}
VERSION_KEYS = ['comments', 'companyname', 'filedescription', 'fileversion', 'internalname',
                'legalcopyright', 'legaltrademarks', 'originalfilename', 'productname',
                'productversion']
OFFERED = {'comments', 'legalcopyright', 'legaltrademarks', 'productname', 'productversion'}


def loose(text):
    return ''.join(ch for ch in text if ch.isalnum())


def escaped(text, controls='\r\n\b\f'):
    """The control characters in the two-character form that the document shows."""
    names = {'\r': 'r', '\n': 'n', '\b': 'b', '\f': 'f', '\t': 't'}
    return ''.join('\\' + names[ch] if ch in controls else ch for ch in text)


class Reader:
    def __init__(self, data):
        self.data, self.at = data, 0

    def u16(self):
        self.at += 2
        return struct.unpack_from('<H', self.data, self.at - 2)[0]

    def wide(self):
        end = self.at
        while struct.unpack_from('<H', self.data, end)[0]:
            end += 2
        text = self.data[self.at:end].decode('utf-16-le', 'surrogatepass')
        self.at = end + 2
        return text

    def name_or_ordinal(self):
        """(text, ordinal): text None for an ordinal or an empty field."""
        first = struct.unpack_from('<H', self.data, self.at)[0]
        if first == 0xFFFF:
            self.at += 2
            return None, self.u16()
        if first == 0:
            self.at += 2
            return None, 0
        return self.wide(), 0

    def align(self):
        self.at = (self.at + 3) & ~3


def dialog_texts(data):
    r = Reader(data)
    extended = struct.unpack_from('<I', data, 0)[0] == 0xFFFF0001
    style = struct.unpack_from('<I', data, 12 if extended else 0)[0]
    r.at = 16 if extended else 8
    count = r.u16()
    r.at += 8
    r.name_or_ordinal()  # menu
    r.name_or_ordinal()  # class
    title = r.wide() if struct.unpack_from('<H', data, r.at)[0] else (r.u16() and None)
    if style & 0x48:
        r.u16()
        r.at += 4 if extended else 0
        r.wide()
    r.align()
    texts = [escaped(title[:256])] if title else []
    for _ in range(count):
        r.at += 24 if extended else 18
        class_name, class_ordinal = r.name_or_ordinal()
        control_title, _ = r.name_or_ordinal()
        extra = r.u16()
        r.at += extra
        r.align()
        if class_name is None and class_ordinal in KNOWN_CLASSES and control_title:
            texts.append(escaped(control_title[:256]))
    return texts


def menu_texts(data):
    r = Reader(data)
    extended = r.u16() == 1
    r.at = 4 + r.u16()  # behind the header, or at its offset
    texts = []

    def level():
        while True:
            r.at += 12 if extended else 0
            flags = r.u16()
            popup = flags & (1 if extended else 0x10)
            if not extended and not popup:
                r.u16()
            texts.append(r.wide())
            if extended:
                r.align()
                r.at += 4 if popup else 0
            if popup:
                level()
            if flags & 0x80:
                return
    level()
    return [escaped(t, '\r\n\b\f\t') for t in texts if t]


def version_texts(data):
    """The five values of the first string table, by normalised key, last one winning."""
    values = {}

    def walk(at, end, depth):
        while at + 6 <= end:
            length, value_length, kind = struct.unpack_from('<HHH', data, at)
            if length < 6:
                return
            r = Reader(data)
            r.at = at + 6
            key = r.wide()
            r.align()
            child = r.at
            if depth == 0:
                walk(child + value_length, at + length, 1)
                return
            if depth == 1 and key == 'StringFileInfo':
                walk(child, at + length, 2)
            elif depth == 2:
                walk(child, at + length, 3)
                return  # the first table only
            elif depth == 3 and value_length > 1:
                value = data[child:child + 2 * value_length].decode('utf-16-le', 'surrogatepass')
                value = value.split('\0')[0]
                lower = key.lower()
                name = next((n for n in VERSION_KEYS if n in lower), key)
                values[name] = value
            at = (at + length + 3) & ~3

    walk(0, len(data), 0)
    # Carriage return shows as the tag \\n and line feed as \\r.
    swap = {'\r': '\\n', '\n': '\\r'}
    return [''.join(swap.get(ch, ch) for ch in v) for k, v in values.items()
            if k in OFFERED and v]


def string_texts(data):
    texts, at = [], 0
    while at + 2 <= len(data):
        (length,) = struct.unpack_from('<H', data, at)
        texts.append(data[at + 2:at + 2 + 2 * length].decode('utf-16-le', 'surrogatepass'))
        at += 2 + 2 * length
    return [escaped(t.split('\0')[0]) for t in texts if t]


READERS = {4: menu_texts, 5: dialog_texts, 6: string_texts, 16: version_texts}


def source_texts(path):
    pe = pefile.PE(path, fast_load=True)
    pe.parse_data_directories(
        directories=[pefile.DIRECTORY_ENTRY['IMAGE_DIRECTORY_ENTRY_RESOURCE']])
    texts = []
    root = getattr(pe, 'DIRECTORY_ENTRY_RESOURCE', None)
    for rtype in root.entries if root else []:
        if rtype.struct.Name & 0x80000000 or rtype.id not in READERS:
            continue
        for name in rtype.directory.entries:
            for lang in name.directory.entries:
                data = pe.get_data(lang.data.struct.OffsetToData, lang.data.struct.Size)
                texts += READERS[rtype.id](data)
    return texts


def document_texts(tervane, path):
    run = subprocess.run([tervane, 'extract', '--no-scan', '--events', path], capture_output=True)
    if run.returncode != 0:
        return None, run.stderr.decode(errors='replace').strip()
    texts, current, group = [], None, None
    for line in run.stdout.decode('utf-8', 'surrogatepass').splitlines():
        event = json.loads(line)
        if event['event'] == 'Text':
            if current is not None:
                current.append(event['text'])
        elif event['event'] == 'Tag':
            if event['inline']:
                if current is not None:
                    current.append(event['text'])
            elif event['name'] == 'shortcut':
                # The tab before a menu item's shortcut stands as this tag.
                if event['start'] and current is not None:
                    current.append('\\t')
            elif event['name'] in ('menus', 'dialogs', 'stringtable', 'versioninfo'):
                group = event['name']
                current = None
            elif event['start']:
                current = [] if not (group == 'dialogs' and event['name'] == 'item') else None
            elif event['end']:
                if current is not None:
                    texts.append(''.join(current))
                current = None
    return texts, None


def main(tervane, paths):
    files = total = differ = 0
    for path in paths:
        expected = collections.Counter(t for t in map(loose, source_texts(path)) if t)
        found, error = document_texts(tervane, path)
        files += 1
        total += sum(expected.values())
        if found is None:
            differ += 1
            print(f'{path}: {error}')
            continue
        found = collections.Counter(t for t in map(loose, found) if t)
        if found != expected:
            differ += 1
            missing = list((expected - found).elements())[:3]
            extra = list((found - expected).elements())[:3]
            print(f'{path}: missing {missing} extra {extra}')
    print(f'{files} files, {total} texts, {differ} differ')


if __name__ == '__main__':
    main(sys.argv[1], sys.argv[2:])
