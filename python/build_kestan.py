# SPDX-License-Identifier: GPL-3.0-or-later
"""Describes the extension module kestan._kestan, which calls libkestan-c, to cffi.

Everything comes from the header <kestan/c.h>. These variables of the environment say where the
header and the library are; without them, they are those of the tree that this file is in, or else
those of the system.

KESTAN_INCLUDE_DIR  the folder that has kestan/c.h
KESTAN_LIBRARY_DIR  the folder that has libkestan-c.so
KESTAN_RPATH        the folder where the module will look for the library when it is loaded
"""

from __future__ import annotations

import os
import re
from pathlib import Path

from cffi import FFI

TREE = Path(__file__).resolve().parent.parent

# What C calls in Python: kestan/_callbacks.py has the functions.
CALLBACKS = """
extern "Python" int kestan_python_progress(const kestan_progress*, void*);
extern "Python" int kestan_python_filter(kestan_filtered*, void*);
"""


def include_folder() -> Path:
    """Returns the folder that has kestan/c.h."""
    named = os.environ.get("KESTAN_INCLUDE_DIR")
    folders = [Path(named)] if named else [
        TREE / "c" / "include", Path("/usr/local/include"), Path("/usr/include")]
    for folder in folders:
        if (folder / "kestan" / "c.h").is_file():
            return folder
    raise SystemExit(f"kestan/c.h is not in {', '.join(map(str, folders))}; "
                     "say where it is: KESTAN_INCLUDE_DIR=...")


def declarations(header: str) -> str:
    """Returns the declarations of the header as cffi reads them: without most directives."""
    plain = re.sub(r"/\*.*?\*/", " ", header, flags=re.DOTALL).replace("\\\n", " ")
    plain = re.sub(r"#ifdef __cplusplus.*?#endif", "", plain, flags=re.DOTALL)
    versions = re.findall(r"^#define (KESTAN_\w+_VERSION) \d+$", plain, flags=re.MULTILINE)
    plain = re.sub(r"^#.*$", "", plain, flags=re.MULTILINE).replace("KESTAN_C_EXPORT", "")
    return plain + "".join(f"\n#define {name} ..." for name in versions)


def builder() -> FFI:
    """Returns what builds the module."""
    include = include_folder()
    made = FFI()
    made.cdef(declarations((include / "kestan" / "c.h").read_text(encoding="utf-8")) + CALLBACKS)
    made.set_source(
        "kestan._kestan",
        "#include <kestan/c.h>",
        libraries=["kestan-c"],
        include_dirs=[str(include)],
        library_dirs=[folder for folder in [os.environ.get("KESTAN_LIBRARY_DIR")] if folder],
        runtime_library_dirs=[folder for folder in [os.environ.get("KESTAN_RPATH")] if folder],
        py_limited_api=True,
    )
    return made


ffi = builder()

if __name__ == "__main__":
    ffi.compile(verbose=True)
