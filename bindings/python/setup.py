"""Builds the wheel: the package, its module and the two libraries that the module needs. SPDX-License-Identifier: MIT"""
import os
import re
import shlex
import sys

from skbuild import setup

here = os.path.dirname(os.path.abspath(__file__))
root = os.path.join(here, "..", "..")
with open(os.path.join(root, "CMakeLists.txt"), encoding="utf-8") as file:
    version = re.search(r"project\(pelmora VERSION (\S+)", file.read()).group(1)

setup(
    version=version,
    packages=["pelmora"],
    package_data={"pelmora": ["py.typed", "*.pyi"]},
    cmake_source_dir=root,
    cmake_install_target="install_python",
    # The wheel must not depend on libraries that its user would have to install from elsewhere.
    cmake_args=[
        "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=16",
        "-DPELMORA_BUILD_PYTHON=ON", "-DPELMORA_PYTHON_WITH_LIBRARIES=ON", "-DPELMORA_PYTHON_FOLDER=.",
        "-DPELMORA_WITH_DIALOG=OFF", "-DPELMORA_BUILD_TESTS=OFF", f"-DPython_EXECUTABLE={sys.executable}",
        *shlex.split(os.environ.get("PELMORA_CMAKE_ARGS", "")),
    ],
)
