#!/usr/bin/env python3
"""Make the character tables of src/text.

Usage: make_text_tables.py          write src/text/unicode_gb2312_table.cpp and font_tables.cpp
       make_text_tables.py --check  write nothing; fail when a checked-in file differs

Inputs, all of Debian 12:
  GB2312 <-> Unicode   Python's own codec "gb2312" (the standard's 682 symbols and 6763 hanzi),
                       confirmed character by character by the C library's iconv
  traditional forms    OpenCC 1.1.6, dictionary STCharacters (package libopencc-data), unpacked
                       with opencc_dict (package opencc); its first choice is taken
  what a simplified    Unihan 15.0, field kTraditionalVariant (package unicode-data)
  form stands for
  what traditional     Python's own codec "big5": its first level, 0xA440-0xC67E, holds the
  text uses daily      characters in frequent use

Whatever departs from the dictionary's first choice stands below in KEPT or SHARED with its reason.
Every count is checked, and nothing is written when one is off.
"""

import argparse
import bz2
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
OPENCC_DICTIONARY = "/usr/share/opencc/STCharacters.ocd2"
UNIHAN_VARIANTS = "/usr/share/unicode/Unihan_Variants.txt.bz2"

SYMBOLS = 682
HANZI = 6763
FIRST_LEVEL = 3755
PAIRS = 3754
DIFFERENT_PAIRS = 1298

# The one first-level hanzi that the lists leave out.
LEFT_OUT = "恰"

# Simplified characters that traditional text keeps, although the dictionary's first choice is
# another. They share two marks, which are checked: Unihan knows no traditional variant of them
# (they are variants of one character, not a character and its simplification), and they stand in
# the first level of Big5 themselves.
KEPT = {
    "吃": "to eat; 喫 is a literary variant",
    "痴": "foolish; 癡 is a variant",
    "床": "bed; 牀 is a variant that Big5 lacks",
    "唇": "lip; 脣 is a variant",
    "峰": "peak; 峯 is a variant that Big5 lacks",
    "杠": "bar; 槓 is a character beside it",
    "雇": "to hire; 僱 is a variant",
    "秘": "secret; 祕 is a variant",
    "群": "group; 羣 is a variant that Big5 lacks",
    "虱": "louse; 蝨 is a variant",
    "托": "to hold up; 託 (to entrust) is a character beside it",
    "凶": "ill-boding; 兇 (cruel) is a character beside it",
    "岩": "rock; 巖 is a variant",
    "涌": "to well up; 湧 is a variant",
    "游": "to swim; 遊 (to travel) is a character beside it",
    "岳": "high mountain; 嶽 is a variant",
    "皂": "soap; 皁 is a rare variant",
    "占": "to divine; 佔 (to occupy) is a character beside it",
    "咨": "official note; 諮 (to consult) is a character beside it",
}

# Traditional forms that stand at two indices: the other simplified character of the form is the
# form itself.
SHARED = {
    "沉": ("沈", "沈 is the older form of 沉; the dictionary keeps them apart"),
    "硅": ("矽", "silicon is 矽 in traditional text; 硅 is the mainland's word"),
    "叁": ("三", "the bankers' three goes back to the plain one; the dictionary gives 叄"),
    "着": ("著", "着 is a variant of 著; the dictionary keeps it"),
}


class Wrong(Exception):
    """A count or an input is not what it has to be."""


def expect(what, found, wanted):
    if found != wanted:
        raise Wrong(f"{what}: {found}, must be {wanted}")


# ---------------------------------------------------------------------------------------------
# GB2312 and Unicode


def gb2312_mapping():
    """{GB2312 code: Unicode code point} of all characters of the standard."""
    mapping = {}
    for first in range(0xA1, 0xFF):
        for second in range(0xA1, 0xFF):
            try:
                text = bytes([first, second]).decode("gb2312")
            except UnicodeDecodeError:
                continue
            mapping[first << 8 | second] = ord(text)

    expect("GB2312 symbols", sum(code < 0xB000 for code in mapping), SYMBOLS)
    expect("GB2312 hanzi", sum(code >= 0xB000 for code in mapping), HANZI)
    expect("different code points", len(set(mapping.values())), SYMBOLS + HANZI)
    # The two characters on which mappings of the standard disagree.
    expect("0xA1A4", mapping[0xA1A4], 0x30FB)
    expect("0xA1AA", mapping[0xA1AA], 0x2015)

    codes = sorted(mapping)
    text = b"".join(code.to_bytes(2, "big") for code in codes)
    units = run(["iconv", "-f", "EUC-CN", "-t", "UTF-16BE"], text)
    expect("iconv's mapping", units == b"".join(mapping[code].to_bytes(2, "big") for code in codes), True)
    return mapping


# ---------------------------------------------------------------------------------------------
# Simplified and traditional


def first_level(mapping):
    """The first-level hanzi (rows 16 to 55 of the standard) in code order, less the one left out."""
    hanzi = [chr(mapping[code]) for code in sorted(mapping) if 0xB000 <= code < 0xD800]
    expect("first-level hanzi", len(hanzi), FIRST_LEVEL)
    hanzi.remove(LEFT_OUT)
    expect("pairs", len(hanzi), PAIRS)
    expect("first hanzi", "".join(hanzi[:6]), "啊阿埃挨哎唉")
    expect("last hanzi", hanzi[-1], "座")
    return hanzi


def opencc_first_choice():
    """{simplified: traditional}, one character each."""
    with tempfile.TemporaryDirectory() as directory:
        listing = pathlib.Path(directory) / "STCharacters.txt"
        run(["opencc_dict", "-i", OPENCC_DICTIONARY, "-f", "ocd2", "-o", str(listing), "-t", "text"])
        lines = listing.read_text(encoding="utf-8").splitlines()
    return {key: values.split(" ")[0] for key, values in (line.split("\t") for line in lines)}


def unihan_simplifications():
    """The characters of which Unihan knows a traditional variant."""
    with bz2.open(UNIHAN_VARIANTS, "rt", encoding="utf-8") as lines:
        found = (re.match(r"U\+([0-9A-F]+)\tkTraditionalVariant\t", line) for line in lines)
        return {chr(int(match[1], 16)) for match in found if match}


def in_frequent_use(character):
    try:
        code = int.from_bytes(character.encode("big5"), "big")
    except UnicodeEncodeError:
        return False
    return 0xA440 <= code <= 0xC67E


def traditional_forms(simplified):
    choice = opencc_first_choice()
    simplifications = unihan_simplifications()

    def kept(character):
        return (
            choice.get(character, character) != character
            and character not in simplifications
            and in_frequent_use(character)
        )

    expect("characters that traditional text keeps", {c for c in simplified if kept(c)}, set(KEPT))

    def form(character):
        if character in SHARED:
            return SHARED[character][0]
        return character if character in KEPT else choice.get(character, character)

    forms = [form(character) for character in simplified]

    expect("pairs that differ", sum(s != t for s, t in zip(simplified, forms)), DIFFERENT_PAIRS)
    indices = {}
    for simple, traditional in zip(simplified, forms):
        indices.setdefault(traditional, []).append(simple)
    expect(
        "traditional forms at two indices",
        {traditional: set(simple) for traditional, simple in indices.items() if len(simple) > 1},
        {traditional: {simple, traditional} for simple, (traditional, _) in SHARED.items()},
    )
    return forms


# ---------------------------------------------------------------------------------------------
# The sources


def heading(name, about):
    return (
        f"/*\n * {name} - {about}\n"
        " * Made by tools/text_tables/make_text_tables.py; change that, not this.\n */\n"
    )


def rows(cells, per_line):
    lines = (cells[at : at + per_line] for at in range(0, len(cells), per_line))
    return "".join("    " + " ".join(cell + "," for cell in line) + "\n" for line in lines)


def unicode_source(mapping):
    pairs = sorted((point, code) for code, point in mapping.items())
    expect("rows", len(pairs), SYMBOLS + HANZI)
    expect("first row", pairs[0], (0x00A4, 0xA1E8))
    expect("last row", pairs[-1], (0xFFE5, 0xA3A4))
    cells = [f"{{0x{point:04X}, 0x{code:04X}}}" for point, code in pairs]
    return (
        heading(
            "unicode_gb2312_table.cpp",
            "all characters of GB2312 with their Unicode code points,\n * sorted by code point: {code point, GB2312 code}.",
        )
        + '#include "nvrhal.h"\n\n// clang-format off\n'
        + f"UnicodeGb2312 Unicode_GB2312[{len(pairs)}] = {{\n{rows(cells, 6)}}};\n"
    )


def font_source(simplified, traditional):
    for character in simplified + traditional:
        lead = character.encode("utf-8")[0]
        expect(f"three UTF-8 bytes of {character}", (len(character.encode("utf-8")), lead >> 4), (3, 0xE))

    def text(name, characters):
        cells = [f'"{character}"' for character in characters + ["END"]]
        return f"FontText {name}[kFontEntries] = {{\n{rows(cells, 12)}}};\n"

    return (
        heading(
            "font_tables.cpp",
            "the simplified hanzi of everyday use and their traditional forms, index\n"
            ' * by index, "END" last. The texts stand in two blocks of four bytes a character, so that they can\n'
            " * be searched in one sweep; font_pointers.cpp has the exported tables, which point into them.",
        )
        + '#include "text/font_texts.h"\n\n// clang-format off\n'
        + "namespace nvrhal\n{\n\n"
        + text("kSimplifiedTexts", simplified)
        + "\n"
        + text("kTraditionalTexts", traditional)
        + "\n} // namespace nvrhal\n"
    )


# ---------------------------------------------------------------------------------------------


def run(command, text=None):
    try:
        done = subprocess.run(command, input=text, capture_output=True, check=True)
    except FileNotFoundError as error:
        raise Wrong(f"{command[0]} is missing; packages: opencc libopencc-data unicode-data") from error
    except subprocess.CalledProcessError as error:
        raise Wrong(f"{' '.join(command)}: {error.stderr.decode(errors='replace')}") from error
    return done.stdout


def main():
    parser = argparse.ArgumentParser(description="Make the character tables of src/text.")
    parser.add_argument("--check", action="store_true", help="only compare with the checked-in sources")
    check_only = parser.parse_args().check

    mapping = gb2312_mapping()
    simplified = first_level(mapping)
    traditional = traditional_forms(simplified)
    sources = {
        ROOT / "src/text/unicode_gb2312_table.cpp": unicode_source(mapping),
        ROOT / "src/text/font_tables.cpp": font_source(simplified, traditional),
    }
    for path, source in sources.items():
        if not check_only:
            path.write_text(source, encoding="utf-8")
        elif not path.exists() or path.read_text(encoding="utf-8") != source:
            raise Wrong(f"{path.relative_to(ROOT)} is not what its inputs give")

    print(f"{len(mapping)} rows; {len(simplified)} pairs, {DIFFERENT_PAIRS} different")
    for character, reason in KEPT.items():
        print(f"  {character} kept: {reason}")
    for character, (form, reason) in SHARED.items():
        print(f"  {character} -> {form}: {reason}")


if __name__ == "__main__":
    try:
        main()
    except (Wrong, OSError) as error:
        sys.exit(f"make_text_tables: {error}")
