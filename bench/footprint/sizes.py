#!/usr/bin/env python3
"""sizes.py LIBRARY [LIMIT] - what the shared object is made of, as it is shipped, without its symbol table.

Bytes by section; code and read-only data, and the same without the text tables; relocation records. Exit
status 1: code and read-only data without the text tables are LIMIT bytes or more.
"""

import re
import subprocess
import sys

# Characters and their codes: data that a product without Chinese text would leave out.
TEXT_TABLES = ("kSimplifiedTexts", "kTraditionalTexts", "Unicode_GB2312", "JTFontlib", "FTFontlib")
CODE = (".init", ".plt", ".plt.got", ".plt.sec", ".text", ".fini")
READ_ONLY = (".rodata", ".eh_frame_hdr", ".eh_frame", ".ARM.exidx", ".ARM.extab")


def run(*command):
    return subprocess.run(command, capture_output=True, check=True, text=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout


def sections(library):
    """(name, number, bytes, flags) of what is loaded."""
    row = re.compile(r"\[\s*(\d+)\] (\S+)\s+\S+\s+[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+) \S+\s+(\w+)")
    found = [(name, number, int(size, 16), flags) for number, name, size, flags in row.findall(run("readelf", "-SW", library))]
    return [section for section in found if "A" in section[3]]


def tables(library):
    """Bytes of text tables by section number."""
    found = {}
    for line in run("readelf", "-sW", library).splitlines():
        fields = line.split()
        if len(fields) == 8 and fields[3] == "OBJECT" and re.search(r"(^|\d)(%s)(E|$)" % "|".join(TEXT_TABLES), fields[7]):
            found.setdefault(fields[6], {})[fields[1]] = int(fields[2], 0)
    return {number: sum(by_address.values()) for number, by_address in found.items()}


def main():
    library = sys.argv[1]
    limit = int(sys.argv[2]) if len(sys.argv) > 2 else None
    of_tables = tables(library)
    totals = {"code": 0, "read-only data": 0, "for the loader": 0, "data": 0, "zeroed": 0}
    without = 0
    print(f"{'section':20} {'bytes':>9} {'text tables':>12}")
    for name, number, size, flags in sections(library):
        text_tables = of_tables.get(number, 0)
        print(f"{name:20} {size:9} {text_tables or '':>12}")
        kind = "code" if name in CODE else "read-only data" if name in READ_ONLY else "for the loader"
        if "W" in flags:
            kind = "zeroed" if name == ".bss" else "data"
        totals[kind] += size
        without += size - text_tables if kind in ("code", "read-only data") else 0
    for kind, size in totals.items():
        print(f"{kind + ', total':20} {size:9}")
    print(f"code and read-only data: {totals['code'] + totals['read-only data']} bytes, {without} without text tables")
    records = len(re.findall(r"^[0-9a-f]{8,16} ", run("readelf", "-rW", library), re.M))
    print(f"relocation records: {records}")
    if limit is not None and without >= limit:
        print(f"sizes.py: {without} bytes of code and read-only data without text tables, not under {limit}", file=sys.stderr)
        return 1
    return 0


sys.exit(main())
