"""What a caller should look at although an operation succeeded: Python warnings at the caller's own line."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import os
import sys
import warnings

from .errors import PelmoraWarning

_package = os.path.dirname(__file__)


def caution(text: str) -> None:
    """Warns with PelmoraWarning, at the first line outside the package."""
    depth, frame = 1, sys._getframe(0)
    while frame.f_back is not None and os.path.dirname(frame.f_code.co_filename) == _package:
        depth, frame = depth + 1, frame.f_back
    warnings.warn(text, PelmoraWarning, stacklevel=depth)
