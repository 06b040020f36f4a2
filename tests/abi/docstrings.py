#!/usr/bin/env python3
"""docstrings.py HEADER... - every declaration of the public headers says what an application must know.

A function stands below a comment of this form; several functions that it fits stand below one another:

    /**
     * What it does.
     * @param name  range or values, unit         every parameter, by its name
     * @return values                             unless the result is void
     * Errors: what fails, and what then holds
     * Thread: who may call it
     * Ownership: who has the memory              where a pointer goes in or comes out
     */

A parameter that is a number states its range or its values. A parameter or a field whose name is that of
a size or a time has a unit. Objects, records and enumerations stand below a comment of their own.

docstrings.py --self-test: samples in which something is missing are found.
"""

import re
import sys

UNIT = re.compile(
    r"\b(bytes?|KiB|MiB|pixels?|px|units?|entries|frames?|pictures?|samples|modules|blocks|words|bits?|Hz|dB|"
    r"microseconds?|milliseconds?|milliseconds|ms|seconds?|s|us)\b|Unix|1970"
)
SIZED = re.compile(
    r"(^|_)(len|length|size|width|height|pitch|rate|pts|time|timestamp|bytes|seconds|timeout|lengths)($|_)"
)
RANGE = re.compile(r"\d|\bany\b|\benum\b|NVRHAL_|ignored|\bN\b")
CODED = re.compile(r"\b(codes?|class|mode)\b|\d = ")  # a number that stands for a size or a rate


def fail(path, line, text):
    print(f"{path}:{line}: {text}")
    return 1


def declarations(path, text):
    """(line, doc comment, declaration) of everything at the outermost level."""
    text = re.sub(r'extern "C" \{', "", text)
    at, doc, doc_end = 0, None, 0
    token = re.compile(r"/\*.*?\*/|^[ \t]*#(?:[^\n\\]|\\\n)*|[^\s]", re.S | re.M)
    while True:
        match = token.search(text, at)
        if not match:
            return
        at = match.end()
        found = match.group()
        line = text.count("\n", 0, match.start()) + 1
        if found.startswith("/*"):
            if found.startswith("/**"):
                doc, doc_end = found, at
            else:
                doc = None
            continue
        if found.lstrip().startswith("#") or found in "};":
            doc = None
            continue
        depth = 0
        end = match.start()
        while depth or text[end] != ";":
            if text.startswith("/*", end):
                end = text.index("*/", end) + 1
            depth += {"{": 1, "}": -1}.get(text[end], 0)
            end += 1
        if doc and "\n\n" in text[doc_end : match.start()]:
            doc = None  # a comment belongs to what stands directly below it
        yield line, doc, text[match.start() : end]
        at = doc_end = end + 1


def plain(comment):
    lines = [re.sub(r"^\s*/?\*+/?", "", line).rstrip("*/ ").strip() for line in comment.split("\n")]
    return "\n".join(lines)


def tags(doc):
    """The parts of a comment by tag: parameters by name, @return, and the named paragraphs."""
    parts, name = {"": ""}, ""
    for line in plain(doc).split("\n"):
        param = re.match(r"@param (\w+)\s+(.*)", line)
        other = re.match(r"(@return)\s+(.*)|(Errors|Thread|Ownership): (.*)", line)
        if param:
            name, line = "@" + param.group(1), param.group(2)
        elif other:
            name, line = other.group(1) or other.group(3), other.group(2) or other.group(4)
        parts[name] = (parts.get(name, "") + " " + line).strip()
    return parts


def parameters(inside):
    """(name, type) of each."""
    if inside.strip() in ("void", "NVRHAL_ANYTHING"):
        return []
    found = []
    # A function's own parameters are its business: (*name)(...) counts as a pointer of that name.
    inside = re.sub(r"\(\*(\w+)\)\([^()]*\)", r"*\1", inside)
    for one in inside.split(","):
        match = re.match(r"\s*(.*?)\s*(\w+)(\[\w*\])?\s*$", one, re.S)
        found.append((match.group(2), match.group(1) + ("*" if match.group(3) else "")))
    return found


def check_function(path, line, doc, match):
    bad = 0
    result, name, inside = match.group(1).strip(), match.group(2), match.group(3)
    if doc is None:
        return fail(path, line, f"{name} has no comment")
    said = tags(doc)
    if not said[""]:
        bad += fail(path, line, f"{name}: it is not said what it does")
    names = set()
    for parameter, kind in parameters(inside):
        names.add("@" + parameter)
        text = said.get("@" + parameter)
        if not text:
            bad += fail(path, line, f"{name}: no @param {parameter}")
            continue
        if "*" not in kind and not RANGE.search(text):
            bad += fail(path, line, f"{name}: @param {parameter} has no range")
        if SIZED.search(parameter) and "struct" not in kind and not UNIT.search(text) and not CODED.search(text):
            if not re.fullmatch(r"(out: )?null is skipped|any( value)?|any value; ignored", text):
                bad += fail(path, line, f"{name}: @param {parameter} has no unit")
    for tag in said:
        if tag.startswith("@") and tag != "@return" and tag not in names:
            bad += fail(path, line, f"{name} has no parameter {tag[1:]}")
    if result != "void" and not said.get("@return"):
        bad += fail(path, line, f"{name}: no @return")
    if result == "void" and "@return" in said:
        bad += fail(path, line, f"{name}: @return of nothing")
    wanted = ["Errors", "Thread"] + (["Ownership"] if "*" in inside or "[" in inside or "*" in result else [])
    for tag in wanted:
        if not said.get(tag):
            bad += fail(path, line, f"{name}: no {tag}")
    return bad


def check_fields(path, line, body):
    """Sizes and times among the fields have a unit, in the comment beside them."""
    bad = 0
    for number, field in enumerate(body.split("\n")):
        match = re.match(r"\s*[\w\s*]*?\b(\w[\w, *]*)(\[\w+\])?;\s*(/\*.*)?", field)
        if not match:
            continue
        comment = match.group(3) or ""
        for name in re.findall(r"\w+", match.group(1)):
            if not SIZED.search(name) or UNIT.search(comment) or CODED.search(comment):
                continue
            if re.search(r"likewise|never read|carried|unread", comment):
                continue
            bad += fail(path, line + number, f"field {name} has no unit")
    return bad


def check_text(path, text):
    bad, functions = 0, 0
    for line, doc, declaration in declarations(path, text):
        function = re.match(r"NVRHAL_API ([\w\s]+?[\s*]+)(\w+)\(((?:[^()]|\([^()]*\))*)\)$", declaration)
        if function:
            functions += 1
            bad += check_function(path, line, doc, function)
            continue
        if re.match(r"struct \w+$", declaration):  # opaque
            continue
        if doc is None:
            bad += fail(path, line, "no comment: " + declaration.split("\n")[0])
        if re.match(r"typedef struct", declaration):
            whole = plain(doc or "")
            if not UNIT.search(whole) or declaration.count("\n") > 3:
                bad += check_fields(path, line, declaration)
    return bad, functions


GOOD = """
/**
 * Store a block.
 * @param channel  0 to 15
 * @param length   bytes at data, 1 to 100
 * @param data     the block
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: copied.
 */
NVRHAL_API int32_t store(uint32_t channel, uint32_t length, const void *data);
"""
SAMPLES = {
    "no comment": ("", "no comment", re.compile(r"/\*\*.*\*/\n", re.S)),
    "a comment apart": ("\n */\n\nNV", "no comment", re.compile(r"\n \*/\nNV")),
    "no parameter": ("", "no @param channel", re.compile(r" \* @param channel.*\n")),
    "another parameter": ("@param chanel ", "has no parameter chanel", re.compile(r"@param channel")),
    "no range": ("which one", "channel has no range", re.compile(r"0 to 15")),
    "no unit": ("how many, 1 to 100", "length has no unit", re.compile(r"bytes at data, 1 to 100")),
    "no result": ("", "no @return", re.compile(r" \* @return.*\n")),
    "no errors": ("", "no Errors", re.compile(r" \* Errors.*\n")),
    "no thread": ("", "no Thread", re.compile(r" \* Thread.*\n")),
    "no ownership": ("", "no Ownership", re.compile(r" \* Ownership.*\n")),
    "no purpose": ("", "not said what it does", re.compile(r" \* Store a block\.\n")),
    "a field": (
        "/** A block. */\ntypedef struct Block {\n    uint32_t a; /* 0 */\n    uint32_t b; /* 4 */\n"
        "    uint32_t c; /* 8 */\n    uint32_t length; /* 12 how long */\n} Block;\n",
        "field length has no unit",
        re.compile(r"\A"),
    ),
    "a blank line": (
        "NVRHAL_API int32_t store(uint32_t channel, uint32_t length, const void *data);\n\nNVRHAL_API int32_t keep(void)",
        "keep has no comment",
        re.compile(r"NVRHAL_API.*\)"),
    ),
    "two that differ": (
        "NVRHAL_API int32_t store(uint32_t channel, uint32_t length, const void *data);\nNVRHAL_API int32_t keep(uint32_t x)",
        "keep: no @param x",
        re.compile(r"NVRHAL_API.*\)"),
    ),
    "a function's parameter": (
        "/**\n * Tell.\n * @param user  any value\n * Errors: none.\n * Thread: any.\n * Ownership: kept.\n */\n"
        "NVRHAL_API void tell(void (*write)(const char *text, size_t length), void *user);\n",
        "tell: no @param write",
        re.compile(r"\A"),
    ),
    "an object": ("extern NVRHAL_API int32_t word;\n", "no comment", re.compile(r"\A")),
}


def self_test():
    import contextlib
    import io

    def complaints(text):
        told = io.StringIO()
        with contextlib.redirect_stdout(told):
            check_text("sample", text)
        return told.getvalue()

    bad = 0
    if complaints(GOOD) or check_text("sample", GOOD)[1] != 1:
        bad += fail("sample", 0, "the good sample is refused: " + complaints(GOOD))
    for name, (replacement, expected, pattern) in SAMPLES.items():
        text, count = pattern.subn(replacement.replace("\\", "\\\\"), GOOD, count=1)
        if count != 1:
            bad += fail("sample", 0, f"{name}: the sample cannot be made")
        elif expected not in complaints(text):
            bad += fail("sample", 0, f"{name}: not found; told was: {complaints(text)!r}")
    print(f"{len(SAMPLES)} bad samples, {bad} not found")
    return bad


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 1 if self_test() else 0
    bad, functions = 0, 0
    for path in sys.argv[1:]:
        with open(path, encoding="utf-8") as file:
            more_bad, more = check_text(path, file.read())
        bad, functions = bad + more_bad, functions + more
    if functions < 200:
        bad += fail("headers", 0, f"only {functions} functions were found")
    print(f"{functions} functions, {bad} complaints")
    return 1 if bad else 0


sys.exit(main())
