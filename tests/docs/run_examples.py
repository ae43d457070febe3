#!/usr/bin/env python3
"""Runs the examples of one or more documents, in order, in one folder of their own.

    run_examples.py DOCUMENT... --program FOLDER_OF_PELMORA --source REPOSITORY --work FOLDER [--write]

Every command of a ```sh block must exit with 0, or with N if its line says "# exits with N". A ```text block directly
below holds the combined output of the block's commands; a line "..." stands for any lines. Dates, times and file sizes
are not compared. Other blocks and indented ones are not run. --write replaces the text blocks that differ with the
actual output.
"""
# SPDX-License-Identifier: MIT
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys

FENCE = re.compile(r"^```(\w*)\n(.*?)^```\n", re.M | re.S)
EXIT = re.compile(r"#\s*exits with (\d+)")
VOLATILE = [
    (re.compile(r"\d{4}-\d\d-\d\d([T ]\d\d:\d\d(:\d\d)?Z?)?"), "DATE"),
    (re.compile(r"\(\d+ KB\)"), "(SIZE)"),
]


def is_whole(command):
    """Whether no quote, here document, loop or continuation is open at its end."""
    read = subprocess.run(["bash", "-n", "-c", command], text=True, capture_output=True)
    return not command.endswith("\\") and not re.search("unexpected (EOF|end of file)|delimited by end-of-file", read.stderr)


def commands(block):
    lines = iter(block.splitlines())
    for command in lines:
        if not command.strip() or command.lstrip().startswith("#"):
            continue
        while not is_whole(command):
            command += "\n" + next(lines)
        yield command


def comparable(text):
    for pattern, word in VOLATILE:
        text = pattern.sub(word, text)
    return [line.rstrip() for line in text.rstrip("\n").splitlines()]


def agrees(expected, printed):
    """Whether `printed` is `expected`, whose lines "..." stand for any lines."""
    if not expected:
        return not printed
    if expected[0] == "...":
        return any(agrees(expected[1:], printed[skip:]) for skip in range(len(printed) + 1))
    return bool(printed) and expected[0] == printed[0] and agrees(expected[1:], printed[1:])


def run(command, folder, environment):
    ended = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=environment, text=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
    expected = EXIT.search(command)
    expected = int(expected.group(1)) if expected else 0
    if ended.returncode != expected:
        return ended.stdout, f"ended with {ended.returncode} instead of {expected}:\n{ended.stdout}"
    return ended.stdout, None


def check(path, options, environment):
    """Runs the examples of one document and returns whether all of them pass."""
    document = path.read_text()
    blocks = list(FENCE.finditer(document))
    failures, ran, compared, replacements = [], 0, 0, []
    for number, block in enumerate(blocks):
        if block.group(1) != "sh":
            continue
        line = document.count("\n", 0, block.start()) + 1
        printed = ""
        for command in commands(block.group(2)):
            output, failure = run(command, options.work, environment)
            printed += output
            ran += 1
            if failure:
                failures.append(f"{path.name}:{line}: {command}\n{failure}")
        following = blocks[number + 1] if number + 1 < len(blocks) else None
        if following is None or following.group(1) != "text" or document[block.end():following.start()].strip():
            continue
        compared += 1
        if not agrees(comparable(following.group(2)), comparable(printed)):
            failures.append(f"{path.name}:{line}: expected\n{following.group(2)}but the output is\n{printed}")
            replacements.append((following.span(2), printed.rstrip("\n") + "\n"))

    if options.write:
        for (begin, end), text in reversed(replacements):
            document = document[:begin] + text + document[end:]
        path.write_text(document)
    print("\n\n".join(failures))
    print(f"{path.name}: {ran} commands run, {compared} outputs compared, {len(failures)} failures")
    return ran > 0 and not failures


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("documents", type=pathlib.Path, nargs="+")
    arguments.add_argument("--program", required=True)
    arguments.add_argument("--source", required=True, type=pathlib.Path)
    arguments.add_argument("--work", required=True, type=pathlib.Path)
    arguments.add_argument("--write", action="store_true")
    options = arguments.parse_args()

    shutil.rmtree(options.work, ignore_errors=True)
    options.work.mkdir(parents=True)
    (options.work / "examples").symlink_to(options.source / "examples")
    environment = {**os.environ, "PATH": options.program + os.pathsep + os.environ["PATH"], "LC_ALL": "C.UTF-8",
                   "HOME": str(options.work), "XDG_CONFIG_HOME": str(options.work / "config")}
    results = [check(document, options, environment) for document in options.documents]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
