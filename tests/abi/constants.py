#!/usr/bin/env python3
"""constants.py LIST DIRECTORY... - every constant of the list still has its value in the headers.

constants.py --renew LIST DIRECTORY...   writes the list
constants.py --self-test                 a constant that is gone or changed is found, one more is accepted

Constants are macros without parameters and enumerators. Programs have their values compiled in, and the
library never sees which; nothing but this list keeps them. The values are printed by a C program that
includes the headers.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

PRINT = r"""
    printf(_Generic((NAME), char *: "NAME \"%s\"\n", double: "NAME %g\n", default: "NAME %lld\n"),
           _Generic((NAME), char *: NAME, double: NAME, default: (long long)(NAME)));"""
NO_VALUES = re.compile(r"_H$|^NVRHAL_API$|^NVRHAL_ANYTHING$")


def names_in(text):
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    names = re.findall(r"^[ \t]*#[ \t]*define[ \t]+(\w+)[ \t]+\S", text, re.M)
    for body in re.findall(r"\benum\b\s*\w*\s*\{(.*?)\}", text, re.S):
        names += re.findall(r"(?:^|,)\s*(\w+)", body)
    return [name for name in names if not NO_VALUES.search(name)]


def values(directories):
    """{name: value} of all headers below the directories."""
    includes, prints, names = [], [], []
    for directory in directories:
        for header in sorted(pathlib.Path(directory).rglob("*.h")):
            includes.append(f'#include "{header.relative_to(directory)}"')
            for name in names_in(header.read_text(encoding="utf-8")):
                if name not in names:
                    names.append(name)
                    prints.append(PRINT.replace("NAME", name))
    with tempfile.TemporaryDirectory() as scratch:
        source = pathlib.Path(scratch, "print.c")
        source.write_text("\n".join(["#include <stdio.h>", *includes, "int main(void)", "{", *prints, "}", ""]))
        command = ["gcc", "-std=gnu11", "-w", *(f"-I{one}" for one in directories), "-o", f"{scratch}/print", source]
        subprocess.run(command, check=True)
        told = subprocess.run([f"{scratch}/print"], check=True, capture_output=True, text=True).stdout
    return dict(line.split(" ", 1) for line in told.splitlines())


def read_list(path):
    return dict(line.split(" ", 1) for line in path.read_text(encoding="utf-8").splitlines())


def compare(listed, now):
    bad = 0
    for name, value in listed.items():
        if now.get(name) != value:
            print(f"{name} was {value} and is {now.get(name, 'gone')}")
            bad += 1
    for name in now.keys() - listed.keys():
        print(f"{name} was added: renew the list, so that it is kept as well")
    print(f"{len(listed)} constants, {bad} changed")
    return bad


def self_test():
    header = "#define A_H\n#define A 1 /* one */\n#define CALL(x) x\nenum E {\n    B, /* D = 7 */\n    C = 4,\n};\n" \
             '#define NODE "/dev/a"\n#define HALF 0.5\n'
    samples = [("", "", 0), ("A 1", "A 2", 1), ("C = 4", "C = 5", 1), ("    B,", "", 1), ("/dev/a", "/dev/b", 1),
               ("0.5", "0.25", 1), ("B,", "B, X,", 0), ("#define A 1", "#define A 1\n#define Z 3", 0)]
    bad = 0
    with tempfile.TemporaryDirectory() as directory:
        path = pathlib.Path(directory, "a.h")
        path.write_text(header)
        listed = values([directory])
        if listed != {"A": "1", "B": "0", "C": "4", "NODE": '"/dev/a"', "HALF": "0.5"}:
            print(f"read wrongly: {listed}")
            bad += 1
        for old, new, expected in samples:
            path.write_text(header.replace(old, new))
            if compare(listed, values([directory])) != expected:
                print(f"'{old}' -> '{new}': {expected} was expected")
                bad += 1
    print(f"{len(samples)} samples, {bad} not judged rightly")
    return bad


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 1 if self_test() else 0
    renew = sys.argv[1] == "--renew"
    path, *directories = sys.argv[2 if renew else 1 :]
    path = pathlib.Path(path)
    now = values(directories)
    if renew:
        path.write_text("".join(f"{name} {value}\n" for name, value in sorted(now.items())), encoding="utf-8")
        print(f"{path}: {len(now)} constants written")
        return 0
    return 1 if compare(read_list(path), now) else 0


sys.exit(main())
