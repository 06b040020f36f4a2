#!/usr/bin/env python3
"""house_comments.py HEADER - a header on standard output, with its comments as Doxygen wants them.

Doxygen's INPUT_FILTER. The headers are written to be read as they are: a plain heading, columns of offsets
beside the fields, one comment over several declarations that it fits, "Errors:" and "Thread:" where
Doxygen has commands. What is made of them:

    the heading of the file            the description of the file's group (groups.dox), which then holds all
                                       that the file declares
    a plain comment by itself          a further part of that description
    a banner                           a heading within the group
    a comment over several lines of    the same comment for each of them
    declarations
    a comment beside a field, value    its description; a record's offset in front, as "+4"
    or macro
    a plain comment over macros        the description of those that have none
    "Errors: ..."                      a paragraph with that heading
"""

import pathlib
import re
import sys

HEADINGS = "Argument|Order|Thread|Memory|Ownership|Time|Errors|Failure|Threads"
AREAS = {"include": "nvrhal", "platform/include": "seam", "platform/virtual/include": "vboard"}
GROUPS = pathlib.Path(__file__).with_name("groups.dox")
BANNER = re.compile(r"/\* [-=]{3,} ?(.*?) ?-* ?\*/$")
DECLARED = re.compile(r"(?:extern (?!\"C\")|typedef |struct |enum |int|uint|void|char|double|NVRHAL_API|MI_)")


def area_of(path):
    for folder, area in reversed(AREAS.items()):
        if folder + "/" in path.as_posix():
            return area
    sys.exit(f"{path}: in none of {', '.join(AREAS)}")


def declared_names(path):
    """Functions, objects, constants: what Doxygen links only where it is told to."""
    root = path.parent
    while not (root / "platform" / "include").is_dir():
        root = root.parent
    names = set()
    for folder in AREAS:
        for header in sorted((root / folder).rglob("*.h")):
            whole = header.read_text(encoding="utf-8")
            text = re.sub(r"/\*.*?\*/", "", whole, flags=re.S)
            names.update(re.findall(r"^[a-zA-Z][\w ]*[ *](\w+)\(", text, re.M))
            names.update(re.findall(r"^extern [^\"]*?(\w+)(?:\[\w+\])*;", text, re.M))
            names.update(re.findall(r"^enum (\w+)", text, re.M))
            names.update(re.findall(r"^#define (\w+)[ (]", text, re.M))
            names.update(re.findall(r"^    ([A-Z]\w+)(?: = [^,/]+)?,? */\*", whole, re.M))  # with a description
    return {name for name in names if re.search(r"_|[a-z][A-Z]", name)}


NAMES = declared_names(pathlib.Path(sys.argv[1]).resolve())


def escaped(text, emphasis=True):
    """No commands, entities or emphasis where the house means the plain signs; and links."""
    text = re.sub(r"[\\<>#%&]|@(?!param|return)", r"\\\g<0>", text)
    if emphasis:  # which would be seen
        text = re.sub(r"(?<=\w)\*|\*(?=\w)", r"\\\g<0>", text)
    link = lambda found: ("#" if found.group() in NAMES else "") + found.group()
    return re.sub(r"(?<![\w:.`\"/])[A-Za-z]\w+(?![\w(:`]|\.\w)", link, text)


def inside(comment):
    """The lines of a comment without its marks, and with the indentation that they have beyond it."""
    lines = re.sub(r"^/\*+ ?|\s*\*+/$", "", comment).split("\n")
    lines = [lines[0].rstrip(), *(re.sub(r"^\s*\*? ?", "", line, count=1).rstrip() for line in lines[1:])]
    while lines and not lines[0]:
        lines.pop(0)
    while lines and not lines[-1]:
        lines.pop()
    return lines


def prose(lines):
    """Headings, lists and tables of a plain comment, which are shown by indentation alone."""
    out, at = [], 0
    while at < len(lines):
        if not lines[at]:
            out.append("")
            at += 1
            continue
        end = at
        while end < len(lines) and lines[end]:
            end += 1
        out += paragraph(lines[at:end])
        at = end
    return out


def indentation(line):
    return len(line) - len(line.lstrip())


def paragraph(lines):
    columns = any(indentation(line) >= 2 and re.search(r"\S {2,}\S", line) for line in lines)
    if columns and indentation(lines[0]) >= 2:
        return preformatted(lines)
    stands_over = len(lines) > 1 and indentation(lines[0]) == 0 and indentation(lines[1]) == 2
    if stands_over and not re.search(r"[.,]$", lines[0]) and not re.match(r"(%s|Results?):" % HEADINGS, lines[0]):
        return ["@par " + lines[0], *section(lines[1:])]
    if all(indentation(line) >= 4 for line in lines):
        return preformatted(lines)
    labels = [re.match(r"(%s|Result): (.*)" % HEADINGS, line) for line in lines]
    if sum(label is not None for label in labels) < 2:
        return [escaped(line) for line in lines]
    return [f"- **{label.group(1)}**: {escaped(label.group(2))}" if label else escaped(line)
            for label, line in zip(labels, lines)]


def section(lines):
    """What stands below a heading: items that each begin on a line of their own, and tables."""
    items, out = [], []
    for at, line in enumerate(lines):
        if indentation(line) >= 4:
            items.append(("table", line))
        elif items and items[-1][0] == "text" and not lines[at - 1].endswith("."):
            items[-1] = ("text", items[-1][1] + "\n  " + escaped(line.strip()))
        else:
            items.append(("text", escaped(line.strip())))
    texts = sum(kind == "text" for kind, _ in items)
    table = []
    for kind, text in [*items, ("end", "")]:
        if table and kind != "table":
            out += preformatted(table)
            table = []
        if kind == "table":
            table.append(text)
        elif kind == "text":
            text = re.sub(r"^(\w+):", r"**\1**:", text)
            out += (("- " if texts > 1 else "") + text).split("\n")
    return out


def preformatted(lines):
    """As it stands, with links."""
    margin = min(indentation(line) for line in lines)
    return ["<pre>" + "\n".join(escaped(line[margin:], emphasis=False) for line in lines) + "</pre>"]


def block(lines):
    lines = "\n".join(lines).split("\n")
    return "/**\n" + "\n".join(" * " + line if line else " *" for line in lines) + "\n */"


def described(code, place, words):
    """A field, or several of one line, which stand one behind the other."""
    several = re.match(r"(\s*(?:const )?)(\w+)( \w+(?:, \w+)+);", code)
    if not several:
        return f"{code}/**< " + (f"`+{place}`: " if place is not None else "") + words + " */"
    margin, kind, names = several.groups()
    size = re.match(r"u?int(\d+)_t$", kind)
    out = []
    for at, name in enumerate(names.split(",")):
        known = place is not None and (size or at == 0)
        own = f"`+{place + at * (int(size.group(1)) // 8 if size else 0)}`: " if known else ""
        out.append(f"{kind} {name.strip()}; /**< {own}{words} */")
    return margin + " ".join(out)


class Header:
    def __init__(self, path):
        self.path = path
        self.area = area_of(path)
        self.group = f"{self.area}_{path.stem}"
        self.lines = path.read_text(encoding="utf-8").split("\n")
        self.out = []
        self.named = False  # within a banner's part
        self.notes = []  # plain comments by themselves

    def take_comment(self, at):
        """The comment that begins on line `at`, and the line behind it."""
        end = at
        while "*/" not in self.lines[end]:
            end += 1
        return "\n".join(self.lines[at : end + 1]), end + 1

    def heading(self, comment):
        lines = inside(comment)
        summary, at = lines[0].partition(" - ")[2], 1
        while at < len(lines) and lines[at]:
            summary += " " + lines[at]
            at += 1
        summary = escaped(summary[0].upper() + summary[1:])
        told = ["@addtogroup " + self.group]
        if f"@defgroup {self.group} " not in GROUPS.read_text(encoding="utf-8"):
            told = [told[0] + " " + self.path.name, "@ingroup " + self.area]
        told += ["@brief " + summary, "", *prose(lines[at:]), *self.notes, "@{"]
        if self.path.name == "nvrhal.h":  # it declares nothing itself
            told = ["@addtogroup nvrhal", *prose(lines[at:])]
            summary += "\n\nAll of the library's interface."
        return block([f"@file {self.path.name}", "@brief " + summary]) + block(told)

    def documented(self, comment):
        """A comment that Doxygen knows already: only the paragraphs' headings."""
        lines = []
        for line in inside(comment):
            found = re.match(r"(%s): ?(.*)" % HEADINGS, line)
            if found:
                lines += ["@par " + found.group(1), escaped(found.group(2))]
            elif indentation(line) >= 4 and not line.strip().startswith("@"):
                lines.append(escaped(line.strip()))
            else:
                lines.append(escaped(line))
        return lines

    def declaration_end(self, at):
        """The line behind the declaration or macro that begins on line `at`."""
        if self.lines[at].startswith("#define"):
            while self.lines[at].endswith("\\"):
                at += 1
            return at + 1
        depth = 0
        while True:
            code = re.sub(r"/\*.*?\*/", "", self.lines[at])
            depth += code.count("{") - code.count("}")
            if depth == 0 and code.rstrip().endswith(";"):
                return at + 1
            at += 1

    def beside(self, lines, offsets):
        """Comments beside fields, enumerators and macros, as their descriptions."""
        out, at = [], 0
        while at < len(lines):
            found = re.match(r"(.*?[;,\w)}\"]\s*)/\*(?!\*) ?(.*)$", lines[at])
            if not found:
                out.append(lines[at])
                at += 1
                continue
            code, text = found.group(1), found.group(2)
            at += 1
            while not text.rstrip().endswith("*/") or (at < len(lines) and re.match(r"\s*/\*(?!\*).*\*/$", lines[at])):
                text = re.sub(r"\s*\*/$", "", text) + " " + re.sub(r"^\s*(/?\*)? ?", "", lines[at])
                at += 1
            text = re.sub(r"\s*\*/$", "", text)
            place = re.match(r"\s*(\d+)(?:\s{2,}(.*)|\s*)$", text) if offsets else None
            words = escaped(re.sub(r"\s+", " ", (place.group(2) or "") if place else text).strip())
            out.append(described(code, place and int(place.group(1)), words))
        return out

    def declared(self, start, end):
        body = self.lines[start:end]
        if body[0].startswith("#define"):
            return self.beside(body, False)
        return self.beside(body, "struct" in body[0])

    def covers(self, start):
        """How many lines below a comment it speaks for: declarations without a blank line or comment between."""
        ends, at = [], start
        while at < len(self.lines) and self.lines[at].strip():
            line = self.lines[at]
            directive = line.startswith("#") and not line.startswith("#define")
            if directive or line.startswith(("/*", "}")):
                break
            at = self.declaration_end(at)
            ends.append(at)
        return ends

    def run(self):
        heading, at = self.take_comment(0)
        while at < len(self.lines):
            line = self.lines[at]
            if line.startswith("/*"):
                at = self.comment(at)
            elif line.startswith("#define") or (DECLARED.match(line) and not line.startswith("struct")):
                end = self.declaration_end(at)
                self.out += self.declared(at, end)
                at = end
            else:
                self.out.append(line)
                at += 1
        guard = len(self.out) - 1 - next(i for i, line in enumerate(reversed(self.out)) if line.startswith("#endif"))
        closing = ["/** @} */"] if self.named else []
        if self.path.name != "nvrhal.h":
            closing.append("/** @} */")
        self.out[guard:guard] = closing
        return "\n".join([self.heading(heading), *self.out])

    def banner(self, title):
        told = "/** @} */\n" if self.named else ""
        self.named = True
        self.out.append(f"{told}/** @name {title[0].upper()}{title[1:]} */\n/** @{{ */")

    def comment(self, at):
        comment, after = self.take_comment(at)
        banner = BANNER.match(comment)
        if banner and banner.group(1).strip("=- "):
            self.banner(banner.group(1).strip("=- "))
            return after
        if banner:  # three lines: its title is between two rules, and may go on
            title = ""
            while not (BANNER.match(self.lines[after]) and not BANNER.match(self.lines[after]).group(1).strip("=- ")):
                title += " " + " ".join(inside(self.lines[after])).strip()
                after += 1
            self.banner(title.strip().partition(". ")[0])
            return after + 1
        ends = self.covers(after)
        if comment.startswith("/**"):
            return self.over_declarations(block(self.documented(comment)), after, ends)
        if "clang-format" in comment:
            return after
        if not self.lines[after].strip():
            self.notes += ["", *prose(inside(comment))]
        elif ends and self.lines[after].startswith(("#define", "void ")):
            return self.over_declarations(block([escaped(line) for line in inside(comment)]), after, ends)
        else:
            self.out.append(comment)
        return after

    def over_declarations(self, told, start, ends):
        """The same description for all that stands below it, unless a line has one beside it."""
        for end in ends:
            lines = self.declared(start, end)
            beside = len(lines) == 1 and "/**<" in lines[0]
            self.out += lines if beside and len(ends) > 1 else [told, *lines]
            start = end
        if not ends:
            self.out.append(told)
        return start


print(Header(pathlib.Path(sys.argv[1]).resolve()).run())
