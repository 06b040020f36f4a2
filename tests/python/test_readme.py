"""The examples of the package's README, as they stand there."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

README = pathlib.Path(__file__).resolve().parents[2] / "python" / "README.md"


def blocks(language):
    """The code of one language, in the order of the page."""
    return re.findall(rf"^```{language}\n(.*?)^```", README.read_text(encoding="utf-8"), re.M | re.S)


@pytest.fixture(name="folder")
def _folder(tmp_path, streams):
    """A folder with the two cameras of the page."""
    for stream, name in zip(streams, ("front.h264", "yard.h265")):
        shutil.copy(stream, tmp_path / name)
    return tmp_path


def python(folder, *words):
    """Run Python there."""
    # A run directory of its own: the recorder's control socket and the board's file are nobody else's.
    environment = {**os.environ, "PYTHONPATH": str(README.parent), "XDG_RUNTIME_DIR": str(folder)}
    return subprocess.run([sys.executable, "-B", *words], cwd=folder, env=environment, capture_output=True, text=True,
                          timeout=60, check=False)


def test_the_page_has_two_scripts_and_a_test():
    assert len(blocks("python")) == 3 and len(blocks("ini")) == 1


def test_the_first_script_runs(folder):
    done = python(folder, "-c", blocks("python")[0])
    assert done.returncode == 0, done.stderr
    assert (folder / "menu.png").read_bytes().startswith(b"\x89PNG")


def test_the_second_script_tells_the_refusal(folder):
    done = python(folder, "-c", blocks("python")[1])
    assert done.returncode == 0, done.stderr
    assert re.fullmatch(r"\w+ .*mneu.*\n", done.stdout)


def test_the_tests_pass(folder):
    (folder / "pytest.ini").write_text(blocks("ini")[0], encoding="utf-8")
    (folder / "test_recorder.py").write_text(blocks("python")[2], encoding="utf-8")
    done = python(folder, "-m", "pytest", "-p", "vboard.pytest_plugin", "-p", "no:cacheprovider", "-q")
    assert "2 passed" in done.stdout, done.stdout + done.stderr
