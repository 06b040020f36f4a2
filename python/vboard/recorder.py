"""A program on a board of its own."""

import itertools
import os
import pathlib
import shutil
import signal
import subprocess
import time

from .errors import BoardError, StartFailed, TimedOut
from .find import read_board, run_directory
from .times import milliseconds

_numbers = itertools.count(1)


class Recorder:
    """A program that `run` has started on a board; at the end of a "with" it is stopped.

    board: the Board
    folder: where files of requests lie
    log: file with all that the program and the board have printed
    process: the subprocess of vboard itself
    """

    def __init__(self, process, board, folder, log):
        self.process, self.board, self.folder, self.log = process, board, folder, log

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def __repr__(self):
        return f"<Recorder on {self.board!r}>"

    def log_text(self) -> str:
        """All that was printed so far."""
        return pathlib.Path(self.log).read_text(encoding="utf-8", errors="replace")

    def wait_log(self, text, timeout="5s") -> str:
        """Until a line of the log has this text in it, which is the result. TimedOut when none has."""
        end = time.monotonic() + milliseconds(timeout) / 1000
        while True:
            for line in self.log_text().splitlines():
                if text in line:
                    return line
            if time.monotonic() >= end:
                raise TimedOut(f"the log has no {text!r} after {timeout}; it ends with:\n{tail(self.log)}")
            time.sleep(0.02)

    def has_ended(self) -> bool:
        """Whether the program, and with it the board, has ended."""
        return self.process.poll() is not None

    def wait(self, timeout="10s") -> int:
        """Until the program ends by itself. Its exit status; that of a signal N is -N."""
        try:
            return self.process.wait(milliseconds(timeout) / 1000)
        except subprocess.TimeoutExpired:
            raise TimedOut(f"the program still runs after {timeout}") from None

    def stop(self, timeout="10s") -> int:
        """End the program by SIGTERM, and by force when it does not end in time. The exit status as of wait()."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        try:
            return self.wait(timeout)
        except TimedOut:
            self.process.kill()
            return self.process.wait()


def tail(log, lines=20):
    """The end of a log, for a message."""
    try:
        text = pathlib.Path(log).read_text(encoding="utf-8", errors="replace")
    except OSError as error:
        return str(error)
    return "\n".join(text.splitlines()[-lines:])


def find_vboard(program=None):
    """The program vboard: as given, of the variable VBOARD_PROGRAM, or of the path."""
    found = program or os.environ.get("VBOARD_PROGRAM") or shutil.which("vboard")
    if not found:
        raise StartFailed("there is no vboard on the path; name it by VBOARD_PROGRAM")
    return str(found)


def run(program, *args, board=None, folder=None, listen=None, record=None, stepped=False, no_reboot=False,
        options=(), log=None, env=None, cwd=None, start_timeout="20s", vboard=None) -> Recorder:
    """Start a program on a board of its own, and wait until both are there.

    program, args: what is run, as on a command line
    board: name of the board, by which `connect` and `vboard ctl --board` find it; one of its own by default
    folder: where files of requests lie; the current one by default
    listen: [ADDRESS:]PORT; by default a free port of the loopback
    record: file of the folder that becomes a scenario
    stepped: take the clock before the program begins
    no_reboot: end when the watchdog expires
    options: further options of vboard run, as they stand
    log: file for all that is printed; by default NAME.log in the folder
    env: variables beside those of this process
    cwd: where the program runs; the current folder by default
    start_timeout: how long the start may take
    vboard: the program vboard itself; by default VBOARD_PROGRAM, or the one of the path
    """
    name = board or f"{pathlib.Path(program).name}-{os.getpid()}-{next(_numbers)}"
    folder = pathlib.Path(folder or ".").resolve()
    log = pathlib.Path(log) if log else folder / f"{name}.log"
    command = [find_vboard(vboard), "run", "--board", name, "--folder", str(folder)]
    for option, value in (("--listen", listen), ("--record", record)):
        command += [option, str(value)] if value is not None else []
    command += ["--stepped"] if stepped else []
    command += ["--no-reboot"] if no_reboot else []
    command += [*options, "--", str(program), *(str(one) for one in args)]
    with open(log, "wb") as output:
        try:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                       cwd=cwd, env={**os.environ, **(env or {})})
        except OSError as error:
            raise StartFailed(f"{command[0]}: {error.strerror}") from error
    recorder = Recorder(process, None, folder, log)
    try:
        recorder.board = _started_board(process, name, log, milliseconds(start_timeout))
    except BaseException:
        process.kill()
        process.wait()
        raise
    return recorder


def _started_board(process, name, log, timeout_ms):
    """The board of a vboard that was started just now, once its program is there."""
    path = run_directory() / f"{name}.json"
    end = time.monotonic() + timeout_ms / 1000
    while process.poll() is None and time.monotonic() < end:
        board = read_board(path)
        if board is not None:
            try:
                board.state()  # answered from inside of the program
                return board
            except BoardError as error:
                if error.code not in ("gone", "busy", "power_off"):
                    raise
        time.sleep(0.02)
    if process.poll() is not None:
        raise StartFailed(f"vboard run ended with status {process.returncode}:\n{tail(log)}")
    raise StartFailed(f"there was no board after {timeout_ms} ms:\n{tail(log)}")
