"""Answers of a workbench, compared with the description of its interface and with what commands write.

Imported by tests that are called with PROGRAM DATA OPENAPI SCHEMA [CASE...]; without Python's jsonschema they are skipped.
"""
# SPDX-License-Identifier: MIT
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("Python's jsonschema is missing: install python3-jsonschema, as scripts/setup does")
    sys.exit(77)

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from strict_schema import strict  # noqa: E402

PROGRAM, DATA, OPENAPI, SCHEMA = sys.argv[1:5]
with open(OPENAPI, encoding="utf-8") as stream:
    INTERFACE = json.load(stream)
with open(SCHEMA, encoding="utf-8") as stream:
    COMMANDS = json.load(stream)
ROTOR = {"meter": "M1", "series": "Rotor A"}
CHECKED = set()  # the requests whose answers have been compared


def check(path, status, value, method="get"):
    """The answer is as described."""
    CHECKED.add((method, path))
    answers = INTERFACE["paths"][path][method]["responses"]
    schema = answers["200" if status == 200 else "default"]["content"]["application/json"]["schema"]
    jsonschema.Draft202012Validator({**strict(schema, True), "components": strict(INTERFACE["components"], True)}).validate(value)
    return value


def read(bench, path, expected=200, **query):
    status, value = bench.get(path.lstrip("/"), **query)
    assert status == expected, (path, status, value)
    return check(path, status, value)


def change(bench, path, expected=200, **members):
    status, value = bench.post(path.lstrip("/"), **members)
    assert status == expected, (path, status, value)
    return check(path, status, value, "post")


def as_command(name, value):
    """The answer is also what the command of this name writes."""
    schema = {"$ref": f"#/$defs/commands/{name}", "$defs": COMMANDS["$defs"]}
    jsonschema.Draft202012Validator(schema).validate(value)


def command(*words):
    return json.loads(subprocess.run([PROGRAM, *words, "--json"], check=True, capture_output=True, text=True).stdout)
