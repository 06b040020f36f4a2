"""Requests of a board, one method each. Written by tools/board_requests.py: change v1.json, and run the script.

What is left out has the board's own default. Times that a request wants in microseconds or milliseconds may
also be a text with a unit ("40ms", "2s", "1m") or a datetime.timedelta.
"""

# pylint: disable=redefined-builtin,too-many-arguments

from .times import microseconds, milliseconds, seconds_since_1970


class Requests:
    """Every request of the interface, version 1."""

    def _ask(self, request, method, path, parameters):
        raise NotImplementedError

    def board(self) -> dict:
        """The board, its program and its boots.

        Gives:
            name: string
            program: array of string
            pid: integer or null
            power: on|off
            starts: integer: how often the program was started
            boot_reason: power|watchdog
            version: string: of vboard
            api: 1
            folder: string
            recording: string or null: file of the scenario that is being recorded
            stepped: boolean: the clock was taken before the program began
            exit: null, or {status} or {signal} of the program's last end
        """
        return self._ask("board", "GET", "/board", {})

    def state(self) -> dict:
        """Everything that can be read off the board.

        Gives:
            clock: {us, wall_us, taken}
            monitor: {plugged, signal, width, height: of what it shows, pixels}
            displays: array of {device, ports: array of {port, window: [x, y, width, height] on the output,
                or null when it is not seen, enabled, hidden, bound, source_channel, has_picture, queued,
                picture_width, picture_height, picture_pts, taken, shown, dropped}}; ports that were ever
                used
            decoders: array of {channel, created, started, codec: h264|h265|jpeg, width, height, bytes_sent,
                frames_sent, sends_refused, decoded, shown, dropped, damaged, decode_errors, resets,
                recreations, late, backlog: sends not consumed, backlog_bytes}; those that were ever created
            audio: array of {device, channel_enabled, decoding, muted, volume_db, rate_hz, input_rate_hz,
                queued, capacity, blocks, played, clipped, ran_dry, peak_dbfs, rms_dbfs}; those that are
                enabled
            watchdog: {enabled, timeout_s, remaining_us, feeds, expired, expired_at_us, boot_reason:
                power|watchdog}
            rtc: {seconds: integer or null, battery: boolean}
            gpio: array of {line, level}; those that are outputs
            gpio_changes: integer
            panel: {record_lamp, lamp_changes, keys_taken, empty_polls}
            analog: {norm, rate_code, playback, volume, format, bitwidth, mute, adjust, motion_started,
                inputs: array of 16 {input, mode, lost, sensitivity, area_bits, moving}}
            faults: {set, refused, fired, unused, waiting, list: array of {call, nth, count, code, seen,
                fired: calls made to fail}}
            refusals: {count, last}
            trace: string or null: file that is being written
            memory_kb: integer: resident memory of the program
            nodes: array of {path, descriptor}: device nodes that the program opened itself
        """
        return self._ask("state", "GET", "/state", {})

    def screen(
        self, device: int | None = None, type: str = "png", width: int | None = None,
        region: list | None = None, settled: bool = False
    ) -> bytes:
        """What the monitor shows, or a display device. The body is the picture itself. On the command line
        the picture is written to FILE, of the kind that its ending says.

        device: integer, -1 to 2 - Without it: what the monitor shows, black when it sees no signal; display
            device.
        type: png, jpeg, i420 - I420: Y, U and V planes without padding; its size stands in the header
            X-Picture-Size.
        width: integer, 16 to 3840, pixels - Scaled to this width, even; the height, in proportion, is at
            most 3840.
        region: array of 4 integers - Only this part; x, y, width and height, output pixels.
        settled: boolean - First wait until every decoder has consumed what it was sent.

        Gives: image/png, image/jpeg or application/octet-stream.
        """
        return self._ask("screen", "GET", "/screen", {
            "device": device, "type": type, "width": width, "region": region, "settled": settled
        })

    def press(self, button: str | int) -> dict:
        """Press a button of the remote control, and let go.

        button: string or integer - A name, or the code as it stands.
        """
        return self._ask("press", "POST", "/press", {"button": button})

    def hold(self, button: str | int) -> dict:
        """Press a button of the remote control, and keep holding it.

        button: string or integer - A name, or the code as it stands.
        """
        return self._ask("hold", "POST", "/hold", {"button": button})

    def release(self) -> dict:
        """Let go of the button that is held."""
        return self._ask("release", "POST", "/release", {})

    def ir(self, code: int, state: int) -> dict:
        """A frame in front of the IR receiver as it stands, damaged ones included.

        code: integer, 0 to 2^32 - 1
        state: integer, 0 to 2^32 - 1
        """
        return self._ask("ir", "POST", "/ir", {"code": code, "state": state})

    def panel(self, key: str | int) -> dict:
        """Press a key of the front panel.

        key: string or integer - A name, or the code as it stands.
        """
        return self._ask("panel", "POST", "/panel", {"key": key})

    def mouse(
        self, x: int | None = None, y: int | None = None, buttons: int | None = None,
        wheel: int | None = None
    ) -> dict:
        """Move the mouse; press and let go of its buttons; turn its wheel.

        x: integer, -32768 to 32767, pixels - Of the output; with y.
        y: integer, -32768 to 32767, pixels
        buttons: integer, 0 to 7 - Those that are down from now on: left 1, right 2, middle 4, or-ed (enum
            MouseButton).
        wheel: integer, -100 to 100, notches - Away from the user is positive.
        """
        return self._ask("mouse", "POST", "/mouse", {"x": x, "y": y, "buttons": buttons, "wheel": wheel})

    def click(self, x: int, y: int, button: str = "left", times: int = 1) -> dict:
        """Move the mouse, press a button and let go.

        x: integer, -32768 to 32767, pixels
        y: integer, -32768 to 32767, pixels
        button: left, right, middle
        times: integer, 1 to 3 - 2: a double click.
        """
        return self._ask("click", "POST", "/click", {"x": x, "y": y, "button": button, "times": times})

    def monitor(self, plug: str) -> dict:
        """Plug the monitor in, or pull it.

        plug: on, off
        """
        return self._ask("monitor", "POST", "/monitor", {"plug": plug})

    def analog(self, input: int, lost: bool | None = None, moving: int | None = None) -> dict:
        """An analog input: pull its cable or put it back; move something in front of its camera.

        input: integer, 0 to 15
        lost: boolean
        moving: integer, 0 to 2^32 - 1, blocks
        """
        return self._ask("analog", "POST", "/analog", {"input": input, "lost": lost, "moving": moving})

    def rtc(self, seconds: int | str | None = None, battery: str | None = None) -> dict:
        """Set the battery-backed clock from outside, or let its battery fail.

        seconds: integer, 0 to 253 402 300 799, s - Since 1970-01-01 00:00 UTC; on the command line also
            2026-03-29T01:59:00Z.
        battery: fail
        """
        return self._ask("rtc", "POST", "/rtc", {"seconds": seconds_since_1970(seconds), "battery": battery})

    def fault(self, call: str, nth: int = 1, count: int = 1, code: int = -1) -> dict:
        """Make a platform call fail: its nth call from now on and the following ones up to count are not
        carried out and give code.

        call: string - MI_VDEC_StartChn, board_open, ...
        nth: integer, 1 to 2^32 - 1
        count: integer, 0 to 2^32 - 1 - 0: all from then on.
        code: integer, -2^31 to 2^31 - 1
        """
        return self._ask("fault", "POST", "/faults", {
            "call": call, "nth": nth, "count": count, "code": code
        })

    def fault_clear(self, call: str | None = None) -> dict:
        """Take a fault back, or all.

        call: string - Without it: all.
        """
        return self._ask("fault.clear", "DELETE", "/faults", {"call": call})

    def fault_calls(self) -> dict:
        """The calls that can be made to fail.

        Gives:
            calls: array of string, sorted
        """
        return self._ask("fault.calls", "GET", "/faults/calls", {})

    def clock_take(self) -> dict:
        """Take the clock: it stands, and moves only by steps."""
        return self._ask("clock.take", "POST", "/clock/take", {})

    def clock_release(self) -> dict:
        """Let the clock run again."""
        return self._ask("clock.release", "POST", "/clock/release", {})

    def clock_step(self, by: int | str) -> dict:
        """Move a taken clock forward.

        by: integer, 0 to 3 153 600 000 000 000, us - Of the board's clock; on the command line also 40ms,
            2s, 1m, 3h.

        Gives:
            us: integer: where the clock stands now
        """
        return self._ask("clock.step", "POST", "/clock/step", {"by": microseconds(by)})

    def clock_picture(self, device: int = 0) -> dict:
        """One picture on: put the oldest queued picture of every port on screen. The device must be in step
        pacing.

        device: integer, -1 to 2 - Display device.

        Gives:
            ports: integer: how many ports got a new picture
        """
        return self._ask("clock.picture", "POST", "/clock/picture", {"device": device})

    def pacing(self, mode: str, device: int = 0) -> dict:
        """When a port takes the next picture.

        mode: realtime, step
        device: integer, -1 to 2 - Display device.
        """
        return self._ask("pacing", "POST", "/pacing", {"mode": mode, "device": device})

    def power(self, to: str) -> dict:
        """The board's power: off ends the program, on starts it again, cycle does both.

        to: on, off, cycle
        """
        return self._ask("power", "POST", "/power", {"to": to})

    def loud(self, on: bool) -> dict:
        """Whether the board prints refusals on standard error.

        on: boolean
        """
        return self._ask("loud", "POST", "/loud", {"on": on})

    def trace_start(self, file: str = "trace.txt") -> dict:
        """Write every platform call to a file of the board's folder, with thread and duration.

        file: string - Name of a file, relative to the board's folder; never outside of it.

        Gives:
            file: string: its whole path
        """
        return self._ask("trace.start", "POST", "/trace/start", {"file": file})

    def trace_stop(self) -> dict:
        """End the trace and close its file."""
        return self._ask("trace.stop", "POST", "/trace/stop", {})

    def calls(
        self, after: int = 0, limit: int = 200, name: str | None = None, channel: int | None = None,
        failed: bool | None = None
    ) -> dict:
        """The newest platform calls, oldest first. The first request begins to collect them; collecting
        ends when nobody has asked for ten seconds.

        after: integer, 0 to 2^53 - 1 - Number of the last call that is known already.
        limit: integer, 1 to 1000
        name: string - Part of the call's name.
        channel: integer, 0 to 63
        failed: boolean - True: only failures; false: only successes.

        Gives:
            calls: array of {number, time_us, duration_us, thread, name, channel: integer or null, failed,
                result, text, arguments: array of {name, value}}
            lost: integer: calls that were not kept
            next: integer: for after
        """
        return self._ask("calls", "GET", "/calls", {
            "after": after, "limit": limit, "name": name, "channel": channel, "failed": failed
        })

    def gpio_changes(self, first: int = 0) -> dict:
        """Requests to the output lines, with their times; the first 4096 are kept.

        first: integer, 0 to 4096

        Gives:
            count: integer
            changes: array of {time_us, line, value, configured}
        """
        return self._ask("gpio.changes", "GET", "/gpio/changes", {"first": first})

    def audio_level(self, device: int = 3, window: int | str = 300) -> dict:
        """Level of what was played last.

        device: integer, 0 to 7 - Audio output device.
        window: integer, 1 to 10000, ms

        Gives:
            peak_dbfs: number
            rms_dbfs: number
        """
        return self._ask("audio.level", "GET", "/audio/level", {
            "device": device, "window": milliseconds(window)
        })

    def audio_record(self, file: str, device: int = 3) -> dict:
        """Write what is played from now on to a WAV file of the board's folder.

        file: string - Name of a file, relative to the board's folder; never outside of it.
        device: integer, 0 to 7 - Audio output device.
        """
        return self._ask("audio.record", "POST", "/audio/record", {"file": file, "device": device})

    def audio_close(self, device: int = 3) -> dict:
        """Close that file.

        device: integer, 0 to 7 - Audio output device.
        """
        return self._ask("audio.close", "POST", "/audio/close", {"device": device})

    def mark(self, device: int = 0) -> dict:
        """Begin to count anew for wait.taken.

        device: integer, -1 to 2 - Display device.
        """
        return self._ask("mark", "POST", "/mark", {"device": device})

    def wait_idle(self, channel: int, timeout: int | str = 5000) -> dict:
        """Until a decoder channel has consumed all that was sent.

        channel: integer, 0 to 63 - Decoder channel.
        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.idle", "POST", "/wait/idle", {
            "channel": channel, "timeout": milliseconds(timeout)
        })

    def wait_taken(self, ports: int, pictures: int, device: int = 0, timeout: int | str = 5000) -> dict:
        """Until every port of a mask has taken so many pictures since mark.

        ports: integer, 1 to 65535 - Bit p: port p.
        pictures: integer, 0 to 2^53 - 1
        device: integer, -1 to 2 - Display device.
        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.taken", "POST", "/wait/taken", {
            "ports": ports, "pictures": pictures, "device": device, "timeout": milliseconds(timeout)
        })

    def wait_queued(self, ports: int, pictures: int = 1, device: int = 0, timeout: int | str = 5000) -> dict:
        """Step pacing: until every port of a mask has a picture queued.

        ports: integer, 1 to 65535
        pictures: integer, 0 to 1
        device: integer, -1 to 2 - Display device.
        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.queued", "POST", "/wait/queued", {
            "ports": ports, "pictures": pictures, "device": device, "timeout": milliseconds(timeout)
        })

    def wait_events(self, timeout: int | str = 5000) -> dict:
        """Until every plug event has been through the program's callback.

        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.events", "POST", "/wait/events", {"timeout": milliseconds(timeout)})

    def wait_sleepers(self, count: int, timeout: int | str = 5000) -> dict:
        """Until so many threads wait on a taken clock.

        count: integer, 0 to 100 000
        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.sleepers", "POST", "/wait/sleepers", {
            "count": count, "timeout": milliseconds(timeout)
        })

    def wait_quiet(self, timeout: int | str = 5000) -> dict:
        """Until every thread of the program waits for something: nothing happens then until the clock is
        stepped.

        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.quiet", "POST", "/wait/quiet", {"timeout": milliseconds(timeout)})

    def wait_played(self, device: int = 3, timeout: int | str = 5000) -> dict:
        """Until all sound that is queued has been played.

        device: integer, 0 to 7 - Audio output device.
        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.played", "POST", "/wait/played", {
            "device": device, "timeout": milliseconds(timeout)
        })

    def wait_expired(self, timeout: int | str = 5000) -> dict:
        """Until the watchdog has expired.

        timeout: integer, 0 to 600 000, ms - Of real time.
        """
        return self._ask("wait.expired", "POST", "/wait/expired", {"timeout": milliseconds(timeout)})

    def record_start(self, file: str = "scenario.yaml") -> dict:
        """Write what is pressed, pulled and set from now on as a scenario.

        file: string - Name of a file, relative to the board's folder; never outside of it.

        Gives:
            file: string: its whole path
        """
        return self._ask("record.start", "POST", "/record/start", {"file": file})

    def record_expect(self, region: list | None = None, difference: float = 2) -> dict:
        """While a scenario is recorded: what the screen shows now is to be there when it is played.

        region: array of 4 integers - Without it: the whole screen; x, y, width and height, output pixels.
        difference: number, 0 to 100, %

        Gives:
            picture: string: file of the picture
        """
        return self._ask("record.expect", "POST", "/record/expect", {
            "region": region, "difference": difference
        })

    def record_stop(self) -> dict:
        """End the scenario and write its file.

        Gives:
            file: string
            steps: integer
            expectations: integer
        """
        return self._ask("record.stop", "POST", "/record/stop", {})

    def description(self) -> dict:
        """This description.

        Gives: the description.
        """
        return self._ask("description", "GET", "/description", {})
