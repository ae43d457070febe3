# SPDX-License-Identifier: MIT
import os
import pathlib
import re
import subprocess
import sys

import pytest

import pelmora
from conftest import SOURCE

PACKAGE = pathlib.Path(pelmora.__file__).parent
EXAMPLES = [SOURCE / "docs" / "python_tutorial.py"]


def mypy(*arguments, **environment):
    pytest.importorskip("mypy")
    return subprocess.run([sys.executable, "-m", *arguments], capture_output=True, text=True, cwd=PACKAGE.parent,
                          env={**os.environ, **environment})


def test_the_stub_is_the_module_s(tmp_path):
    """Every name and signature of the compiled module."""
    config = tmp_path / "mypy.ini"
    config.write_text("[mypy]\n[mypy-pandas.*]\nignore_missing_imports = True\n")
    allowed = tmp_path / "allowed"
    # pybind11's own: constructors, and the metaclass of its classes.
    allowed.write_text(r".*\.__init__" + "\n" + r".*\.__new__" + "\n"
                       + "".join(rf"pelmora\._pelmora\.{name}" + "\n" for name in
                                 ("Curve", "Database", "Fit", "Meter", "StoredSeries")))
    ended = mypy("mypy.stubtest", "pelmora._pelmora", "--allowlist", str(allowed), "--ignore-unused-allowlist",
                 "--ignore-positional-only", "--mypy-config-file", str(config))
    assert ended.returncode == 0, ended.stdout[-4000:] + ended.stderr


def test_the_package_and_its_examples_pass_mypy_strict(tmp_path):
    config = tmp_path / "mypy.ini"
    config.write_text("[mypy]\nstrict = True\ncache_dir = " + str(tmp_path / "cache") + "\n"
                      "[mypy-pandas.*,matplotlib.*,tqdm.*]\nignore_missing_imports = True\n")
    # The blocks of the page, as one program.
    page = tmp_path / "page.py"
    page.write_text("\n".join(re.findall(r"```python\n(.*?)```", (SOURCE / "docs" / "python.md").read_text(), re.S)))
    ended = mypy("mypy", "--config-file", str(config), str(PACKAGE), *map(str, EXAMPLES), str(page))
    assert ended.returncode == 0, ended.stdout
