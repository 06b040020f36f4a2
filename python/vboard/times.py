"""Times as requests want them, from what is convenient to write."""

import datetime
import re

_UNITS_US = {"us": 1, "ms": 1000, "s": 1_000_000, "m": 60_000_000, "min": 60_000_000, "h": 3_600_000_000}


def _duration_us(value):
    if isinstance(value, datetime.timedelta):
        return value // datetime.timedelta(microseconds=1)
    found = re.fullmatch(r"(\d+(?:\.\d+)?)(us|ms|s|m|min|h)", value) if isinstance(value, str) else None
    if not found:
        raise ValueError(f"no duration: {value!r}; write 40ms, 2s, 1m or a timedelta")
    return round(float(found.group(1)) * _UNITS_US[found.group(2)])


def microseconds(value):
    """40000, "40ms" or timedelta(milliseconds=40) as 40000; None stays."""
    return value if value is None or isinstance(value, int) else _duration_us(value)


def milliseconds(value):
    """40, "40ms" or timedelta(milliseconds=40) as 40; None stays."""
    return value if value is None or isinstance(value, int) else _duration_us(value) // 1000


def seconds_since_1970(value):
    """A number, a datetime, or a text as 2026-03-29T01:59:00Z as seconds; without a zone it is UTC. None stays."""
    if isinstance(value, str):
        value = datetime.datetime.fromisoformat(value)
    if isinstance(value, datetime.datetime):
        if value.tzinfo is None:
            value = value.replace(tzinfo=datetime.timezone.utc)
        return int(value.timestamp())
    return value
