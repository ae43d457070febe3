"""What a case expects of numbers and texts; AssertionError says where it is not so."""
# SPDX-License-Identifier: MIT
import re


def expect(condition, message):
    if not condition:
        raise AssertionError(message)


def expect_equal(found, wanted, place, tolerance=0.0):
    if isinstance(wanted, bool):
        wanted = int(wanted)
    if isinstance(wanted, (int, float)) and found is not None:
        expect(abs(float(found) - wanted) <= tolerance * abs(wanted), f"{place}: {found} is not {wanted}")
    else:
        expect(found == wanted, f"{place}: {found!r} is not {wanted!r}")


def expect_rounded(text, value, place):
    """The text is the value rounded to the digits that the text shows."""
    if value is None:
        return expect_equal(text, "-", place)
    digits = re.sub(r"[eE].*", "", text)
    exponent = int(re.search(r"[eE](.*)", text).group(1)) if "e" in text.lower() else 0
    decimals = len(digits.split(".")[1]) if "." in digits else 0
    unit = 10.0 ** (exponent - decimals)
    expect(abs(float(text) - value) <= unit / 2 * (1 + 1e-9), f"{place}: {text} is not {value}")
