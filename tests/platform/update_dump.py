"""Dumps a PE file's resources with pefile, one record a line, tab-separated:
R type name language code-page data-hex (stored order, "#5" for a number);
E a directory out of the loader's order, unaligned data or a header not 4.0
with time stamp 0; C checksum valid (0/1); O appended data; S security."""
import sys

import pefile


def text(k):
    return f"#{k[1]}" if k[0] == "id" else k[1]


def key(entry):
    if entry.name is not None:
        return ("name", entry.name.decode("utf-8"))
    return ("id", entry.id)



def check_order(directory, where, errors):
    entries = directory.entries
    named = directory.struct.NumberOfNamedEntries
    ids = directory.struct.NumberOfIdEntries
    if named + ids != len(entries):
        errors.append(f"{where}: counts {named}+{ids} for {len(entries)} entries")
    keys = [key(e) for e in entries]
    if any(k[0] != "name" for k in keys[:named]) or any(k[0] != "id" for k in keys[named:]):
        errors.append(f"{where}: named entries not first")
    names = [k[1].encode("utf-16le") for k in keys[:named]]
    units = [[int.from_bytes(n[i:i + 2], "little") for i in range(0, len(n), 2)] for n in names]
    if units != sorted(units) or len(set(map(tuple, units))) != len(units):
        errors.append(f"{where}: names not in code unit order")
    numbers = [k[1] for k in keys[named:]]
    if numbers != sorted(set(numbers)):
        errors.append(f"{where}: numbers not ascending")
    if directory.struct.MajorVersion != 4 or directory.struct.MinorVersion != 0 \
            or directory.struct.TimeDateStamp != 0:
        errors.append(f"{where}: header not 4.0 with time stamp 0")


def main():
    pe = pefile.PE(sys.argv[1])
    out = {"resources": [], "order_errors": []}
    root = getattr(pe, "DIRECTORY_ENTRY_RESOURCE", None)
    if root is not None:
        check_order(root, "root", out["order_errors"])
        for t in root.entries:
            check_order(t.directory, f"type {key(t)}", out["order_errors"])
            for n in t.directory.entries:
                check_order(n.directory, f"name {key(n)}", out["order_errors"])
                for lang in n.directory.entries:
                    d = lang.data.struct
                    if d.OffsetToData % 4:
                        out["order_errors"].append(f"data of {key(n)} not aligned to 4")
                    data = pe.get_data(d.OffsetToData, d.Size)
                    out["resources"].append(
                        f"R\t{text(key(t))}\t{text(key(n))}\t{lang.id}\t{d.CodePage}\t{data.hex()}")
    lines = out["resources"] + [f"E\t{e}" for e in out["order_errors"]]
    checksum = pe.OPTIONAL_HEADER.CheckSum
    lines.append(f"C\t{int(checksum == 0 or checksum == pe.generate_checksum())}")
    lines.append(f"O\t{(pe.get_overlay() or b'').hex()}")
    security = pe.OPTIONAL_HEADER.DATA_DIRECTORY[4]
    lines.append(f"S\t{security.VirtualAddress}\t{security.Size}")
    sys.stdout.write("".join(line + "\n" for line in lines))


main()
