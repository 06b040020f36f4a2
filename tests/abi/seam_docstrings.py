#!/usr/bin/env python3
"""seam_docstrings.py [--src DIRECTORY] HEADER... - the seams' headers are contracts that a porter can work from.

A function stands directly below a comment of its own:

    /**
     * What it does.
     *
     * @param name  values, unit                  every parameter, by its name
     * @return 0, or a code                       unless the result is void
     * Order: what must come before; what may be repeated
     * Thread: who calls it, and what waits for whom
     * Memory: who has the memory                 where a pointer goes in or comes out
     * Time: how long it may take
     * Errors: the codes, and what for
     * Failure: what the library does with it
     */

A driver's request stands below such a comment with Argument, Order, Errors and Failure; one whose code is
the kernel's has the comment alone, which begins "Request NAME". Thread and Time of the requests stand in
the header's heading. Every field of a record has its offset beside it, and seam_layouts.h asserts that offset
and the record's size. With --src, every request that the library's sources make is among them.

seam_docstrings.py --self-test: samples in which something is missing are found.
"""

import glob
import os
import re
import sys

HEADINGS = ("Order", "Thread", "Memory", "Time", "Errors", "Failure")
REQUEST_HEADINGS = ("Argument", "Order", "Errors", "Failure")
TAG = re.compile(r"^(?:@param (\w+)|(@return)|(%s):)(?=\s|$)\s*(.*)$" % "|".join(HEADINGS + ("Argument",)))
FUNCTION = re.compile(
    r"(/\*\*(?:(?!\*/).)*?\*/\n)?((?:int32_t|int64_t|int|void)[ \n]+\*?)(\w+)\(([^()]*)\);", re.S
)
REQUEST = re.compile(r"(/\*\*(?:(?!\*/).)*?\*/\n)?#define (\w+)\s+(0x[0-9A-F]+u|_IO\w*\([^\n]*\))$", re.S | re.M)
KERNEL_REQUEST = re.compile(r"/\*\*\n \* Request (\w+)(?:(?!\*/).)*?\*/", re.S)
RECORD = re.compile(r"typedef struct (\w+) \{\n(.*?)\n\} \1;", re.S)


class Complaints:
    def __init__(self):
        self.count = 0

    def tell(self, path, text):
        print(f"{path}: {text}")
        self.count += 1


def parts(comment):
    """The text of a comment by tag; "" is what stands before the first one."""
    said, name = {"": ""}, ""
    for line in comment.split("\n"):
        line = re.sub(r"^\s*/?\*+/? ?", "", line).rstrip("*/ ").rstrip()
        found = TAG.match(line)
        if found:
            name = found.group(1) or found.group(2) or found.group(3)
            line = found.group(4)
        said[name] = (said.get(name, "") + " " + line.strip()).strip()
    return said


def check_function(path, comment, result, name, inside, complain):
    if not comment:
        complain.tell(path, f"{name} has no comment of its own")
        return
    said = parts(comment)
    if not said[""]:
        complain.tell(path, f"{name}: it is not said what it does")
    names = [] if inside.strip() == "void" else [re.search(r"(\w+)\s*$", one).group(1) for one in inside.split(",")]
    for one in names:
        if not said.get(one):
            complain.tell(path, f"{name}: no @param {one}")
    for one in said:
        if one and one != "@return" and one not in names and one not in HEADINGS:
            complain.tell(path, f"{name} has no parameter {one}")
    if result.strip() != "void" and not said.get("@return"):
        complain.tell(path, f"{name}: no @return")
    pointers = "*" in inside or "*" in result
    for heading in HEADINGS:
        if not said.get(heading) and (heading != "Memory" or pointers):
            complain.tell(path, f"{name}: no {heading}")


def check_request(path, comment, name, complain):
    if not comment:
        complain.tell(path, f"{name} has no comment of its own")
        return
    said = parts(comment)
    if not said[""]:
        complain.tell(path, f"{name}: it is not said what it does")
    for heading in REQUEST_HEADINGS:
        if not said.get(heading):
            complain.tell(path, f"{name}: no {heading}")


def fields_of(body):
    """(name, offset in the comment beside it or None) of each field."""
    comment = re.compile(r"/\*.*?\*/", re.S)
    for declaration in re.finditer(r"([^;]+);[ \t]*(/\*.*?\*/)?", body, re.S):
        code = comment.sub("", declaration.group(1))
        stated = re.match(r"/\*\s*(\d+)\s", declaration.group(2) or "")
        offset = int(stated.group(1)) if stated else None
        for one in code.split(","):
            yield re.search(r"(\w+)(\[\w+\])?\s*$", one.strip()).group(1), offset
            offset = None  # the comment tells that of the first


def check_record(path, name, body, layouts, complain):
    if not re.search(rf"^SEAM(32)?_SIZE\({name}, \d+\);", layouts, re.M):
        complain.tell(path, f"{name}: its size is not asserted")
    first = True
    for field, stated in fields_of(body):
        asserted = re.search(rf"^SEAM(?:32)?_AT\({name}, {field}, (\d+)\);", layouts, re.M)
        if not asserted:
            complain.tell(path, f"{name}.{field}: its offset is not asserted")
        elif stated is not None and stated != int(asserted.group(1)):
            complain.tell(path, f"{name}.{field} stands at {asserted.group(1)}, not at {stated}")
        if first and stated is None:
            complain.tell(path, f"{name}.{field}: no offset beside it")
        first = False


def check_text(path, text, layouts, complain):
    """The numbers of functions, requests and records in a header, and the requests' names."""
    code = re.sub(r"typedef struct .*?\n\} \w+;|typedef \w+ \(\*.*?\);", "", text, flags=re.S)
    functions = FUNCTION.findall(code)
    for comment, result, name, inside in functions:
        check_function(path, comment, result, name, inside, complain)
    requests = []
    for comment, name, _ in REQUEST.findall(text):
        check_request(path, comment, name, complain)
        requests.append(name)
    for found in KERNEL_REQUEST.finditer(text):
        check_request(path, found.group(), found.group(1), complain)
        requests.append(found.group(1))
    heading = re.match(r"/\*.*?\*/", text, re.S)
    if requests:
        for one in ("Thread:", "Time:"):
            if one not in (heading.group() if heading else ""):
                complain.tell(path, f"its heading says nothing of {one[:-1]}")
    records = RECORD.findall(text)
    for name, body in records:
        check_record(path, name, body, layouts, complain)
    return len(functions), requests, len(records)


def check_sources(directory, requests, complain):
    """Every request that the sources make has its contract. Their number."""
    made = set()
    for path in glob.glob(os.path.join(directory, "**", "*.cpp"), recursive=True):
        with open(path, encoding="utf-8") as file:
            text = re.sub(r'static_assert\(.*?\);|"[^"\n]*"', "", file.read(), flags=re.S)
        made |= set(re.findall(r"\b((?:FBIO|WDIOC_|RTC_(?:RD|SET)_|GPIO_(?:CONF|DRIVE)|KEYBOARD_(?:REC|KEY)|AD_)"
                               r"[A-Z_]+)\b", text))
    made -= {"AD_NODE", "AD_CHIP_SELECTOR", "AD_INPUTS_PER_CHIP", "AD_AREA_BYTES"}
    for name in sorted(made - set(requests)):
        complain.tell(directory, f"the library makes the request {name}, which no header of the seams describes")
    return len(made)


GOOD = """/*
 * sample.h - a sample.
 *
 * Thread: any. Time: at once.
 */
/**
 * Store a block.
 *
 * @param channel  0 to 15
 * @param block    what is stored
 * @return 0, or a code
 * Order: after start.
 * Thread: any.
 * Memory: copied.
 * Time: at once.
 * Errors: EXISTS.
 * Failure: printed.
 */
int32_t store(uint32_t channel, const Block *block);

/** A block. */
typedef struct Block {
    uint32_t length; /* 0  bytes */
    uint32_t a, b;   /* 4  words */
} Block;

/**
 * Erase.
 * Argument: none.
 * Order: none.
 * Errors: none.
 * Failure: ignored.
 */
#define ERASE 0x40045004u

/**
 * Request KERNEL_ERASE: erase.
 * Argument: none.
 * Order: none.
 * Errors: none.
 * Failure: ignored.
 */
"""
GOOD_LAYOUT = "SEAM_SIZE(Block, 12);\nSEAM_AT(Block, length, 0);\nSEAM_AT(Block, a, 4);\nSEAM_AT(Block, b, 8);\n"
# What is replaced, by what, and what has to be told then.
SAMPLES = [
    (r" \*/\nint32_t", " */\n\nint32_t", "store has no comment"),
    (r" \* Store a block\.\n", "", "not said what it does"),
    (r" \* @param channel.*\n", "", "no @param channel"),
    (r"@param channel", "@param chanel", "has no parameter chanel"),
    (r" \* @return.*\n", "", "no @return"),
    (r" \* Order: after.*\n", "", "store: no Order"),
    (r" \* Thread: any\.\n \* Memory", " * Memory", "store: no Thread"),
    (r" \* Memory.*\n", "", "store: no Memory"),
    (r" \* Time: at once\.\n \* Errors", " * Errors", "store: no Time"),
    (r" \* Errors: EXISTS.*\n", "", "store: no Errors"),
    (r" \* Errors: EXISTS.*\n", " * Errors:\n", "store: no Errors"),
    (r" \* Failure: printed.*\n", "", "store: no Failure"),
    (r"/\* 0  bytes \*/", "", "length: no offset beside it"),
    (r"/\* 4  words \*/", "/* 8  words */", "Block.a stands at 4, not at 8"),
    (r"uint32_t a, b;", "uint32_t a, b, c;", "Block.c: its offset is not asserted"),
    (r"Block \{(.*?)\} Block;", r"Rock {\1} Rock;", "Rock: its size is not asserted"),
    (r" \* Argument: none\.\n( \* Order: none\.\n \* Errors: none\.\n \* Failure: ignored\.\n \*/\n#)", r"\1",
     "ERASE: no Argument"),
    (r" \*/\n#define", " */\n\n#define", "ERASE has no comment"),
    (r"erase\.\n \* Argument: none\.\n", "erase.\n", "KERNEL_ERASE: no Argument"),
    (r"Thread: any\. Time: at once\.", "Time: at once.", "nothing of Thread"),
    (r"Thread: any\. Time: at once\.", "Thread: any.", "nothing of Time"),
]


def self_test():
    import contextlib
    import io

    def complaints(text):
        told = io.StringIO()
        with contextlib.redirect_stdout(told):
            found = check_text("sample", text, GOOD_LAYOUT, Complaints())
        return told.getvalue(), found

    bad = 0
    told, found = complaints(GOOD)
    if told or found != (1, ["ERASE", "KERNEL_ERASE"], 1):
        print(f"the good sample is refused: {told} {found}")
        bad += 1
    for pattern, replacement, expected in SAMPLES:
        text, count = re.subn(pattern, replacement, GOOD, count=1, flags=re.S if "(.*?)" in pattern else 0)
        if count != 1 or expected not in complaints(text)[0]:
            print(f"not found: {expected}; told was: {complaints(text)[0]}")
            bad += 1
    print(f"{len(SAMPLES)} bad samples, {bad} not found")
    return bad


def main():
    arguments = sys.argv[1:]
    if arguments == ["--self-test"]:
        return 1 if self_test() else 0
    sources = None
    if arguments[:1] == ["--src"]:
        sources, arguments = arguments[1], arguments[2:]
    layouts = ""
    for path in arguments:
        if os.path.basename(path) == "seam_layouts.h":
            with open(path, encoding="utf-8") as file:
                layouts = file.read()
    complain = Complaints()
    functions, requests, records = 0, [], 0
    for path in arguments:
        with open(path, encoding="utf-8") as file:
            more, asked, kept = check_text(path, file.read(), layouts, complain)
        functions, requests, records = functions + more, requests + asked, records + kept
    made = check_sources(sources, requests, complain) if sources else 0
    if functions < 80 or len(requests) < 35 or records < 36 or (sources and made < 30):
        complain.tell("headers", f"only {functions} functions, {len(requests)} requests, {records} records, {made} made")
    print(f"{functions} functions, {len(requests)} requests ({made} made by the library), {records} records, "
          f"{complain.count} complaints")
    return 1 if complain.count else 0


sys.exit(main())
