# SPDX-License-Identifier: MIT
import re
import runpy
import subprocess
import sys

import pytest

from conftest import SOURCE

TUTORIAL = SOURCE / "docs" / "python_tutorial.py"


def test_the_tutorial_runs_from_its_first_cell_to_its_last(tmp_path, monkeypatch):
    pytest.importorskip("pandas")
    pytest.importorskip("matplotlib")
    monkeypatch.chdir(tmp_path)
    monkeypatch.setattr(sys, "argv", [str(TUTORIAL), str(SOURCE / "examples" / "data")])
    runpy.run_path(str(TUTORIAL), run_name="__main__")
    assert (tmp_path / "m1.html").stat().st_size > 10_000
    assert (tmp_path / "k.png").read_bytes().startswith(b"\x89PNG")


def test_the_examples_of_the_page_run_in_order(tmp_path):
    """The blocks of docs/python.md, as one program."""
    pytest.importorskip("pandas")
    blocks = re.findall(r"```python\n(.*?)```", (SOURCE / "docs" / "python.md").read_text(), re.S)
    assert len(blocks) >= 3
    (tmp_path / "stand.csv").symlink_to(SOURCE / "examples" / "data" / "stand-dual-rotor.csv")
    ended = subprocess.run([sys.executable, "-c", "\n".join(blocks)], cwd=tmp_path, capture_output=True, text=True)
    assert ended.returncode == 0, ended.stderr
