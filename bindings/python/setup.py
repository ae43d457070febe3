"""Builds the wheel: the package, its module and the two libraries that the module needs. SPDX-License-Identifier: MIT"""
import os
import re

from skbuild import setup

from wheel_backend import cmake_arguments

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
    cmake_args=cmake_arguments(),
)
