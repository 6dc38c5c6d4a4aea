"""Shared by the command's tests: runs ./run with an existing build, and collects failures. The build's folder
is the test's first argument."""

import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
BUILD = Path(sys.argv[1]).resolve()
# Variables that the user may have set, and that would change results.
SWITCHES = ("ANDROID_LOG_TAGS", "ORLU_ALGO_LIBRARY", "ORLU_ALGO_TRACE", "ORLU_EVENTS", "ORLU_PIXELS",
            "ORLU_PLANTED")
failures = []


def run(*arguments, command=(ROOT / "run",), cwd=None, **variables):
    """Runs ./run with these arguments and, in its environment, these variables."""
    inherited = {name: value for name, value in os.environ.items() if name not in SWITCHES}
    environment = {**inherited, "ORLU_BUILD": str(BUILD), **variables}
    return subprocess.run([*command, *arguments], cwd=cwd, env=environment, encoding="utf-8",
                          capture_output=True, check=False)


def expect(what, wanted, found):
    if wanted != found:
        failures.append(f"{str(what)[:300]}:\n  expected {str(wanted)[:700]}\n  found    {str(found)[:700]}")


def finish(passed="All passed"):
    """Prints the failures, or `passed` if there are none, and exits with status 1 or 0."""
    print("\n".join(failures) or passed)
    sys.exit(bool(failures))
