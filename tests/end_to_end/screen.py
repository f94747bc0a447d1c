"""What tests have in common that drive a program on the screen: keys and mouse of the X server, waiting, the end."""

import subprocess
import time


def xdotool(*arguments):
    # Without --sync for the mouse: it waits for a long time where the mouse is in its place already.
    command = ["xdotool", *map(str, arguments)]
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


class Failure(Exception):
    """What is asked for is not there."""


def wait_until(condition, what, seconds, failures):
    """The first true value that `condition` gives; it may raise one of the failures meanwhile."""
    end = time.monotonic() + seconds
    while True:
        problem = ""
        try:
            if value := condition():
                return value
        except failures as failure:
            problem = f" ({type(failure).__name__}: {failure})"
        if time.monotonic() > end:
            raise AssertionError((what() if callable(what) else what) + problem)
        time.sleep(0.03)


def end_program(test, folder, end, kill):
    """Has a program end as its user does; it must end by itself, or the test fails. A test that has failed already leaves
    a picture in the folder."""
    result = test._outcome.result
    failed = any(one is test for one, _ in result.errors + result.failures)
    if failed:
        subprocess.run(["import", "-window", "root", folder / f"end_to_end-{test._testMethodName}.png"])
    try:
        end()
    except Exception:
        kill()
        if not failed:
            raise
