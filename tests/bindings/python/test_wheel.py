"""`pip install .` as a user does it, without network.

Compiling the library again would take minutes. Therefore the wheel that is installed is built around the libraries of
the build folder, as PELMORA_PREBUILT offers it; the build of everything is planned to its last step.
"""
# SPDX-License-Identifier: MIT
import os
import pathlib
import shutil
import subprocess
import sys
import venv
import zipfile

import pytest

from conftest import SOURCE

#: A proxy that nobody answers: what asks for anything fails. npm would ask several times.
OFFLINE = {"PIP_NO_INDEX": "1", "http_proxy": "http://127.0.0.1:9", "https_proxy": "http://127.0.0.1:9",
           "npm_config_fetch_retries": "0"}
#: The module that users get is optimised; here that would only take longer.
QUICK = "-DPELMORA_OPTIMISATION=-O0 -DCMAKE_UNITY_BUILD_BATCH_SIZE=48"


def run(*command, **environment):
    ended = subprocess.run(list(map(str, command)), capture_output=True, text=True,
                           env={**os.environ, "PYTHONPATH": "", **OFFLINE, **environment})
    assert ended.returncode == 0, ended.stdout[-4000:] + ended.stderr[-4000:]
    return ended.stdout


@pytest.fixture(scope="module")
def tree(tmp_path_factory):
    """A source tree with what a user gets, less what no wheel needs."""
    if subprocess.run([sys.executable, "-c", "import skbuild, pip, venv"], capture_output=True).returncode:
        pytest.skip("scikit-build or pip is missing")
    listed = subprocess.run(["git", "-C", SOURCE, "ls-files", "-z"], capture_output=True)
    if listed.returncode:
        pytest.skip("not in a repository")
    folder = tmp_path_factory.mktemp("tree")
    for name in listed.stdout.decode().split("\0"):
        if name and not name.startswith(("tests/", "docs/", "bench/")) and (SOURCE / name).is_file():
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(SOURCE / name, folder / name)
    return folder


def test_everything_that_a_build_from_the_sources_takes_is_there(tree, tmp_path):
    run("cmake", "-G", "Ninja", "-S", tree, "-B", tmp_path / "build", *run(
        sys.executable, "-c", "import wheel_backend; print(*wheel_backend.cmake_arguments(), sep='\\n')",
        PYTHONPATH=str(tree / "bindings" / "python")).split("\n")[:-1])
    # CMake has refused a source that is missing; these are the other files.
    inputs = run("ninja", "-C", tmp_path / "build", "-t", "inputs", "install_python").split("\n")
    assert all(pathlib.Path(path).is_file() for path in inputs if path.startswith(str(tree)))
    steps = run("ninja", "-C", tmp_path / "build", "-t", "commands", "install_python")
    for step in ("libpelmora.so.0 ", "libpelmora_report.so.0 ", "/_pelmora.", "--component python"):
        assert step in steps


def test_the_wheel_is_built_and_installed_without_network(tree, tmp_path):
    for component in ("program", "development"):
        run("cmake", "--install", os.environ["PELMORA_BUILD"], "--prefix", tmp_path / "usr", "--component", component)
    run(sys.executable, "-m", "pip", "wheel", "--no-deps", "--wheel-dir", tmp_path / "wheels", tree,
        PELMORA_CMAKE_ARGS=f"-DPELMORA_PREBUILT={tmp_path / 'usr'} {QUICK}")
    shutil.rmtree(tmp_path / "usr")  # the wheel has what it needs
    wheel, = (tmp_path / "wheels").glob("pelmora-*.whl")
    names = zipfile.ZipFile(wheel).namelist()
    assert {"pelmora/__init__.py", "pelmora/py.typed", "pelmora/_pelmora.pyi"} <= set(names)
    assert sum(name.startswith("pelmora/libpelmora") for name in names) == 2
    assert not [name for name in names if not name.startswith(("pelmora/", "pelmora-"))]

    venv.create(tmp_path / "env", system_site_packages=True, with_pip=True)
    python = tmp_path / "env" / "bin" / "python"
    run(python, "-m", "pip", "install", "--no-index", wheel)
    assert str(tmp_path) in run(python, "-I", "-c", "import pelmora; print(pelmora.__file__)")
    used = "import numpy as np, pelmora; x = np.geomspace(10, 1000, 20); print(pelmora.fit(x, 2 + 0.01 * np.log(x)).chosen)"
    assert run(python, "-I", "-c", used).strip()
    loaded = run(python, "-I", "-c", "import pelmora; print(open('/proc/self/maps').read())")
    libraries = {line.split()[-1] for line in loaded.splitlines() if "libpelmora" in line}
    assert libraries and all(library.startswith(str(tmp_path / "env")) for library in libraries)
