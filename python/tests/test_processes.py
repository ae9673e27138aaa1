# SPDX-License-Identifier: GPL-3.0-or-later
"""fork(), the end of the interpreter, and signals, each in a process of its own"""

from __future__ import annotations

import signal
import subprocess
import sys
from pathlib import Path

from helpers import found, ran, run_python

OPENED = """
import gc, os, sys, threading, time
import kestan
with kestan.open("index", "w") as index:
    index.add("a.txt", "Roses are red")
"""


def test_what_was_opened_before_a_fork_says_so_in_the_child(tmp_path: Path) -> None:
    program = OPENED + """
reader, writer = kestan.open("index"), kestan.open("index", "w")
writer.add("b.txt", "Tulips")
hits, documents, word = reader.search("red"), reader.documents(), reader.word("red")
calls = [lambda: reader.search("red"), lambda: len(reader), lambda: reader.refresh(),
         lambda: reader.word("a"), lambda: next(documents), lambda: hits.total, lambda: hits[0],
         lambda: word & word, lambda: reader.count(word), lambda: writer.add("c", "text"),
         lambda: writer.commit(), lambda: writer.rollback(), lambda: writer.warnings()]
child = os.fork()
if child == 0:
    for call in calls:
        try:
            call()
            print("no error")
        except kestan.ForkedError as error:
            print(str(error) != "")
    reader.close()
    writer.close()
    del hits, documents, word
    gc.collect()
    with kestan.open("index") as own:
        print([hit.name for hit in own.search("red")])
    try:
        kestan.open("index", "w")
    except kestan.BusyError:
        print("busy")
    sys.stdout.flush()
    os._exit(0)
assert os.waitpid(child, 0)[1] == 0
writer.commit()
writer.close()
reader.refresh()
print([hit.name for hit in reader.search("tulips")])
"""
    lines = ran(program, tmp_path).splitlines()
    assert lines == ["True"] * 13 + ["['a.txt']", "busy", "['b.txt']"]


def test_a_child_that_ends_as_usual_harms_nothing(tmp_path: Path) -> None:
    program = OPENED + """
reader, writer = kestan.open("index"), kestan.open("index", "w")
writer.add("b.txt", "Tulips")
child = os.fork()
if child == 0:
    sys.exit(0)
assert os.waitpid(child, 0)[1] == 0
writer.commit()
writer.close()
"""
    assert ran(program, tmp_path) == ""  # nor does the child warn of the writer of its parent
    assert found(tmp_path / "index", "tulips") == ["b.txt"]


def test_a_fork_while_threads_search_leaves_no_lock_behind(tmp_path: Path) -> None:
    program = OPENED + """
reader = kestan.open("index")
hits = reader.search("red")
def work():
    while True:
        reader.search("red")
        hits[0].snippet()
for _ in range(3):
    threading.Thread(target=work, daemon=True).start()
for _ in range(50):
    child = os.fork()
    if child == 0:
        for call in (lambda: reader.search("red"), lambda: hits[0].snippet()):
            try:
                call()
                os._exit(1)
            except kestan.ForkedError:
                pass
        with kestan.open("index") as own:
            os._exit(len(own) - 1)
    assert os.waitpid(child, 0)[1] == 0
print("fine")
"""
    assert ran(program, tmp_path) == "fine\n"


def test_a_child_forked_while_a_thread_searches_ends_as_usual(tmp_path: Path) -> None:
    program = OPENED + """
reader = kestan.open("index")
inside, go_on = threading.Event(), threading.Event()
def wait(candidate):
    inside.set()
    return go_on.wait(50)
thread = threading.Thread(target=lambda: reader.search("red", filter=wait))
thread.start()
inside.wait()
child = os.fork()
if child == 0:
    sys.exit(7)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
go_on.set()
thread.join()
"""
    assert ran(program, tmp_path) == "7\n"


def test_a_fork_inside_a_filter_harms_nothing(tmp_path: Path) -> None:
    program = OPENED + """
def fork(candidate):
    child = os.fork()
    if child == 0:
        sys.exit(7)
    print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
    return True
reader = kestan.open("index")
print(len(reader.search("red", filter=fork)))
"""
    lines = ran(program, tmp_path).splitlines()
    assert set(lines[:-1]) == {"7"}
    assert lines[-1] == "1"


def test_the_interpreter_ends_with_open_handles(tmp_path: Path) -> None:
    program = OPENED + """
reader = kestan.open("index")
hits, documents, terms = reader.search("red"), reader.documents(), reader.terms("r")
next(documents)
query = reader.word("red") & reader.word("roses")
hit = hits[0]
cycle = [hits, documents]
cycle.append(cycle)
print("end")
"""
    assert ran(program, tmp_path) == "end\n"


def test_a_writer_that_is_open_at_the_end_is_a_warning_and_commits_nothing(tmp_path: Path) -> None:
    program = OPENED + """
writer = kestan.open("index", "w", progress=print)
writer.add("b.txt", "Tulips")
"""
    done = run_python(program, tmp_path)
    assert (done.returncode, done.stdout) == (0, "")
    assert "ResourceWarning: unclosed <kestan.Writer 'index'>" in done.stderr
    assert "Traceback" not in done.stderr
    assert found(tmp_path / "index", "tulips") == []
    quiet = subprocess.run([sys.executable, "-c", program], cwd=tmp_path, capture_output=True,
                           text=True, timeout=60, check=True)
    assert (quiet.stdout, quiet.stderr) == ("", "")


def test_the_interpreter_ends_while_threads_search(tmp_path: Path) -> None:
    program = OPENED + """
reader = kestan.open("index")
def work():
    while True:
        [hit.name for hit in reader.search("red", filter=lambda it: True)]
for _ in range(3):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.05)
print("end")
"""
    for _ in range(10):
        assert ran(program, tmp_path) == "end\n"


def test_an_exit_inside_a_block_rolls_back(tmp_path: Path) -> None:
    program = OPENED + """
with kestan.open("index", "w") as index:
    index.add("b.txt", "Tulips")
    sys.exit(3)
"""
    done = run_python(program, tmp_path)
    assert (done.returncode, done.stderr) == (3, "")
    assert found(tmp_path / "index", "tulips") == []


# commit_during() commits until a signal comes in the middle of it, on however busy a machine: more
# and more documents, and the signal after a fifth of the time that the commit before took.
INTERRUPTED = OPENED + """
import signal
writer = kestan.open("index", "w", sync=False, threads=1)
def many(count):
    for i in range(count):
        yield f"{i:06}", " ".join(f"w{(i * 31 + k * k) % 50000}" for k in range(200)) + " rose"
def commit_during(number, was_in_time):
    seconds = 0.05
    for count in (4000, 8000, 16000, 32000):
        writer.add_many(many(count))
        threading.Timer(seconds / 5, os.kill, (os.getpid(), number)).start()
        begin = time.monotonic()
        writer.commit()
        seconds = time.monotonic() - begin
        if was_in_time(begin + seconds):
            return count
        writer.add("a.txt", "Roses are red")
        for i in range(count):
            writer.remove(f"{i:06}")
        writer.commit()
        time.sleep(seconds)
    sys.exit("the signal never came in time")
"""


def test_ctrl_c_stops_a_long_commit_and_nothing_is_lost(tmp_path: Path) -> None:
    program = INTERRUPTED + """
try:
    commit_during(signal.SIGINT, lambda end: False)
except KeyboardInterrupt:
    print("interrupted")
with kestan.open("index") as reader:
    print(len(reader), reader.count("red"))
writer.add_many(many(500))
writer.commit()
writer.close()
with kestan.open("index") as reader:
    print(len(reader), reader.count("rose"))
print(kestan.check("index").faults)
"""
    assert ran(program, tmp_path).splitlines() == [
        "interrupted", "1 1", "501 501", "0"]


def test_ctrl_c_inside_a_progress_function_comes_out_of_the_commit(tmp_path: Path) -> None:
    program = OPENED + """
import signal
def stop(progress):
    os.kill(os.getpid(), signal.SIGINT)
    for _ in range(1000): pass
writer = kestan.open("index", "w", progress=stop)
writer.add("b.txt", "Tulips")
try:
    writer.commit()
except KeyboardInterrupt:
    print("interrupted")
writer.close()
"""
    assert ran(program, tmp_path) == "interrupted\n"
    assert found(tmp_path / "index", "tulips") == []


def test_ctrl_c_in_a_block_leaves_the_index_as_it_was(tmp_path: Path) -> None:
    program = INTERRUPTED + """
with writer:
    commit_during(signal.SIGINT, lambda end: False)
"""
    done = run_python(program, tmp_path)
    assert done.returncode == -signal.SIGINT
    assert done.stderr.splitlines()[-1] == "KeyboardInterrupt"
    assert found(tmp_path / "index", "roses") == ["a.txt"]


def test_a_handler_of_a_signal_runs_during_a_commit(tmp_path: Path) -> None:
    program = INTERRUPTED + """
handled = []
signal.signal(signal.SIGUSR1, lambda *_: handled.append(time.monotonic()))
count = commit_during(signal.SIGUSR1, lambda end: handled and handled[-1] < end - 0.01)
writer.close()
print(len(kestan.open("index")) - count)
"""
    assert ran(program, tmp_path) == "1\n"


def test_nothing_is_printed(tmp_path: Path) -> None:
    assert ran(OPENED, tmp_path) == ""
