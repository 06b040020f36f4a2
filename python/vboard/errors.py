"""What can go wrong between a test and a board."""


class BoardError(Exception):
    """The board did not carry a request out.

    code: one of the errors of the description: "refused", "bad_parameter", "power_off", ...; "gone" when the
        board does not answer any more
    message: the board's own words
    parameter: the one that is wrong, or None
    """

    def __init__(self, code, message, parameter=None):
        super().__init__(f"{message} ({code})")
        self.code, self.message, self.parameter = code, message, parameter


class TimedOut(BoardError):
    """What was waited for did not come in time."""

    def __init__(self, message, parameter=None):
        super().__init__("timed_out", message, parameter)


class BoardNotFound(Exception):
    """No board runs, or none of that name, or several without a name that says which."""


class StartFailed(Exception):
    """The program could not be started on a board; the message has the end of its log."""


def error_of(answer, status):
    """The exception for the body of an answer that is no success."""
    error = answer.get("error") if isinstance(answer, dict) else None
    if not isinstance(error, dict):
        return BoardError("gone", f"an answer that is none, status {status}")
    code, message = str(error.get("code")), str(error.get("message"))
    if code == "timed_out":
        return TimedOut(message, error.get("parameter"))
    return BoardError(code, message, error.get("parameter"))
