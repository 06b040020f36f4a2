"""`vboard run`: exit status, signals, power, and what it leaves behind."""
import json
import os
import pathlib
import re
import shutil
import signal
import stat
import subprocess
import time

from conftest import VBOARD, wait_until


def test_exit_status_and_output_pass_through(run_board, on_board):
    run = run_board([on_board, "print", "hello", "exit", "42"])
    output, errors = run.process.communicate(timeout=60)
    assert run.process.returncode == 42
    assert output == "hello\n"
    assert errors.startswith("vboard: the board's page is http://127.0.0.1:") and errors.count("\n") == 1


def test_quiet_prints_nothing(run_board, on_board):
    run = run_board([on_board], ["--quiet"])
    assert run.process.communicate(timeout=60) == ("", "")
    assert run.process.returncode == 0


def test_signal_that_ends_the_program_ends_the_run(run_board, on_board):
    run = run_board([on_board, "kill", "11"])
    assert run.end() == -signal.SIGSEGV


def test_signals_are_passed_on(run_board, on_board):
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGUSR1):
        run = run_board([on_board, "wait", "exit", "3"])
        run.wait_for_line("waits")
        run.process.send_signal(number)
        assert run.wait_for_line("signal") == f"signal {int(number)}\n"
        assert run.end() == 3


def test_programs_that_cannot_be_run(run_board, tmp_path, program):
    for command, status, words in ((["/nowhere/at/all"], 127, "is not found"),
                                   ([str(tmp_path)], 126, "cannot be executed"),
                                   ([program, "exit", "0"], 125, "is not linked with libvboard.so")):
        run = run_board(command)
        _, errors = run.process.communicate(timeout=60)
        assert run.process.returncode == status, errors
        lines = [line for line in errors.splitlines() if line.startswith("vboard run: ")]
        assert len(lines) == 1 and words in lines[0], errors


def test_mistakes_on_the_command_line(run_board, on_board):
    for options in (["--lisen", "80"], ["--listen", "80x"], ["--listen", "example.org:80"], ["--listen", "70000"],
                    ["--folder", "/nowhere"], ["--board", "a/b"]):
        run = run_board([on_board], options)
        _, errors = run.process.communicate(timeout=60)
        assert run.process.returncode == 125, options
        assert errors.startswith("vboard run: ") and errors.count("\n") == 1, errors


def test_watchdog_starts_the_program_again(run_board, on_board):
    run = run_board([on_board, "print", "main", "watchdog", "1", "wait"]).wait_for_page()
    first = run.wait_for_line("main")
    assert first == run.wait_for_line("main")  # it begins anew
    assert wait_until(lambda: run.ask("GET", "/api/1/board")[1]["boot_reason"] == "watchdog")
    board = run.ask("GET", "/api/1/board")[1]
    assert board["starts"] >= 2
    assert run.ask("GET", "/api/1/state")[1]["watchdog"]["boot_reason"] == "watchdog"


def test_without_reboot_watchdog_and_power_end_with_124(run_board, on_board):
    run = run_board([on_board, "watchdog", "1", "wait"], ["--no-reboot"])
    _, errors = run.process.communicate(timeout=60)
    assert run.process.returncode == 124
    assert errors.endswith("vboard run: the watchdog has expired\n")
    run = run_board([on_board, "wait"], ["--no-reboot"]).wait_for_page()
    run.wait_for_line("waits")
    assert run.ask("POST", "/api/1/power", {"to": "off"}) == (200, {})
    assert run.end() == 124


def test_power_goes_and_comes_and_the_page_stays(board):
    board.ask("POST", "/api/1/monitor", {"plug": "off"})
    board.ask("POST", "/api/1/power", {"to": "off"})
    status, answer = board.ask("GET", "/api/1/state")
    assert (status, answer["error"]["code"]) == (409, "power_off")
    assert board.ask("GET", "/api/1/board")[1]["power"] == "off"
    assert board.ask("GET", "/api/1/screen?type=jpeg", raw=True)[0] == 200  # black
    board.ask("POST", "/api/1/power", {"to": "on"})
    assert board.ask("GET", "/api/1/state")[1]["monitor"]["plugged"] is False
    assert board.ask("GET", "/api/1/board")[1]["starts"] == 2


def test_two_boards_on_one_port(board, run_board, on_board):
    second = run_board([on_board, "print", "begun"], ["--listen", str(board.port)])
    output, errors = second.process.communicate(timeout=60)
    assert second.process.returncode == 125
    assert errors == f"vboard run: 127.0.0.1:{board.port} cannot be listened on: Address already in use\n"
    assert output == ""  # the program was not begun
    assert board.ask("GET", "/api/1/state")[0] == 200


def test_run_file_is_for_this_user_alone_and_goes_with_the_board(board):
    file = board.board_folder / "vboard_on_board.json"
    assert stat.S_IMODE(file.stat().st_mode) == 0o600
    assert stat.S_IMODE(board.board_folder.stat().st_mode) == 0o700
    content = json.loads(file.read_text())
    assert content["token"] == board.token and content["pid"] == board.process.pid
    board.process.terminate()
    assert board.end() == 0
    assert not file.exists()


def test_file_of_a_board_that_is_gone_does_not_count(run_board, on_board, tmp_path):
    killed = run_board([on_board, "wait"]).wait_for_page()
    killed.process.kill()
    killed.end()
    assert (tmp_path / "vboard/vboard_on_board.json").exists()
    run = run_board([on_board, "wait"]).wait_for_page()
    assert run.ctl("list").stdout.count("vboard_on_board") == 1
    assert run.ctl("state").returncode == 0


def test_directory_that_others_could_write_is_refused(run_board, on_board, tmp_path):
    os.mkdir(tmp_path / "vboard")
    os.chmod(tmp_path / "vboard", 0o777)
    run = run_board([on_board])
    _, errors = run.process.communicate(timeout=60)
    assert run.process.returncode == 125 and "is not a directory of this user alone" in errors


def test_second_board_of_a_name_gets_a_number(board, run_board, on_board):
    second = run_board([on_board, "wait"]).wait_for_page()
    second.wait_for_line("waits")
    assert second.ask("GET", "/api/1/board")[1]["name"] == "vboard_on_board-2"
    answer = board.ctl("state")
    assert answer.returncode == 1 and "choose one with --board: vboard_on_board, vboard_on_board-2" in answer.stderr
    assert board.ctl("--board", "vboard_on_board-2", "monitor", "off").returncode == 0
    assert second.ask("GET", "/api/1/state")[1]["monitor"]["plugged"] is False
    assert board.ask("GET", "/api/1/state")[1]["monitor"]["plugged"] is True


def test_program_that_forks_is_the_first_process(run_board, on_board):
    run = run_board([on_board, "fork", "wait", "exit", "6"]).wait_for_page()
    run.wait_for_line("waits")
    assert run.ask("GET", "/api/1/state")[0] == 200
    run.process.terminate()
    assert run.end() == 6


def test_recording_goes_to_its_file(run_board, on_board, tmp_path):
    run = run_board([on_board, "wait"], ["--record", "did.yaml"]).wait_for_page()
    run.wait_for_line("waits")
    assert wait_until(lambda: run.ask("GET", "/api/1/board")[1]["recording"] is not None)
    run.ask("POST", "/api/1/press", {"button": "menu"})
    run.ask("POST", "/api/1/monitor", {"plug": "off"})
    run.process.terminate()
    assert run.end() == 0
    text = (tmp_path / "did.yaml").read_text()
    assert 'press: "menu"' in text and "monitor:" in text


def time_of(text, step):
    """Of the first line with the step, in microseconds."""
    number, unit = re.search(r"at: (\d+)(us|ms|s), " + re.escape(step), text).groups()
    return int(number) * {"us": 1, "ms": 1000, "s": 1000000}[unit]


def test_times_of_a_recording_go_on_while_the_power_is_off(run_board, on_board, tmp_path):
    run = run_board([on_board, "wait"], ["--record", "power.yaml"]).wait_for_page()
    run.wait_for_line("waits")
    assert wait_until(lambda: run.ask("GET", "/api/1/board")[1]["recording"] is not None)
    run.ask("POST", "/api/1/power", {"to": "off"})
    time.sleep(0.5)
    run.ask("POST", "/api/1/power", {"to": "on"})
    run.ask("POST", "/api/1/press", {"button": "menu"})
    run.process.terminate()
    assert run.end() == 0
    text = (tmp_path / "power.yaml").read_text()
    off, on, pressed = (time_of(text, step) for step in ('power: "off"', 'power: "on"', "press:"))
    assert on - off >= 500000 and pressed > on, text


def test_folder_that_the_loader_cannot_take_is_told(on_board, tmp_path):
    program = pathlib.Path(VBOARD)
    moved = tmp_path / "a folder"
    for folder in ("bin", "lib"):
        (moved / folder).mkdir(parents=True)
    shutil.copy(program, moved / "bin/vboard")
    library = next(one for one in (program.parent.parent).rglob("libvboard-remote.so"))
    shutil.copy(library, moved / "lib")
    answer = subprocess.run([moved / "bin/vboard", "run", "--quiet", "--", on_board, "exit", "3"], capture_output=True,
                            env=dict(os.environ, XDG_RUNTIME_DIR=str(tmp_path)), text=True, timeout=60)
    assert answer.returncode == 125 and "cannot be preloaded" in answer.stderr
