"""Builds and passes the tests, part by part, and says what each came to."""
# SPDX-License-Identifier: MIT
import argparse
import concurrent.futures
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

import parts as all_parts
from parts import Unavailable, jobs
from running import Failed, end_of, files_in_memory

started = time.monotonic()


def clock(seconds):
    return f"{int(seconds) // 60}:{int(seconds) % 60:02}"


def say(text):
    print(f"[{clock(time.monotonic() - started):>5}] {text}", flush=True)


def guarded(part, step):
    """Runs one step; True where the part can go on. Nothing that goes wrong here stays unsaid."""
    try:
        step()
        return True
    except Unavailable as missing:
        part.results.skipped.append((f"{part.name}: the whole part", str(missing)))
    except Failed as failure:
        part.results.failed.append(f"{part.name}: {failure}")
        part.report = end_of(failure.log)
    except Exception as error:  # a defect here must not pass for a pass
        part.results.failed.append(f"{part.name}: {error!r}")
    say(f"{part.name}: {part.results}")
    return False


def test(part):
    if guarded(part, part.test):
        say(f"{part.name}: {part.results}, in {clock(part.testing.wall)}")


def run_parts(chosen):
    with concurrent.futures.ThreadPoolExecutor(max_workers=3) as testers:
        for part in chosen:
            if part.preset:
                say(f"{part.name}: building ...")
            if guarded(part, part.build):
                testers.submit(test, part)


def summary(chosen):
    print()
    for part in chosen:
        if part.report:
            print(f"--- {part.name}\n{part.report}\n")
    print(f"{'part':12} {'build':>7} {'tests':>7} {'CPU':>7} {'passed':>7} {'failed':>7} {'skipped':>7}")
    for part in chosen:
        used = part.building.processors + part.testing.processors
        print(f"{part.name:12} {clock(part.building.wall):>7} {clock(part.testing.wall):>7} {clock(used):>7} "
              f"{part.results.passed:>7} {len(part.results.failed):>7} {len(part.results.skipped):>7}")
    total = all_parts.Results()
    for part in chosen:
        total.add(part.results)
    if total.skipped:
        print("\nSkipped:")
        for name, reason in total.skipped:
            print(f"  {name}: {reason}")
    if total.failed:
        print("\nFailed:")
        for name in total.failed:
            print(f"  {name}")
    print(f"\nIn {clock(time.monotonic() - started)} on {jobs} processors.\n{total}")
    return 1 if total.failed or not total.passed else 0


def rooms(names):
    """The tests of these folders alone, one by one, in the preset for daily work."""
    subprocess.run(["cmake", "--preset", "dev"], check=True, stdout=subprocess.DEVNULL)
    programs = subprocess.run(["ninja", "-C", "build/dev", "-t", "targets", "all"], check=True, text=True,
                              stdout=subprocess.PIPE).stdout
    targets, folders = [], []
    for name in names:
        room = name.removeprefix("tests/").strip("/")
        if not pathlib.Path("tests", room, "CMakeLists.txt").exists():
            sys.exit(f"scripts/test: there is no tests/{room}; the folders under tests/ are the rooms")
        targets += re.findall(rf"^({re.escape(room.replace('/', '_'))}(?:_\w+)?_test): phony$", programs,
                              re.MULTILINE) or ["all"]
        folders.append(re.escape(room))
    built = subprocess.run(["cmake", "--build", "--preset", "dev", "-j", str(jobs), "--target", *targets], check=False)
    if built.returncode != 0:
        return built.returncode
    with files_in_memory():
        return subprocess.run(["ctest", "--preset", "dev", "-j", str(jobs), "--no-tests=error", "--label-exclude",
                               "slow|browser|again", "--tests-regex", f"^({'|'.join(folders)})/"], check=False).returncode


def main():
    known = all_parts.parts()
    parser = argparse.ArgumentParser(
        prog="scripts/test", formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Builds and passes the tests: what a change can break most, or --all, or some rooms.",
        epilog="parts:\n" + "\n".join(f"  {part.name:12} {part.what}" for part in known))
    parser.add_argument("room", nargs="*", help="a folder under tests/, as report or adapters/sqlite: its tests alone")
    parser.add_argument("--all", action="store_true", help="every part")
    parser.add_argument("--part", action="append", choices=[part.name for part in known], help="this part alone")
    asked = parser.parse_args()
    if asked.room:
        return rooms(asked.room)
    if asked.part:
        chosen = [part for part in known if part.name in asked.part]
    else:
        chosen = known if asked.all else all_parts.quick(known)
    with files_in_memory():
        run_parts(chosen)
    return summary(chosen)


if __name__ == "__main__":
    os.environ.setdefault("NINJA_STATUS", "[%f/%t] ")
    # A shell's job in the background ignores Ctrl-C, and so would the programs that a test sends it to.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    sys.exit(main())
