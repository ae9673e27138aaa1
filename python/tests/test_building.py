# SPDX-License-Identifier: GPL-3.0-or-later
"""The wheel, and what the extension has of the header"""

from __future__ import annotations

import os
import re
import shutil
import subprocess
import sys
import zipfile
from pathlib import Path

from helpers import PYTHON_FOLDER
from kestan._native import lib

HEADER = PYTHON_FOLDER.parent / "c" / "include" / "kestan" / "c.h"


def test_the_extension_has_every_function_and_constant_of_the_header() -> None:
    header = HEADER.read_text(encoding="utf-8")
    functions = set(re.findall(r"^KESTAN_C_EXPORT \w+ (kestan_\w+)\(", header, re.MULTILINE))
    constants = set(re.findall(r"^(?:  |enum \{ )(KESTAN_[A-Z_]+) = ", header, re.MULTILINE))
    versions = set(re.findall(r"^#define (KESTAN_\w+_VERSION) ", header, re.MULTILINE))
    assert len(functions) > 50
    assert "KESTAN_EINVALID" in constants
    assert functions | constants | versions <= set(dir(lib))


def test_one_wheel_serves_every_python_3(tmp_path: Path) -> None:
    source = tmp_path / "source"
    shutil.copytree(PYTHON_FOLDER, source, ignore=shutil.ignore_patterns(
        "build", "*.egg-info", "__pycache__"))
    subprocess.run([sys.executable, "setup.py", "-q", "bdist_wheel", "-d", str(tmp_path)],
                   cwd=source, check=True, capture_output=True, env=os.environ)
    (wheel,) = tmp_path.glob("*.whl")
    assert re.fullmatch(r"kestan-[\d.]+-cp39-abi3-linux_\w+\.whl", wheel.name)
    with zipfile.ZipFile(wheel) as files:
        names = {name for name in files.namelist() if name.startswith("kestan/")}
        files.extractall(tmp_path / "site")
    expected = {f"kestan/{file.name}" for file in (PYTHON_FOLDER / "kestan").iterdir()
                if file.suffix in (".py", ".pyi", ".typed")}
    assert names == expected | {"kestan/_kestan.abi3.so"}
    program = "import kestan; kestan.open('i', 'w').close(); print(len(kestan.open('i')))"
    done = subprocess.run(
        [sys.executable, "-c", program], cwd=tmp_path, check=True, capture_output=True, text=True,
        env={**os.environ, "PYTHONPATH": str(tmp_path / "site"),
             "LD_LIBRARY_PATH": os.environ["KESTAN_LIBRARY_DIR"]})
    assert done.stdout == "0\n"


def test_a_missing_header_is_told_in_one_line(tmp_path: Path) -> None:
    done = subprocess.run([sys.executable, str(PYTHON_FOLDER / "build_kestan.py")],
                          cwd=tmp_path, capture_output=True, text=True, check=False,
                          env={**os.environ, "KESTAN_INCLUDE_DIR": str(tmp_path)})
    assert done.returncode == 1
    assert done.stderr == (f"kestan/c.h is not in {tmp_path}; "
                           "say where it is: KESTAN_INCLUDE_DIR=...\n")
