"""Small changes to C++ sources: what a mutant is, and where a source can take one.

The sources are read as tokens, not parsed. clang-format keeps the layout uniform: binary operators
stand between blanks, templates' brackets do not. What is found is a candidate; one that does not
compile is only a waste of time.
"""

import re
from dataclasses import dataclass

KINDS = ("statement", "comparison", "constant", "argument")

TOKEN = re.compile(
    r"""(?P<space>\s+|//[^\n]*|/\*.*?\*/)
      |(?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
      |(?P<string>R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*")
      |(?P<char>'(?:\\.|[^'\\\n])*')
      |(?P<number>(?:0[xX][0-9a-fA-F']+|\d[\d']*)(?P<suffix>[uUlLzZ]*))
      |(?P<name>[A-Za-z_]\w*)
      |(?P<op>::|->|<<=|>>=|<=|>=|==|!=|&&|\|\||<<|>>|\+\+|--|[-+*/%&|^]=|.)""",
    re.X | re.S | re.M,
)

COMPARISONS = {
    "==": ("!=",),
    "!=": ("==",),
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "&&": ("||",),
    "||": ("&&",),
}
NO_CALLS = {"if", "for", "while", "switch", "return", "sizeof", "alignof", "decltype", "catch", "static_assert",
            "ABI_SIZE", "ABI_AT", "ABI32_SIZE", "ABI32_AT", "ABI_WORD", "alignas"}
NO_DELETION = {"if", "for", "while", "switch", "do", "case", "default", "else", "static_assert", "using",
               "typedef", "struct", "class", "enum", "goto", "static", "const", "constexpr", "auto", "extern",
               "template", "namespace", "public", "private", "protected", "friend", "thread_local", "union"}


@dataclass(frozen=True)
class Mutant:
    file: str
    start: int
    end: int
    replacement: str
    kind: str
    function: str
    line: int
    old: str  # the lines that change, blanks made one
    new: str

    @property
    def key(self):
        """Says which change this is, wherever its lines move in the file."""
        return (self.file, self.function, self.old, self.new)


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    scope: str = ""     # what encloses it: namespace, type, function, block, init
    function: str = ""  # the function that encloses it
    match: int = -1     # a bracket's other half


def tokens_of(source):
    """The tokens without blanks, comments and preprocessor lines; brackets know their other half."""
    tokens = []
    for found in TOKEN.finditer(source):
        kind = found.lastgroup if found.lastgroup != "suffix" else "number"
        if kind in ("space", "directive"):
            continue
        tokens.append(Token(kind, found.group(), found.start(), found.end()))
    open_brackets = []
    for index, token in enumerate(tokens):
        if token.text in ("(", "[", "{"):
            open_brackets.append(index)
        elif token.text in (")", "]", "}") and open_brackets:
            other = open_brackets.pop()
            token.match, tokens[other].match = other, index
    return tokens


def head_before(tokens, index):
    """The tokens between the last end of a declaration or statement and a '{'."""
    first = index
    while first > 0 and tokens[first - 1].text not in (";", "{", "}"):
        first -= 1
        if tokens[first].text in (")", "]") and tokens[first].match >= 0:
            first = tokens[first].match
    return tokens[first:index]


def name_scopes(tokens):
    scopes = [("namespace", "")]
    for index, token in enumerate(tokens):
        token.scope, token.function = scopes[-1]
        if token.text == "{":
            scopes.append(scope_of(tokens, index, scopes[-1]))
        elif token.text == "}" and len(scopes) > 1:
            scopes.pop()
            token.scope, token.function = scopes[-1]


def scope_of(tokens, index, outer):
    head = head_before(tokens, index)
    words = [token.text for token in head]
    kind, function = outer
    if kind in ("function", "block"):
        before = tokens[index - 1].text
        is_block = before in (")", "else", "do", ";", "{", "}", ":", "]", "mutable", "noexcept")
        return ("block" if is_block else "init", function)
    if kind == "init":
        return outer
    if "namespace" in words or (words[:1] == ["extern"] and "(" not in words):
        return ("namespace", "")
    if "(" in words and "=" not in words[: words.index("(")]:
        at = words.index("(")
        return ("function", words[at - 1] if at > 0 else "")
    if any(word in ("struct", "class", "union", "enum") for word in words):
        return ("type", "")
    named = [token.text for token in head if token.kind == "name" and token.text not in ("constexpr", "const")]
    return ("init", named[-1] if named else "")


class Source:
    def __init__(self, file, text):
        self.file = file
        self.text = text
        self.tokens = tokens_of(text)
        name_scopes(self.tokens)
        self.skipped = self.skipped_ranges()

    def skipped_ranges(self):
        """static_assert and the layout macros: they are proved at compile time."""
        ranges = []
        for index, token in enumerate(self.tokens):
            if token.text in ("static_assert",) or token.text.startswith("ABI"):
                after = index + 1
                if after < len(self.tokens) and self.tokens[after].text == "(" and self.tokens[after].match >= 0:
                    ranges.append((token.start, self.tokens[self.tokens[after].match].end))
        return ranges

    def is_skipped(self, offset):
        return any(first <= offset < end for first, end in self.skipped)

    def mutant(self, kind, start, end, replacement, function):
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        last = len(self.text) if last < 0 else last
        new = self.text[first:start] + replacement + self.text[end:last]
        if kind == "statement":
            old, new = self.text[start:end], "(deleted)"
        else:
            old = self.text[first:last]
        return Mutant(self.file, start, end, replacement, kind, function,
                      self.text.count("\n", 0, start) + 1, " ".join(old.split()), " ".join(new.split()))

    def mutants(self):
        found = []
        for index, token in enumerate(self.tokens):
            if self.is_skipped(token.start) or token.scope in ("namespace", "type"):
                continue
            found += self.comparisons(token)
            found += self.constants(index, token)
            if token.scope in ("function", "block", "init") and token.function:
                found += self.arguments(index, token)
            if token.scope in ("function", "block"):
                found += self.deletions(index, token)
        return found

    def comparisons(self, token):
        if token.kind == "op" and token.text in COMPARISONS:
            if self.text[token.start - 1].isspace() and self.text[token.end : token.end + 1].isspace():
                for other in COMPARISONS[token.text]:
                    yield self.mutant("comparison", token.start, token.end, other, token.function)
        elif token.text == "!":
            yield self.mutant("comparison", token.start, token.end, "", token.function)

    def constants(self, index, token):
        if token.text in ("true", "false"):
            other = "false" if token.text == "true" else "true"
            yield self.mutant("constant", token.start, token.end, other, token.function)
        if token.kind != "number":
            return
        digits = token.text.rstrip("uUlLzZ")
        suffix = token.text[len(digits) :]
        plain = digits.replace("'", "")
        value = int(plain, 16 if plain[:2] in ("0x", "0X") else 8 if re.fullmatch(r"0\d+", plain) else 10)
        for changed in {0: (1,), 1: (0, 2)}.get(value, (value + 1, value - 1)):
            shown = hex(changed) if plain[:2] in ("0x", "0X") else str(changed)
            yield self.mutant("constant", token.start, token.end, shown + suffix, token.function)

    def arguments(self, index, token):
        after = index + 1
        if token.kind != "name" or token.text in NO_CALLS or after >= len(self.tokens):
            return
        if self.tokens[after].text != "(" or self.tokens[after].match < 0:
            return
        before = self.tokens[index - 1]
        if before.kind == "name" and before.text not in ("return", "else", "case"):
            return  # a declaration
        pieces = self.split_list(after)
        for first, last in pieces:
            piece = self.text[first:last]
            # Line numbers in messages are free: no test looks at them.
            if piece not in ("0", "nullptr", "__LINE__") and not piece.startswith(('"', "[")):
                yield self.mutant("argument", first, last, "0", token.function)
        for (a, b), (c, d) in zip(pieces, pieces[1:]):
            if self.text[a:b] != self.text[c:d] and not self.text[c:d].startswith("["):
                swapped = self.text[c:d] + self.text[b:c] + self.text[a:b]
                yield self.mutant("argument", a, d, swapped, token.function)

    def split_list(self, bracket):
        """Start and end of every piece of a list in brackets."""
        pieces, index, first = [], bracket + 1, bracket + 1
        end = self.tokens[bracket].match
        while index <= end:
            token = self.tokens[index]
            if token.text == "," or index == end:
                if index > first:
                    pieces.append((self.tokens[first].start, self.tokens[index - 1].end))
                first = index + 1
            elif token.match > index:
                index = token.match
            index += 1
        return pieces

    def deletions(self, index, token):
        before = self.tokens[index - 1]
        starts = before.text in (";", "{", "}", "else", "do") or (
            before.text == ")" and self.tokens[before.match - 1].text in ("if", "for", "while", "constexpr"))
        if before.text == ":" and self.tokens[index - 2].text not in ("?",):
            starts = self.is_label(index - 1)
        if not starts or token.text in NO_DELETION or token.text in (";", "{", "}", ")"):
            return
        if self.is_in_brackets(index):
            return
        end = index
        while end < len(self.tokens) and self.tokens[end].text != ";":
            end = self.tokens[end].match + 1 if self.tokens[end].match > end else end + 1
        if end >= len(self.tokens) or self.is_declaration(index):
            return
        if token.text == "return" and self.ends_function(end):
            return
        # As many lines as before: the messages' line numbers stay.
        lines = self.text.count("\n", token.start, self.tokens[end].end)
        yield self.mutant("statement", token.start, self.tokens[end].end, ";" + "\n" * lines, token.function)

    def is_label(self, colon):
        at = colon
        while at > 0 and self.tokens[at].text not in (";", "{", "}", "case", "default", "?"):
            at -= 1
        return self.tokens[at].text in ("case", "default")

    def is_in_brackets(self, index):
        """Inside the head of a for: its parts are no statements."""
        depth = 0
        for token in reversed(self.tokens[:index]):
            if token.text == ")":
                depth += 1
            elif token.text == "(":
                if depth == 0:
                    return True
                depth -= 1
            elif token.text in ("{", "}") and depth == 0:
                return False
        return False

    def is_declaration(self, index):
        """A type and a name: two names with nothing between but *, &, <...>, :: and the like."""
        at, names = index, 0
        while at < len(self.tokens):
            token = self.tokens[at]
            if token.kind == "name":
                names += 1
                if names > 1:
                    return token.text not in ("new",) and self.tokens[index].text not in ("return", "delete")
                at += 1
                while self.tokens[at].text == "::" and self.tokens[at + 1].kind == "name":
                    at += 2
                if self.tokens[at].text == "<" and not self.text[self.tokens[at].start - 1].isspace():
                    while self.tokens[at].text != ">":
                        at += 1
                    at += 1
            elif token.text in ("*", "&") and names == 1:
                at += 1
            else:
                return False
        return False

    def ends_function(self, semicolon):
        """Whether only closing brackets follow up to the function's end: its last result."""
        at = semicolon + 1
        return at < len(self.tokens) and self.tokens[at].text == "}" and (
            self.tokens[at].scope not in ("function", "block"))
