#!/usr/bin/python3
"""Prints the resources of a PE file as `tervane list --json` does, read by
python3-pefile: an independent reader of the resource directory."""
import json
import re
import sys

import pefile


def json_string(text):
    # Lone surrogates as escapes, which json.dumps would leave raw.
    return re.sub('[\ud800-\udfff]', lambda m: '\\u%04x' % ord(m.group()),
                  json.dumps(text, ensure_ascii=False))


def main(path):
    pe = pefile.PE(path, fast_load=True)
    pe.parse_data_directories(directories=[pefile.DIRECTORY_ENTRY['IMAGE_DIRECTORY_ENTRY_RESOURCE']])
    if not hasattr(pe, 'DIRECTORY_ENTRY_RESOURCE'):
        return
    base = pe.OPTIONAL_HEADER.DATA_DIRECTORY[2].VirtualAddress

    def ident(entry):
        # The name's UTF-16 units exactly as stored, read here rather than
        # through pefile's own decoding.
        if entry.struct.Name & 0x80000000:
            at = base + (entry.struct.Name & 0x7FFFFFFF)
            length = pe.get_word_at_rva(at)
            units = pe.get_data(at + 2, 2 * length)
            return json_string(units.decode('utf-16le', 'surrogatepass'))
        return str(entry.struct.Name & 0xFFFF)

    out = sys.stdout.buffer
    for rtype in pe.DIRECTORY_ENTRY_RESOURCE.entries:
        for name in rtype.directory.entries:
            for lang in name.directory.entries:
                line = '{"type": %s, "name": %s, "lang": %d, "size": %d}\n' % (
                    ident(rtype), ident(name), lang.struct.Name & 0xFFFF, lang.data.struct.Size)
                out.write(line.encode('utf-8', 'surrogatepass'))


if __name__ == '__main__':
    main(sys.argv[1])
