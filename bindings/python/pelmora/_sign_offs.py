"""Signatures under series."""
# SPDX-License-Identifier: MIT
from __future__ import annotations

from ._records import Record


class SignOff(Record):
    """A signature under the points, exclusions, settings and curve of a series as they were."""

    id: int
    #: Of the person who signed.
    name: str
    remark: str
    #: UTC, ISO 8601.
    signed_at: str
    #: Of the process, and the version of Pelmora.
    user: str
    version: str
    #: SHA-256 of what was signed, in hexadecimal.
    fingerprint: str
    #: Whether the series is now as it was signed.
    valid: bool
