"""`pip install .` as a user does it, without network."""
# SPDX-License-Identifier: MIT
import os
import shutil
import subprocess
import sys
import venv
import zipfile

import pytest

from conftest import SOURCE


def run(*command, **environment):
    ended = subprocess.run(list(map(str, command)), capture_output=True, text=True,
                           env={**os.environ, "PYTHONPATH": "", **environment})
    assert ended.returncode == 0, ended.stdout[-4000:] + ended.stderr[-4000:]
    return ended.stdout


def test_the_wheel_is_built_and_installed_without_network(tmp_path):
    if subprocess.run([sys.executable, "-c", "import skbuild, pip, venv"], capture_output=True).returncode:
        pytest.skip("scikit-build or pip is missing")
    tree = tmp_path / "tree"
    tree.mkdir()
    listed = subprocess.run(["git", "-C", SOURCE, "ls-files", "-z"], capture_output=True)
    if listed.returncode:
        pytest.skip("not in a repository")
    for name in listed.stdout.decode().split("\0"):
        if name and not name.startswith(("tests/", "docs/", "bench/")) and (SOURCE / name).is_file():
            (tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(SOURCE / name, tree / name)
    wheels = tmp_path / "wheels"
    compiler = shutil.which("clang++-14")  # takes half the time of g++ where nothing is optimised
    # A proxy that nobody answers: a build that asks for anything fails.
    run(sys.executable, "-m", "pip", "wheel", "--no-deps", "--wheel-dir", wheels, tree, PIP_NO_INDEX="1",
        http_proxy="http://127.0.0.1:9", https_proxy="http://127.0.0.1:9",
        PELMORA_CMAKE_ARGS="-DPELMORA_WITH_PLOTS=OFF -DPELMORA_OPTIMISATION=-O0")  # only the packing is tested
    wheel, = wheels.glob("pelmora-*.whl")
    names = zipfile.ZipFile(wheel).namelist()
    assert {"pelmora/__init__.py", "pelmora/py.typed", "pelmora/_pelmora.pyi"} <= set(names)
    assert sum(name.startswith("pelmora/libpelmora") for name in names) >= 2
    assert not [name for name in names if not name.startswith(("pelmora/", "pelmora-"))]

    venv.create(tmp_path / "env", system_site_packages=True, with_pip=True)
    python = tmp_path / "env" / "bin" / "python"
    run(python, "-m", "pip", "install", "--no-index", wheel)
    assert str(tmp_path) in run(python, "-I", "-c", "import pelmora; print(pelmora.__file__)")
    used = "import numpy as np, pelmora; x = np.geomspace(10, 1000, 20); print(pelmora.fit(x, 2 + 0.01 * np.log(x)).chosen)"
    assert run(python, "-I", "-c", used).strip()
