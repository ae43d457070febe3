"""Builds the package without network: setuptools with the scikit-build of the system.

pip builds in an environment of its own, in which only what pyproject.toml requires is there. What Debian installs is
as good, so its folder is added here.
"""
# SPDX-License-Identifier: MIT
import os
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


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


build_wheel = build_meta.build_wheel
prepare_metadata_for_build_wheel = build_meta.prepare_metadata_for_build_wheel
