"""See ../mutants.sh."""

import concurrent.futures
import filecmp
import itertools
import json
import os
import random
import shlex
import shutil
import subprocess
import sys
import tempfile
import threading
import time

import mutators

# The unit and trace tests of every subsystem of src/.
TESTS = {
    "audio": ["trace_audio"],
    "board": ["trace_board"],
    "core": ["unit_core", "trace_core"],
    "frontend": ["trace_frontend"],
    "gui": ["unit_gui", "trace_gui"],
    "input": ["trace_input"],
    "snap": ["trace_snap"],
    "start": ["unit_core", "trace_core"],
    "stream": ["stream_test", "stream_model_test"],
    "text": ["text_unit"],
    "view": ["trace_view", "trace_zoom", "trace_playback", "trace_output"],
}
DATA_TABLES = ("_table.cpp", "_tables.cpp")  # made by tools/text_tables, and checked against their inputs
JOBS = 2
TOOLS = os.path.dirname(os.path.abspath(__file__))


def fail(text):
    print(text, file=sys.stderr)
    sys.exit(2)


def run(command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


class Tree:
    """A scratch copy of the checkout and its build; the mutants' objects stand beside it."""

    def __init__(self, root, scratch):
        self.source = os.path.join(scratch, "source")
        self.build = os.path.join(scratch, "build")
        self.targets, self.objects, self.links, self.depends = [], {}, {}, {}
        self.case_seconds = {}  # how long a case of a test may take
        for name in run(["git", "-C", root, "ls-files"]).stdout.split("\n"):
            if name and os.path.isfile(os.path.join(root, name)):
                self.copy(os.path.join(root, name), os.path.join(self.source, name))

    @staticmethod
    def copy(origin, copy):
        if os.path.exists(copy) and filecmp.cmp(origin, copy, shallow=False):
            return
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        shutil.copyfile(origin, copy)
        shutil.copymode(origin, copy)

    def configure_and_build(self, targets):
        self.targets = targets
        flags = ["-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O1 -w", "-DCMAKE_C_FLAGS=-O1 -w",
                 "-DNVRHAL_PLATFORM=linux", "-DNVRHAL_BENCH=OFF", "-DNVRHAL_NVREC=OFF",
                 "-DNVRHAL_TEST_FLAGS=-O0;-g0",
                 "-DNVRHAL_TEST_MAIN=" + os.path.join(TOOLS, "each_case_alone.cpp")]
        for linker in ("lld", "gold"):
            if shutil.which("ld." + linker):
                flags.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=" + linker)
                break
        configured = run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build,
                          "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"] + flags)
        if configured.returncode != 0:
            fail(configured.stdout + configured.stderr)
        built = run(["ninja", "-C", self.build, f"-j{JOBS}"] + targets)
        if built.returncode != 0:
            fail(built.stdout[-4000:])
        self.read_commands()

    def read_commands(self):
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as commands:
            for entry in json.load(commands):
                words = shlex.split(entry["command"])
                self.objects[words[words.index("-o") + 1]] = (os.path.realpath(entry["file"]), words)
        for target in self.targets:
            link = run(["ninja", "-C", self.build, "-t", "commands", "-s", "bin/" + target]).stdout
            self.links[target] = [line for line in link.split("\n") if " -o bin/" in line][-1]
        self.depends = self.read_depends()

    def read_depends(self):
        """Object to all the files of src that it was made from."""
        depends, current = {}, None
        for line in run(["ninja", "-C", self.build, "-t", "deps"]).stdout.split("\n"):
            if line and not line.startswith(" "):
                current = depends.setdefault(line.split(":")[0], set())
            elif line.strip() and current is not None:
                current.add(os.path.realpath(os.path.join(self.build, line.strip())))
        return depends

    def objects_of(self, file, target):
        """The objects of a test's link that are made from a file of src."""
        path = os.path.realpath(os.path.join(self.source, file))
        words = set(shlex.split(self.links[target]))
        return [name for name, (source, _) in self.objects.items()
                if name in words and (source == path or path in self.depends.get(name, ()))]


class Worker:
    """Where one mutant at a time is written, compiled, linked and run."""

    def __init__(self, tree, place):
        self.tree, self.place = tree, place

    def file_of(self, mutant, text):
        """The changed file, under the name by which it is included."""
        shutil.rmtree(self.place, ignore_errors=True)
        path = os.path.join(self.place, os.path.relpath(mutant.file, "src"))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        os.makedirs(os.path.join(self.place, "cwd"), exist_ok=True)
        with open(path, "w", encoding="utf-8") as out:
            out.write(text)
        return path

    def compile(self, object_name, changed, further=()):
        """The changed object, or None when it does not compile."""
        source, words = self.tree.objects[object_name]
        words = list(words)
        is_header = changed.endswith(".h")
        words[words.index("-o") + 1] = out = os.path.join(self.place, object_name.replace("/", "_"))
        if not is_header:
            words[words.index("-c") + 1] = changed
        for flag in ("-MT", "-MF"):
            if flag in words:
                del words[words.index(flag) : words.index(flag) + 2]
        words = [word for word in words if word != "-MD"] + list(further)
        # The changed header comes first; it is included by its path from src.
        first = 2 if "ccache" in words[0] else 1
        words[first:first] = ["-I" + self.place]
        return out if run(words, cwd=self.tree.build).returncode == 0 else None

    def test(self, target, changed):
        """(state, case): the target linked with the changed objects, and run."""
        link = self.tree.links[target]
        program = os.path.join(self.place, target)
        words = [changed.get(word, word) for word in shlex.split(link)]
        words[words.index("-o") + 1] = program
        linked = run(["sh", "-c", " ".join(word if word in (":", "&&") else shlex.quote(word) for word in words)],
                     cwd=self.tree.build)
        if linked.returncode != 0:
            return "not compiled", "linker"
        seconds = str(self.tree.case_seconds.get(target, 600))
        ran = run([program], cwd=os.path.join(self.place, "cwd"), errors="replace",
                  env={**os.environ, "CASE_SECONDS": seconds})
        case = ran.stdout.strip().split("\n")[-1]
        return {0: ("survived", ""), 3: ("timed out", case)}.get(ran.returncode, ("killed", case))

    def judge(self, mutant, original, targets):
        changed_file = self.file_of(mutant, original[: mutant.start] + mutant.replacement + original[mutant.end :])
        names = sorted({name for target in targets for name in self.tree.objects_of(mutant.file, target)})
        changed, differs = {}, False
        for name in names:
            made = self.compile(name, changed_file)
            if made is None:
                return "not compiled", ""
            changed[name] = made
            differs = differs or not filecmp.cmp(made, os.path.join(self.tree.build, name), shallow=False)
        if not differs:
            return "same code", ""
        for target in targets:
            state, case = self.test(target, changed)
            if state != "survived":
                return state, case
        return ("same code", "") if self.is_same_optimised(mutant, names) else ("survived", "")

    def is_same_optimised(self, mutant, names):
        """Whether the optimiser makes the same of both: then no test can tell them apart."""
        if mutant.file.endswith(".h"):
            return False
        path = os.path.join(self.place, os.path.relpath(mutant.file, "src"))
        original = os.path.join(self.tree.source, mutant.file)
        for name in names:
            made = self.compile(name, path, ["-O2"])
            kept = shutil.copyfile(made, made + ".changed")
            if not filecmp.cmp(kept, self.compile(name, original, ["-O2"]), shallow=False):
                return False
        return True


def read_equivalents(path):
    """The listed keys and their reasons: blocks of "file: function", "- old", "+ new", "= reason"."""
    listed = {}
    with open(path, encoding="utf-8") as lines:
        blocks = "".join(line for line in lines if not line.startswith("#")).split("\n\n")
    for block in filter(str.strip, blocks):
        lines = block.strip().split("\n")
        marks = "".join(line[:1] for line in lines[1:4])
        if len(lines) < 4 or marks != "-+=" or ": " not in lines[0]:
            fail(f"{path}: not a block of file and function, -, +, =:\n{block}")
        file, function = lines[0].split(": ", 1)
        reason = " ".join([lines[3][2:]] + [line.strip() for line in lines[4:]])
        listed[(file, function, lines[1][2:], lines[2][2:])] = reason
    return listed


def draw(candidates, seed):
    """All candidates in the seed's order, the kinds in turn."""
    order = random.Random(seed)
    piles = []
    for kind in mutators.KINDS:
        pile = [mutant for mutant in candidates if mutant.kind == kind]
        order.shuffle(pile)
        piles.append(pile)
    return [mutant for turn in itertools.zip_longest(*piles) for mutant in turn if mutant]


def show(mutant, state, note):
    print(f"{state:12} {mutant.file}:{mutant.line} ({mutant.function}) {mutant.kind}: "
          f"{mutant.old}  =>  {mutant.new}{note}", flush=True)


def read_sources(root, paths):
    sources = {}
    for name in sorted(run(["git", "-C", root, "ls-files", "src"]).stdout.split("\n")):
        if not name.endswith((".cpp", ".h")) or name.endswith(DATA_TABLES):
            continue
        if paths and not any(name == path or name.startswith(path.rstrip("/") + "/") for path in paths):
            continue
        if name.split("/")[1] not in TESTS:
            fail(f"{name}: tools/mutants/mutants.py knows no tests of this subsystem")
        with open(os.path.join(root, name), encoding="utf-8") as text:
            sources[name] = text.read()
    return sources


def test_unchanged(tree, worker, mutant):
    """All tests must pass; a case may later take three times as long as all cases of its program."""
    for target in tree.targets:
        begun = time.monotonic()
        worker.file_of(mutant, "")
        state, case = worker.test(target, {})
        if state != "survived":
            fail(f"{target} does not pass as it is: {state} {case}")
        tree.case_seconds[target] = 20 + 3 * int(time.monotonic() - begun)


def judge_all(tree, scratch, sources, order, count):
    """Judge mutants in their order until `count` of them have run; yields them as they were drawn."""
    workers = [Worker(tree, os.path.join(scratch, f"mutant{i}")) for i in range(JOBS)]
    lock = threading.Lock()

    def judge(mutant):
        with lock:
            worker = workers.pop()
        try:
            return mutant, *worker.judge(mutant, sources[mutant.file], TESTS[mutant.file.split("/")[1]])
        finally:
            with lock:
                workers.append(worker)

    ran, at = 0, 0
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        while ran < count and at < len(order):
            portion = order[at : at + count - ran]
            at += len(portion)
            for result in pool.map(judge, portion):
                ran += result[1] not in ("not compiled", "same code")
                yield result


def main():
    if len(sys.argv) < 3 or not all(word.isdigit() for word in sys.argv[1:3]):
        fail("usage: tools/mutants.sh SEED COUNT [src/SUBSYSTEM or file...]")
    seed, count, paths = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3:]
    root = run(["git", "-C", TOOLS, "rev-parse", "--show-toplevel"]).stdout.strip()
    sources = read_sources(root, paths)
    candidates = [mutant for name, text in sources.items() for mutant in mutators.Source(name, text).mutants()]
    if not candidates:
        fail("nothing to change there")
    equivalents = read_equivalents(os.path.join(TOOLS, "equivalent.txt"))
    keys = {mutant.key for mutant in candidates}
    stale = [key for key in equivalents if key[0] in sources and key not in keys]

    begun = time.monotonic()
    kept = os.environ.get("NVRHAL_MUTANTS_DIR")
    scratch = kept or tempfile.mkdtemp(prefix="nvrhal-mutants.")
    counts = {}
    unlisted = 0
    try:
        tree = Tree(root, scratch)
        rooms = sorted({name.split("/")[1] for name in sources})
        tree.configure_and_build(sorted({target for room in rooms for target in TESTS[room]}))
        test_unchanged(tree, Worker(tree, os.path.join(scratch, "mutant0")), candidates[0])
        print(f"{len(candidates)} candidates; built in {time.monotonic() - begun:.0f} s", flush=True)
        for mutant, state, case in judge_all(tree, scratch, sources, draw(candidates, seed), count):
            if state == "survived" and mutant.key in equivalents:
                state = "equivalent"
            counts[state] = counts.get(state, 0) + 1
            unlisted += state == "survived"
            if state != "same code":
                show(mutant, state, f"  ({case})" if case else "")
    finally:
        if not kept:
            shutil.rmtree(scratch, ignore_errors=True)
    for key in stale:
        print("listed as equivalent, but no such change exists any more:", *key, sep="\n  ")
    print(f"seed {seed}: " + ", ".join(f"{number} {state}" for state, number in sorted(counts.items())) +
          f"; {time.monotonic() - begun:.0f} s")
    sys.exit(1 if unlisted or stale else 0)


if __name__ == "__main__":
    main()
