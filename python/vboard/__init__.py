"""vboard - drive a board in software from Python.

    import vboard

    with vboard.run("nvrec", "wall", "--layout", "2x2", "front.h264", "yard.h265") as recorder:
        board = recorder.board
        board.press("menu")
        board.wait_until(lambda: board.picture().pixel(820, 400) != (0, 0, 0))
        board.save_screen("menu.png")

`run` starts a program on a board of its own; `connect` finds a board that runs already. `Board` has a method for
every request. With pytest the fixtures `board` and `recorder` do all that: see vboard.pytest_plugin.
"""

from .board import Board
from .errors import BoardError, BoardNotFound, StartFailed, TimedOut
from .find import connect, running
from .picture import Picture
from .recorder import Recorder, run

__all__ = ["Board", "BoardError", "BoardNotFound", "Picture", "Recorder", "StartFailed", "TimedOut", "connect",
           "run", "running"]
