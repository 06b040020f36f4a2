#!/usr/bin/env python3
"""board_requests.py [--check] - write what is made of the description of the board's requests, or see that it is so.

The description, apps/vboard/api/v1.json, is what vboard itself checks requests against and makes the verbs of
"vboard ctl" from. Of it are made:

    docs/board-requests.md        the page with every request
    python/vboard/requests.py     the Python package's methods, one a request
"""

import json
import os
import re
import sys
import textwrap

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
DESCRIPTION = os.path.join(ROOT, "apps", "vboard", "api", "v1.json")
PAGE = os.path.join(ROOT, "docs", "board-requests.md")
METHODS = os.path.join(ROOT, "python", "vboard", "requests.py")

HEAD = """# Requests of a board

<!-- Written by tools/board_requests.py from apps/vboard/api/v1.json: change that file, and run the script. -->

A board that was started by `vboard run` answers requests over HTTP and tells events over WebSocket. The page in
the browser, `vboard ctl`, scenarios and the [Python package](../python/README.md) are made of these requests; a
program of your own can send them as well. This page lists them all; `GET /api/{version}/description` gives the
description that it is made from.

## How to ask

- **Address.** `vboard run` prints the page's address when it starts. Behind the host follow `/api/{version}` and
  the path of the request: `http://127.0.0.1:PORT/api/{version}/state`. The file `NAME.json` in
  `$XDG_RUNTIME_DIR/vboard` (without that variable: `/tmp/vboard-UID`), which only its owner can read, has `url`
  and `token`.
- **Token.** Every request carries it: `Authorization: Bearer TOKEN`, or `?token=TOKEN` in the address.
- **Parameters.** Those of a `GET` or `DELETE` request stand in the address (`?device=0&type=png`), those of a
  `POST` request are a JSON object in the body, of 64 KiB at most. One that the request does not have is refused.
- **Result.** Status 200 and a JSON object, unless the request says otherwise. A refused request has another
  status and `{{"error": {{"code": ..., "message": ..., "parameter": ...}}}}`; `parameter` is there when a certain
  one is wrong.
- **Command line.** `vboard ctl VERB`: parameters in capitals stand behind the verb, all others are options
  (`--width 640`).

```sh
vboard ctl press menu
curl -H "Authorization: Bearer $TOKEN" -d '{{"button": "menu"}}' http://127.0.0.1:$PORT/api/{version}/press
```
"""


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def sentence(text):
    text = text.strip()
    return text[:1].upper() + text[1:] + ("" if not text or text[-1] in ".!?" else ".")


def paragraph(text):
    return textwrap.fill(sentence(text), 110, break_long_words=False, break_on_hyphens=False) + "\n"


def cell(text):
    return text.replace("|", "\\|").replace("\n", " ")


def number(value):
    """A long number in groups: 31536000 as 31 536 000; one of 32 bits or more as a power where it is one."""
    for power in (53, 32, 31):
        for value_of, shown in ((2**power, f"2^{power}"), (2**power - 1, f"2^{power} - 1"), (-(2**power), f"-2^{power}")):
            if value == value_of:
                return shown
    return f"{value:,}".replace(",", " ") if abs(value) >= 100000 else str(value)


def resolved(parameter, types):
    return {**types[parameter["is"]], **parameter} if "is" in parameter else parameter


def values(parameter):
    """What a parameter can be: its type, its range and its unit."""
    kind = parameter["type"].replace("|", " or ")
    if "values" in parameter:
        return ", ".join(f"`{value}`" for value in parameter["values"])
    if kind == "array":
        kind = f"array of {parameter['length']} {parameter['items']}s"
    if "minimum" in parameter:
        kind += f", {number(parameter['minimum'])} to {number(parameter['maximum'])}"
    return kind + (f", {parameter['unit']}" if "unit" in parameter else "")


def default(parameter):
    if "default" in parameter:
        return f"`{json.dumps(parameter['default'])}`"
    return "may be missing" if parameter.get("optional") else "required"


def about(parameter, own, types):
    texts = [own.get("about", "")]
    if "is" in own and types[own["is"]].get("about"):
        texts.append(types[own["is"]]["about"])
    return sentence("; ".join(text for text in texts if text))


def parameter_table(parameters, types):
    rows = ["| parameter | values | default | |", "|---|---|---|---|"]
    for name, own in parameters.items():
        full = resolved(own, types)
        rows.append(f"| `{name}` | {cell(values(full))} | {default(full)} | {cell(about(full, own, types))} |")
    return "\n".join(rows) + "\n"


def result_text(result):
    if result is None:
        return "Result: an empty object.\n"
    if isinstance(result, str):
        return f"Result: the body is {result}.\n"
    rows = ["| result | |", "|---|---|"]
    rows += [f"| `{name}` | {cell(str(kind))} |" for name, kind in result.items()]
    return "\n".join(rows) + "\n"


def verb(request):
    words = [request["verb"]]
    for name in request.get("arguments", []):
        own = request.get("parameters", {}).get(name, {})
        shown = name.upper()
        words.append(f"[{shown}]" if own.get("optional") or "default" in own else shown)
    return "vboard ctl " + " ".join(words)


def anchor(name):
    return name.replace(".", "")


def request_text(request, types, version):
    parts = [f"### {request['name']}\n", paragraph(request["about"]),
             f"`{request['method']} /api/{version}{request['path']}` - `{verb(request)}`\n"]
    if request.get("parameters"):
        parts.append(parameter_table(request["parameters"], types))
    parts.append(result_text(request.get("result")))
    if request.get("records"):
        parts.append("While a scenario is recorded, it becomes a step of it.\n")
    return "\n".join(parts)


def page():
    description = json.loads(read(DESCRIPTION))
    version, types = description["version"], description["types"]
    parts = [HEAD.format(version=version)]
    parts.append("## Overview\n")
    rows = ["| request | | |", "|---|---|---|"]
    for one in description["requests"]:
        rows.append(f"| [{one['name']}](#{anchor(one['name'])}) | `{one['method']} {one['path']}` | {cell(sentence(one['about']))} |")
    parts.append("\n".join(rows) + "\n")
    parts.append("## Errors\n")
    rows = ["| code | status | |", "|---|---|---|"]
    rows += [f"| `{code}` | {one['status']} | {cell(sentence(one['about']))} |" for code, one in description["errors"].items()]
    parts.append("\n".join(rows) + "\n")
    parts.append("## Requests\n")
    parts += [request_text(one, types, version) for one in description["requests"]]
    parts.append("## Sockets\n")
    parts.append(f"WebSockets stand below `/api/{version}` too, and take the token likewise.\n")
    for one in description["sockets"]:
        parts.append(f"### {one['path']}\n")
        parts.append(paragraph(one["about"]))
        if one.get("parameters"):
            parts.append(parameter_table(one["parameters"], types))
    parts.append("## Events\n")
    rows = ["| event | |", "|---|---|"]
    rows += [f"| `{one['name']}` | {cell(sentence(one['about']))} |" for one in description["events"]]
    parts.append("\n".join(rows) + "\n")
    return re.sub(r"\n{3,}", "\n\n", "\n".join(parts))


PYTHON_HEAD = '''"""Requests of a board, one method each. Written by tools/board_requests.py: change v1.json, and run the script.

What is left out has the board's own default. Times that a request wants in microseconds or milliseconds may
also be a text with a unit ("40ms", "2s", "1m") or a datetime.timedelta.
"""

# pylint: disable=redefined-builtin,too-many-arguments

from .times import microseconds, milliseconds, seconds_since_1970


class Requests:
    """Every request of the interface, version {version}."""

    def _ask(self, request, method, path, parameters):
        raise NotImplementedError
'''
PYTHON_TYPES = {"integer": "int", "number": "float", "string": "str", "boolean": "bool", "array": "list",
                "string|integer": "str | int"}
CONVERTERS = {"us": "microseconds", "ms": "milliseconds", "s": "seconds_since_1970"}


def python_parameters(request, types):
    """(name, own description, all of it), those that are required first, then as on the command line."""
    own = request.get("parameters", {})
    order = [name for name in request.get("arguments", []) if name in own]
    order += [name for name in own if name not in order]
    found = [(name, own[name], resolved(own[name], types)) for name in order]
    return sorted(found, key=lambda one: one[2].get("optional", False) or "default" in one[2])


def python_parameter(name, full):
    kind = PYTHON_TYPES[full["type"]]
    if full.get("unit") in CONVERTERS and full["type"] == "integer":
        kind = "int | str"
    if "default" in full:
        value = full["default"]
        return f"{name}: {kind} = {json.dumps(value) if isinstance(value, str) else repr(value)}"
    return f"{name}: {kind} | None = None" if full.get("optional") else f"{name}: {kind}"


def python_value(name, full):
    converter = CONVERTERS.get(full.get("unit")) if full["type"] == "integer" else None
    return f"{converter}({name})" if converter else name


def wrapped(line, indent, further):
    """A line of at most 108 columns, and what does not fit further in below it."""
    inner = len(line) - len(line.lstrip())
    return textwrap.fill(line.strip(), 108, initial_indent=" " * (indent + inner), break_long_words=False,
                         subsequent_indent=" " * (indent + inner + further), break_on_hyphens=False)


def listed(parts, indent):
    """Parts with commas between them, as many in a line as fit."""
    lines = [" " * indent]
    for at, part in enumerate(parts):
        shown = part + ("," if at + 1 < len(parts) else "")
        if len(lines[-1]) + len(shown) > 108 and lines[-1].strip():
            lines.append(" " * indent)
        lines[-1] += (" " if lines[-1].strip() else "") + shown
    return "\n".join(lines)


def method(request, types):
    name = request["name"].replace(".", "_")
    parameters = python_parameters(request, types)
    signature = ["self"] + [python_parameter(one, full) for one, _, full in parameters]
    result = request.get("result")
    kind = "bytes" if isinstance(result, str) else "dict"
    text = [f'"""{sentence(request["about"])}']
    for one, own, full in parameters:
        described = " - ".join(part for part in (values(full).replace("`", ""), about(full, own, types)) if part)
        text += ([""] if len(text) == 1 else []) + [f"{one}: {described}"]
    if isinstance(result, dict):
        text += ["", "Gives:"] + [f"    {one}: {of}" for one, of in result.items()]
    elif result:
        text += ["", f"Gives: {result}."]
    elif request["name"] == "description":
        text += ["", "Gives: the description."]
    head = f"    def {name}({', '.join(signature)}) -> {kind}:"
    if len(head) > 110:
        head = f"    def {name}(\n{listed(signature, 8)}\n    ) -> {kind}:"
    if len(text) == 1 and len(text[0]) < 95:
        lines = [head, f'        {text[0]}"""']
    else:
        shown = [wrapped(line, 8, 4 if at > 0 else 0) if line else "" for at, line in enumerate(text)]
        lines = [head, *shown, '        """']
    given = [f'"{one}": {python_value(one, full)}' for one, _, full in parameters]
    asked = "{" + ", ".join(given) + "}"
    back = f'return self._ask("{request["name"]}", "{request["method"]}", "{request["path"]}", '
    if len(back) + len(asked) > 100:
        asked = f"{{\n{listed(given, 12)}\n        }}"
    lines.append(f"        {back}{asked})")
    return "\n".join(lines)


def methods():
    description = json.loads(read(DESCRIPTION))
    parts = [PYTHON_HEAD.replace("{version}", str(description["version"]))]
    parts += [method(one, description["types"]) + "\n" for one in description["requests"]]
    return "\n".join(parts)


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        print(__doc__.split("\n")[0], file=sys.stderr)
        return 2
    stale = 0
    for path, text in ((PAGE, page()), (METHODS, methods())):
        if not check:
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        elif not os.path.exists(path) or read(path) != text:
            print(f"{os.path.relpath(path, ROOT)} is not what v1.json says: run tools/board_requests.py")
            stale += 1
    return 1 if stale else 0


sys.exit(main())
