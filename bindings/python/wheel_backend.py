"""Builds the package without network: setuptools with the scikit-build of the system.

pip builds in an environment of its own, in which only what pyproject.toml requires is there. What Debian installs is
as good, so its folder is added here.
"""
# SPDX-License-Identifier: MIT
import os
import shlex
import sys

_SYSTEM = "/usr/lib/python3/dist-packages"
if os.path.isdir(_SYSTEM) and _SYSTEM not in sys.path:
    sys.path.append(_SYSTEM)
# The folder of the package, from wherever the build began.
os.chdir(os.path.dirname(os.path.abspath(__file__)))

try:
    import skbuild  # noqa: F401
    from setuptools import build_meta
except ImportError as missing:
    raise ImportError(f"{missing}; install Debian's python3-skbuild, python3-setuptools and python3-wheel, or "
                      "scikit-build from elsewhere with --no-build-isolation") from missing


def cmake_arguments():
    """How CMake is called, with what the user adds in PELMORA_CMAKE_ARGS.

    The wheel must not depend on libraries that its user would have to install from elsewhere.
    """
    return ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=16",
            "-DPELMORA_BUILD_PYTHON=ON", "-DPELMORA_PYTHON_WITH_LIBRARIES=ON", "-DPELMORA_PYTHON_FOLDER=.",
            "-DPELMORA_WITH_DIALOG=OFF", "-DPELMORA_BUILD_TESTS=OFF", f"-DPython_EXECUTABLE={sys.executable}",
            *shlex.split(os.environ.get("PELMORA_CMAKE_ARGS", ""))]


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


build_wheel = build_meta.build_wheel
prepare_metadata_for_build_wheel = build_meta.prepare_metadata_for_build_wheel
