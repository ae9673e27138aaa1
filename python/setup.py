# SPDX-License-Identifier: GPL-3.0-or-later
"""Builds the package: pyproject.toml describes it, this file what is not Python."""

from setuptools import setup

setup(
    cffi_modules=["build_kestan.py:ffi"],
    # The extension uses what all versions of Python 3 share, so one wheel serves them.
    options={"bdist_wheel": {"py_limited_api": "cp39"}},
)
