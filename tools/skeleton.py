#!/usr/bin/env python3
"""skeleton.py [--check] - write platform/skeleton from the seams' headers, or see that it is what they say.

The skeleton is what a porter copies: every function of the seams with its contract above it, refusing. Its
sources come from platform/include, so that no contract is told in two ways and no function is forgotten;
CMakeLists.txt, unsupported.h and unsupported.c beside them are written by hand.
"""

import os
import re
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
HEADERS = os.path.join(ROOT, "platform", "include")
SKELETON = os.path.join(ROOT, "platform", "skeleton")
FUNCTION = re.compile(
    r"(/\*\*(?:(?!\*/).)*?\*/\n)((?:int32_t|int64_t|int|void)[ \n]+\*?)(\w+)\(([^()]*)\);", re.S
)
PORT_CALL = re.compile(r"InputPort|SetZoomInWindow")


class Source:
    """A source of the skeleton: its header, what it is, and which of the header's functions it has."""

    def __init__(self, name, header, title, chooses=lambda call: True):
        self.name, self.header, self.title, self.chooses = name, header, title, chooses


SOURCES = [
    Source("sys.c", "mi_sys.h", "the media system: start, version, clock, bindings"),
    Source("vdec.c", "mi_vdec.h", "decoder channels"),
    Source("disp.c", "mi_disp.h", "display devices and video layers", lambda call: not PORT_CALL.search(call)),
    Source("disp_port.c", "mi_disp.h", "input ports of the display", PORT_CALL.search),
    Source("hdmi.c", "mi_hdmi.h", "the HDMI transmitter"),
    Source("ao.c", "mi_ao.h", "audio output"),
    Source("divp.c", "mi_divp.h", "the scaler"),
    Source("venc.c", "mi_venc.h", "the JPEG encoder"),
    Source("board.c", "board_io.h", "device nodes, shell, sleep and wall clock"),
]
BOARD_NOTE = """ *
 * A function that is taken out here is the system's own: see platform/linux/board_linux.h, which also has
 * what a function may pass on what it does not want to do itself.
"""
RETURNED = {"void *": "return NULL;", "void ": "", "int64_t ": "return 0;"}


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def body(header, result, name, inside):
    names = [] if inside.strip() == "void" else [re.search(r"(\w+)\s*$", one).group(1) for one in inside.split(",")]
    lines = [f"    (void){one};" for one in names]
    if header == "board_io.h":
        lines.append("    board_unsupported(__func__);")
        back = RETURNED.get(result, "return -1;")
        lines += [f"    {back}"] if back else []
    else:
        module = re.match(r"MI_([A-Z]+)_", name).group(1)
        lines.append(f"    return unsupported(MI_MODULE_{module}, __func__);")
    return "\n".join(lines)


def source_text(source):
    text = re.sub(r"typedef struct .*?\n\} \w+;|typedef \w+ \(\*.*?\);", "", read(os.path.join(HEADERS, source.header)),
                  flags=re.S)
    note = BOARD_NOTE if source.header == "board_io.h" else ""
    parts = [f'/*\n * {source.name} - {source.title}. The contracts are those of {source.header}.\n{note} */\n'
             f'#include "{source.header}"\n\n#include "unsupported.h"\n']
    for comment, result, name, inside in FUNCTION.findall(text):
        if source.chooses(name):
            parts.append(f"\n{comment}{result}{name}({inside})\n{{\n{body(source.header, result, name, inside)}\n}}\n")
    return "".join(parts)


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        print(__doc__.split("\n")[0], file=sys.stderr)
        return 2
    stale = 0
    for source in SOURCES:
        path = os.path.join(SKELETON, source.name)
        text = source_text(source)
        if not check:
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        elif not os.path.exists(path) or read(path) != text:
            print(f"platform/skeleton/{source.name} is not what {source.header} says: run tools/skeleton.py")
            stale += 1
    return 1 if stale else 0


sys.exit(main())
