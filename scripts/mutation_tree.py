# SPDX-License-Identifier: GPL-3.0-or-later
"""A copy of the tree in build/mutation/tree, in which mistakes are made, built and tested."""

import contextlib
import fcntl
import os
import pathlib
import re
import signal
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutation"
TREE = WORK / "tree"
BUILD = WORK / "build"
PARTS = ["CMakeLists.txt", "cli", "cmake", "docs", "examples", "fuzz", "kestan", "packaging",
         "search", "tests"]
SECONDS_TO_BUILD = 1800


def run(command, seconds, output=subprocess.DEVNULL):
    """Returns whether the command succeeded; one that takes too long did not. Ends what it started."""
    process = subprocess.Popen(command, stdout=output, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(timeout=seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        end_group(process)


def end_group(process):
    """Ends the process and all it started: tests of a changed library may run for ever."""
    with contextlib.suppress(ProcessLookupError):
        os.killpg(process.pid, signal.SIGKILL)
    process.wait()


def files_of(root):
    """Returns the files that the copy holds, by their names from `root` on."""
    found = set()
    for part in PARTS:
        path = root / part
        found |= {path} if path.is_file() else {file for file in path.rglob("*") if file.is_file()}
    return {file.relative_to(root) for file in found}


def claim():
    """Keeps the copy to this process until it ends; ends it if another has the copy."""
    WORK.mkdir(parents=True, exist_ok=True)
    lock = os.open(WORK / "lock", os.O_RDWR | os.O_CREAT)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        raise SystemExit(f"another run works in {WORK}") from None


def synchronise():
    """Makes the copy like the tree. What is the same already keeps its time, and need not be built."""
    claim()
    wanted = files_of(ROOT)
    for name in files_of(TREE) - wanted:
        (TREE / name).unlink()
    for name in wanted:
        copy = TREE / name
        content = (ROOT / name).read_bytes()
        if copy.exists() and copy.read_bytes() == content:
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_bytes(content)
        copy.chmod((ROOT / name).stat().st_mode)


def configure(with_command):
    return run(["cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                "-DCMAKE_CXX_FLAGS=-O1 -g0 -D_GLIBCXX_ASSERTIONS",
                f"-DKESTAN_BUILD_CLI={'ON' if with_command else 'OFF'}"], 120)


def build(jobs, targets=()):
    chosen = ["--target", *targets] if targets else []
    return run(["cmake", "--build", str(BUILD), "-j", str(jobs), *chosen], SECONDS_TO_BUILD)


def ctest(jobs, seconds, *arguments, output=subprocess.DEVNULL):
    return run(["ctest", "--test-dir", str(BUILD), "-j", str(jobs), "--timeout", "60", *arguments],
               seconds, output)


def failing_tests(tests, jobs, seconds):
    """Runs the tests whose names match, to the end.

    Returns the names of those that failed; None if there are no such tests."""
    with tempfile.TemporaryFile("w+") as output:
        passed = ctest(jobs, seconds, "-R", tests, output=output)
        output.seek(0)
        said = output.read()
    if "No tests were found" in said:
        return None
    failed = re.findall(r"^\s*\d+ - (\S+) \(", said, re.MULTILINE)
    return [] if passed else failed or ["all, for they did not end"]


@contextlib.contextmanager
def changed(name, content):
    """While it lasts, the copy of file `name` has this content."""
    file = TREE / name
    original = file.read_text()
    file.write_text(content)
    try:
        yield
    finally:
        file.write_text(original)
