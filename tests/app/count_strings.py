#!/usr/bin/python3
"""Prints, for each PE file named, the number of non-empty strings in its
string tables over all blocks and languages, read by python3-pefile."""
import struct
import sys

import pefile


def count(path):
    pe = pefile.PE(path, fast_load=True)
    pe.parse_data_directories(directories=[pefile.DIRECTORY_ENTRY['IMAGE_DIRECTORY_ENTRY_RESOURCE']])
    total = 0
    if not hasattr(pe, 'DIRECTORY_ENTRY_RESOURCE'):
        return 0
    for rtype in pe.DIRECTORY_ENTRY_RESOURCE.entries:
        if rtype.struct.Name & 0x80000000 or rtype.id != 6:
            continue
        for name in rtype.directory.entries:
            for lang in name.directory.entries:
                data = pe.get_data(lang.data.struct.OffsetToData, lang.data.struct.Size)
                at = 0
                while at + 2 <= len(data):
                    (length,) = struct.unpack_from('<H', data, at)
                    at += 2 + 2 * length
                    total += 1 if length else 0
    return total


for path in sys.argv[1:]:
    print(path, count(path))
