#!/usr/bin/env python3
"""Plants small faults in a copy of the sources, one at a time, and tells which test notices each.

The faults are in tests/mutation/faults.ini. A fault that every test overlooks fails the check, unless
its entry says why no test can notice it; an entry that says so and is noticed all the same fails it
too. Takes about half a minute for a fault.
"""

import argparse
import configparser
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FAULTS = ROOT / "tests/mutation/faults.ini"
SCRATCH = ROOT / "build/mutation"
SOURCES = SCRATCH / "source"
BUILD = SCRATCH / "build"

# What is built and which tests are run: most faults are noticed by those that are quick to build.
STAGES = (("unit_tests", ("--label-regex", "^units$")), ("all", ()))

# A fault that makes a test hang is noticed after this many seconds.
TEST_TIMEOUT_SECONDS = 30

# How often tests may fail and pass when run again before that counts as a failure of the check.
MAXIMUM_RUNS = 3


def run(*command):
    return subprocess.run(
        command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
    )


def run_or_exit(*command):
    result = run(*command)
    if result.returncode != 0:
        sys.exit(f"{result.stdout}\n{' '.join(map(str, command))} failed")
    return result.stdout


def read_faults():
    parser = configparser.ConfigParser(
        comment_prefixes=(";",), delimiters=("=",), interpolation=None, strict=True
    )
    parser.read(FAULTS)
    return {name: dict(parser[name]) for name in parser.sections()}


def with_fault(text, name, fault):
    """The source text with the fault in it."""
    pattern = r"\s+".join(re.escape(word) for word in fault["was"].split())
    found = len(re.findall(pattern, text))
    if found != 1:
        sys.exit(f"{name}: its text stands {found} times in {fault['file']}, not once")
    return re.sub(pattern, lambda _: fault["becomes"], text)


def copy_sources():
    names = run_or_exit(
        "git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard"
    ).splitlines()
    shutil.rmtree(SOURCES, ignore_errors=True)
    for name in names:
        if (ROOT / name).is_file():
            (SOURCES / name).parent.mkdir(parents=True, exist_ok=True)
            # With a new date: an interrupted run may have left objects built from a fault.
            shutil.copy(ROOT / name, SOURCES / name)


def build(target):
    return run("cmake", "--build", BUILD, "--target", target)


def test(*options):
    return run(
        "ctest", "--test-dir", BUILD, "-j", str(4 * (os.cpu_count() or 1)), "--no-tests=error", *options
    )


def failed_tests(*options):
    result = test(*options)
    # The summary's lines: "12 - SetWifi.comparesBytes (Failed)", perhaps with "# GetParam() = x" before the verdict.
    names = re.findall(r"^\s*\d+ - (\S+).* \(\w[^()]*\)$", result.stdout, re.MULTILINE)
    if result.returncode != 0 and not names:
        sys.exit(f"{result.stdout}\nctest failed without a failed test")
    return names


def noticing_tests(*selection):
    """The tests that fail and, so that a busy machine cannot pass for a fault, fail again."""
    for _ in range(MAXIMUM_RUNS):
        if not failed_tests("--stop-on-failure", *selection):
            return []
        names = failed_tests("--stop-on-failure", "--rerun-failed")
        if names:
            return names
    sys.exit(f"Tests failed that then passed, {MAXIMUM_RUNS} times in a row: they are not dependable")


def check(name, fault):
    """What notices the fault: "the compiler", names of tests, or None."""
    path = SOURCES / fault["file"]
    original = path.read_text()
    path.write_text(with_fault(original, name, fault))
    try:
        for target, selection in STAGES:
            if build(target).returncode != 0:
                return "the compiler"
            names = noticing_tests(*selection)
            if names:
                return ", ".join(names)
        return None
    finally:
        path.write_text(original)


def parse_arguments(names):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("fault", nargs="*", help="entries of the list to plant (default: all)")
    arguments = parser.parse_args()
    unknown = set(arguments.fault) - set(names)
    if unknown:
        parser.error("no such fault: " + ", ".join(sorted(unknown)))
    return arguments.fault or list(names)


def main():
    faults = read_faults()
    chosen = parse_arguments(faults)
    subprocess.run([ROOT / "scripts/install-packages.sh"], check=True)

    print("Building and testing without a fault", flush=True)
    copy_sources()
    for name, fault in faults.items():
        with_fault((SOURCES / fault["file"]).read_text(), name, fault)
    run_or_exit(
        "cmake", "-S", SOURCES, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
        "-DVANTRIC_BUILD_SIMULATOR=ON", "-DVANTRIC_BUILD_TESTS=ON",
        f"-DVANTRIC_TEST_TIMEOUT={TEST_TIMEOUT_SECONDS}",
    )
    for result in (build("all"), test()):
        if result.returncode != 0:
            sys.exit(f"{result.stdout[-4000:]}\nFails without any fault")

    failures = []
    for number, name in enumerate(chosen, 1):
        start = time.monotonic()
        noticer = check(name, faults[name])
        seconds = time.monotonic() - start
        reason = faults[name].get("survives")
        verdict = f"noticed by {noticer}" if noticer else f"SURVIVES ({reason or 'unexplained'})"
        print(f"{number}/{len(chosen)} {name}: {verdict} [{seconds:.0f} s]", flush=True)
        if bool(noticer) == (reason is not None):
            failures.append(name)

    print(f"{len(chosen)} faults, {len(failures)} not as the list says: {', '.join(failures) or 'none'}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
