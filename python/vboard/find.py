"""Boards that run, by the files that they leave in the user's run directory: NAME.json with url, token and pid."""

import json
import os
import pathlib

from .board import Board
from .errors import BoardNotFound


def run_directory():
    """Where boards leave their files."""
    base = os.environ.get("XDG_RUNTIME_DIR")
    return pathlib.Path(base, "vboard") if base else pathlib.Path(f"/tmp/vboard-{os.getuid()}")


def _is_ours(directory):
    """Whether nobody else can have put files there."""
    try:
        status = os.lstat(directory)
    except OSError:
        return False
    return status.st_uid == os.getuid() and not status.st_mode & 0o022


def _lives(pid):
    try:
        os.kill(pid, 0)
    except ProcessLookupError:
        return False
    except PermissionError:
        return True
    return True


def read_board(path):
    """The Board of a file, or None when it has ended or the file is not whole."""
    try:
        found = json.loads(path.read_text(encoding="utf-8"))
        # Before it listens, a board only has its name: the address is empty.
        if not found["url"] or not _lives(int(found["pid"])):
            return None
        return Board(str(found["url"]), str(found["token"]), str(found["name"]))
    except (OSError, ValueError, KeyError, TypeError):
        return None


def running():
    """The boards of this user that run, by name."""
    directory = run_directory()
    if not _is_ours(directory):
        return {}
    found = (read_board(path) for path in sorted(directory.glob("*.json")))
    return {board.name: board for board in found if board is not None}


def connect(name=None) -> Board:
    """A board that runs already: the one of that name, or without a name the only one."""
    boards = running()
    if name is not None:
        if name not in boards:
            raise BoardNotFound(f"no board \"{name}\" runs; there are: {', '.join(boards) or 'none'}")
        return boards[name]
    if not boards:
        raise BoardNotFound("no board runs: start one with vboard run")
    if len(boards) > 1:
        raise BoardNotFound(f"several boards run, name one: {', '.join(boards)}")
    return next(iter(boards.values()))
