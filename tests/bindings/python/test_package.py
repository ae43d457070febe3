# SPDX-License-Identifier: MIT
import inspect
import os
import pathlib
import subprocess
import sys
import textwrap

import pytest

import pelmora
from conftest import SOURCE

PACKAGE = pathlib.Path(pelmora.__file__).parent


def test_the_version_is_the_project_s():
    assert pelmora.__version__ == os.environ.get("PELMORA_VERSION", pelmora.__version__)


def test_an_import_loads_nothing_that_takes_long():
    script = "import sys; before = set(sys.modules); import pelmora; print(*set(sys.modules) - before)"
    loaded = set(subprocess.run([sys.executable, "-I", "-c", f"import sys; sys.path.insert(0, {str(PACKAGE.parent)!r})\n"
                                 + script], check=True, capture_output=True, text=True).stdout.split())
    assert "pelmora._pelmora" in loaded
    assert not loaded & {"numpy", "pandas", "matplotlib", "tqdm", "json", "dataclasses", "inspect", "asyncio",
                         "concurrent.futures", "unittest"}
    assert len(loaded) < 40


@pytest.mark.parametrize("missing, use, message", [
    ("pandas", "pelmora.equations().to_frame()", "pandas is not installed"),
    ("matplotlib", "fit.plot()", "matplotlib is not installed"),
    ("tqdm", "pelmora.fit(x, y, progress=True)", "tqdm, which is not installed")])
def test_what_is_optional_may_be_missing(missing, use, message):
    script = textwrap.dedent(f"""
        import sys
        sys.modules[{missing!r}] = None
        sys.modules["{missing}.auto"] = None
        import numpy as np, pelmora
        x = np.geomspace(10, 1000, 20)
        y = 2 + 0.01 * np.log(x)
        fit = pelmora.fit(x, y)
        fit.curve(100.0), fit._repr_html_(), fit.to_dict(), fit.fit_report()
        try:
            {use}
        except pelmora.Error as error:
            print(error)
        """)
    ended = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert message in ended.stdout, ended.stderr


def public_members():
    for name in pelmora.__all__:
        value = getattr(pelmora, name)
        if not inspect.isclass(value):
            yield name, value
            continue
        yield name, value
        for member, item in vars(value).items():
            if member.startswith("_") or not (inspect.isfunction(item) or isinstance(item, property)):
                continue
            yield f"{name}.{member}", item


def test_everything_public_is_documented():
    missing = [name for name, value in public_members()
               if name not in ("__version__", "errors") and not inspect.getdoc(value)]
    assert missing == []


def test_every_keyword_argument_is_documented():
    """Of the functions that users call most: a name that is nowhere in the text is a riddle."""
    for function in (pelmora.fit, pelmora.open, pelmora.equations, pelmora.Database.import_runs, pelmora.Database.refit,
                     pelmora.Meter.add_series, pelmora.Series.exclude, pelmora.Curve.eval):
        for parameter in inspect.signature(function).parameters:
            if parameter not in ("self", "kwargs", "x", "new_calibration", "serial", "name", "status"):
                assert parameter in (function.__doc__ or ""), f"{function.__qualname__}: {parameter}"


def test_the_reference_is_that_of_the_docstrings():
    written = subprocess.run([sys.executable, str(SOURCE / "scripts" / "python_reference")], check=True,
                             capture_output=True, text=True).stdout
    assert written == (SOURCE / "docs" / "python_reference.md").read_text(), \
        "run scripts/python_reference docs/python_reference.md"
