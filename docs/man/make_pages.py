#!/usr/bin/env python3
"""make_pages.py [--nvrec PROGRAM] --version VERSION --to DIRECTORY PAGE... - manual pages from their sources.

A source is a page in mdoc(7) in which these lines are replaced:

    @options NAME...      these options of the command, as its --help has them; a name is "--layout", and
                          "*" all of its options that are named nowhere on the page
    @choices ARGUMENT     the values that an argument without dashes can have

and @VERSION@ by the version. The command is the one of the file's name: nvrec-wall.1 asks "nvrec wall
--help". So a page has every option that the program has, with the program's own words and defaults, and
a source that names an option that is gone stops the build. values.txt beside this script has the
names by which pages call the values of options.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent


def stop(text):
    sys.exit(f"make_pages.py: {text}")


def help_of(program, command):
    # What the environment changes in a help text is shown by the name of its variable.
    environment = {**os.environ, "LC_ALL": "C", "XDG_RUNTIME_DIR": "$XDG_RUNTIME_DIR"}
    asked = subprocess.run([program, *command, "--help"], capture_output=True, text=True, env=environment)
    if asked.returncode != 0:
        stop(f"{program} {' '.join(command)} --help: {asked.stderr}")
    return asked.stdout


class Entry:
    """An option or argument: "-l,--layout TEXT:{auto,1}=auto   How the screen is divided"."""

    def __init__(self, head, words):
        self.names, _, value = head.partition(" ")
        self.words = words
        self.needs = re.findall(r"(Needs|Excludes): (\S+)", value)
        value = re.sub(r"\s*(Needs|Excludes): \S+", "", value)
        self.required = "REQUIRED" in value
        value = value.replace("REQUIRED", "").replace("...", "").strip()
        # The default stands behind the last "=" that is outside of braces and behind no ">".
        found = re.match(r"(.*?[}\])\w]|.*NUMBER>=0)=([^={}>]*)$", value)
        self.kind, self.default = (found.group(1), found.group(2)) if found else (value, None)
        named = re.search(r"value in \{(.*?)\}", self.kind)
        listed = re.search(r":\{(.*?)\}", self.kind)
        self.choices = []
        if named:
            self.choices = [one.split("->")[0] for one in named.group(1).split(",")]
        elif listed:
            self.choices = listed.group(1).split(",")
        between = re.search(r" in \[(\S+) - (\S+)\]", self.kind)
        self.bounds = between.groups() if between else None

    def long_name(self):
        return next((name for name in self.names.split(",") if name.startswith("--")), self.names)


def entries(text, section):
    """The entries of a section. What they mean begins beside them, or on lines further in below."""
    found = re.search(rf"^{section}:\n((?:  .*\n)+)", text, re.M)
    heads = []
    for line in found.group(1).splitlines() if found else []:
        if re.match(r"  \S", line):
            head, _, words = line.strip().partition("  ")
            heads.append((head, words.strip()))
        else:
            heads[-1] = (heads[-1][0], (heads[-1][1] + " " + line.strip()).strip())
    return [Entry(head, words) for head, words in heads]


def escape(text):
    text = text.replace("\\", "\\e").replace("--", "\\-\\-").replace('"', "\\(dq")
    text = re.sub(r"(?<!\S)(?=\S*[/_=]\S|[A-Z]+,[A-Z])", r"\\%", text)  # not to be hyphenated
    return re.sub(r"(?m)^([.'])", r"\\&\1", text)


def flag(name):
    dashes, word = re.match(r"(--?)(.*)", name).groups()
    return "Fl " * len(dashes) + word.replace("-", "\\-")


def value_names():
    names = {}
    for line in (HERE / "values.txt").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            option, _, value = line.rpartition(" ")
            names[option] = value
    return names


def sentence(text):
    text = text.strip()
    return text if re.search(r"[.!?]$", text) else text + "."


def listed(values):
    return ", ".join(escape(value) for value in values)


def described(option, command, values):
    heads = []
    for name in option.names.split(","):
        shown = flag(name)
        if option.kind:
            own = " ".join([*command, option.long_name()])
            value = values.get(own) or values.get(option.long_name()) or option.kind.split(":")[0].lower()
            shown += " Ar " + escape(value)
        heads.append(shown)
    lines = [".It " + " , ".join(heads), escape(sentence(option.words))]
    if option.choices and not all(choice in option.words for choice in option.choices):
        lines.append(f"One of {listed(option.choices)}.")
    if option.bounds:
        lines.append(f"From {escape(option.bounds[0])} to {escape(option.bounds[1])}.")
    for word, other in option.needs:
        lines.append({"Needs": "Only with", "Excludes": "Not together with"}[word])
        lines.append(f".{flag(other)} .")
    if option.required:
        lines.append("This option is required.")
    elif option.default not in (None, ""):
        lines.append(f"Default: {escape(option.default)}.")
    return "\n".join(lines)


def option_list(options, command, values):
    shown = "\n".join(described(option, command, values) for option in options)
    return f".Bl -tag -width indent\n{shown}\n.El"


def page(source, program, version):
    text = source.read_text(encoding="utf-8").replace("@VERSION@", version)
    wanted = re.findall(r"^@options (.*)$", text, re.M)
    if wanted or "@choices" in text:
        if not program:
            return None
        command = source.stem.split("-")[1:]
        told = help_of(program, command)
        options = {option.long_name(): option for option in entries(told, "Options")}
        arguments = {argument.names: argument for argument in entries(told, "Positionals")}
        named = " ".join(wanted).split()
        for name in named:
            if name != "*" and name not in options:
                stop(f"{source.name} names {name}, which the program does not have")
        rest = [option for name, option in options.items() if name not in named]
        if rest and "*" not in named:
            stop(f"{source.name} leaves out " + " ".join(option.long_name() for option in rest))
        values = value_names()

        def replacement(match):
            chosen = []
            for name in match.group(1).split():
                chosen += rest if name == "*" else [options[name]]
            return option_list(chosen, command, values)

        text = re.sub(r"^@options (.*)$", replacement, text, flags=re.M)
        for name, argument in arguments.items():
            text = text.replace(f"\n@choices {name}\n", f"\n{listed(argument.choices)}.\n")
    return text


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--nvrec")
    parser.add_argument("--version", required=True)
    parser.add_argument("--to", required=True, type=pathlib.Path)
    parser.add_argument("pages", nargs="+", type=pathlib.Path)
    given = parser.parse_args()
    given.to.mkdir(parents=True, exist_ok=True)
    for source in given.pages:
        text = page(source, given.nvrec, given.version)
        if text is None:
            stop(f"{source.name} needs --nvrec")
        (given.to / source.name).write_text(text, encoding="utf-8")


main()
