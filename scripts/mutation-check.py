#!/usr/bin/env python3
"""Plants small faults in a copy of the sources, one at a time, and prints which tests notice each.

The faults are in tests/mutation/faults.ini. A fault that every test overlooks fails the check, unless
its entry says why no test can notice it; an entry that says so and is noticed all the same fails it
too. Units, threads, transcripts, corpus and end-to-end tests run for each fault; a test counts that
fails twice. Takes about half a minute for a fault.
"""

import argparse
import collections
import configparser
import json
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

# What judges the documents, the packages and an installed library does not judge the product's code, and
# soak tests take too long for what the others notice as well.
NOT_RUN = "install|documents|packaging|soak"

# A fault that makes a test hang is noticed after this many seconds, and a run that has not ended after
# the longer time is ended: what has failed by then counts.
TEST_TIMEOUT_SECONDS = 10
LONGEST_RUN_SECONDS = 60


def run(*command, timeout=None):
    """The command's output and exit status; status None when the time was over."""
    try:
        result = subprocess.run(
            command,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            errors="replace",
            timeout=timeout,
        )
        return result.stdout, result.returncode
    except subprocess.TimeoutExpired as expired:
        return (expired.stdout or b"").decode(errors="replace"), None


def run_or_exit(*command):
    output, status = run(*command)
    if status != 0:
        sys.exit(f"{output[-4000:]}\n{' '.join(map(str, command))} failed")
    return output


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


def build():
    return run("cmake", "--build", BUILD)


def test(*options):
    """The names of the tests that failed, and whether ctest itself was content."""
    output, status = run(
        "ctest", "--test-dir", BUILD, "-j", str(4 * (os.cpu_count() or 1)), "--no-tests=error",
        "--label-exclude", f"^({NOT_RUN})$", *options, timeout=LONGEST_RUN_SECONDS
    )
    # Progress lines: "12/99 Test  #7: SetWifi.comparesBytes ......***Failed  0.03 sec", and perhaps
    # "  # GetParam() = x" within the name.
    names = re.findall(r"^ *\d+/\d+ Test +#\d+: (\S+).*\*\*\*(?!Not Run)", output, re.MULTILINE)
    if status not in (0, None) and not names:
        sys.exit(f"{output[-4000:]}\nctest failed without a failed test")
    return names


def kinds_of_tests():
    """The label of each test, by the test's name."""
    listing = json.loads(run_or_exit("ctest", "--test-dir", BUILD, "--show-only=json-v1"))
    kinds = {}
    for entry in listing["tests"]:
        labels = [value for item in entry.get("properties", []) if item["name"] == "LABELS" for value in item["value"]]
        kinds[entry["name"].split()[0]] = labels[0] if labels else "others"
    return kinds


def noticing_tests():
    """The tests that fail and, so that a busy machine cannot pass for a fault, fail again."""
    names = test()
    return test("--rerun-failed") if 0 < len(names) <= 20 else names


def count_by_kind(name, fault, kinds):
    """How many tests of each kind notice the fault; None when it does not compile."""
    path = SOURCES / fault["file"]
    original = path.read_text()
    path.write_text(with_fault(original, name, fault))
    try:
        if build()[1] != 0:
            return None
        return collections.Counter(kinds.get(test_name, "others") for test_name in noticing_tests())
    finally:
        path.write_text(original)


def read_table(path):
    """The counts of an earlier run, by fault."""
    rows = [[cell.strip() for cell in line.split("|")[1:-1]] for line in path.read_text().splitlines()]
    return {
        name: None if "compiler" in cells else {kind: int(cell) for kind, cell in zip(rows[0][1:], cells) if cell}
        for name, *cells in rows[2:] if not name.startswith("**")
    }


def as_table(results, kinds):
    """How many tests of each kind notice each fault; none where its entry says that no test can."""
    columns = sorted(set(kinds.values()) - set(NOT_RUN.split("|")))
    lines = ["| fault | " + " | ".join(columns) + " |", "|---|" + "---:|" * len(columns)]
    for name, counts in results.items():
        cells = ["compiler" if counts is None else str(counts.get(column, "")) for column in columns]
        lines.append(f"| {name} | " + " | ".join(cells) + " |")
    judged = [counts for counts in results.values() if counts is not None]
    noticed = [str(sum(1 for counts in judged if column in counts)) for column in columns]
    alone = [str(sum(1 for counts in judged if set(counts) == {column})) for column in columns]
    lines.append(f"| **noticed, of {len(results)}** | " + " | ".join(noticed) + " |")
    lines.append("| **noticed by this kind only** | " + " | ".join(alone) + " |")
    return "\n".join(lines) + "\n"


def parse_arguments(names):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("fault", nargs="*", help="entries of the list to plant (default: all)")
    parser.add_argument("--table", type=Path, help="renew the rows of these faults in this file: how many tests of each kind notice each")
    arguments = parser.parse_args()
    unknown = set(arguments.fault) - set(names)
    if unknown:
        parser.error("no such fault: " + ", ".join(sorted(unknown)))
    return arguments


def prepare(faults):
    subprocess.run([ROOT / "scripts/install-packages.sh"], check=True)
    print("Building and testing without a fault", flush=True)
    copy_sources()
    for name, fault in faults.items():
        with_fault((SOURCES / fault["file"]).read_text(), name, fault)
    # In batches, because many tests include the headers in which a third of the faults stand; with a shared
    # library, because a fault in one of its sources then needs no test to be linked again.
    run_or_exit(
        "cmake", "-S", SOURCES, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
        "-DVANTRIC_BUILD_SIMULATOR=ON", "-DVANTRIC_BUILD_CTL=ON", "-DVANTRIC_BUILD_TESTS=ON",
        "-DVANTRIC_BUILD_BENCHMARKS=OFF", "-DCMAKE_UNITY_BUILD=ON", "-DBUILD_SHARED_LIBS=ON", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
        f"-DVANTRIC_TEST_TIMEOUT={TEST_TIMEOUT_SECONDS}",
    )
    output, status = build()
    if status != 0:
        sys.exit(f"{output[-4000:]}\nDoes not build without any fault")
    failing = noticing_tests()
    if failing:
        sys.exit(f"Fail without any fault: {', '.join(failing)}")


def main():
    faults = read_faults()
    arguments = parse_arguments(faults)
    prepare(faults)
    kinds = kinds_of_tests()

    results = read_table(arguments.table) if arguments.table and arguments.table.exists() else {}
    failures = []
    chosen = arguments.fault or list(faults)
    for number, name in enumerate(chosen, 1):
        start = time.monotonic()
        counts = results[name] = count_by_kind(name, faults[name], kinds)
        reason = faults[name].get("survives")
        if counts is None:
            verdict = "does not compile"
        elif counts:
            verdict = ", ".join(f"{kind} {count}" for kind, count in sorted(counts.items()))
        else:
            verdict = f"SURVIVES ({reason or 'unexplained'})"
        print(f"{number}/{len(chosen)} {name}: {verdict} [{time.monotonic() - start:.0f} s]", flush=True)
        if counts is None or bool(counts) == (reason is not None):
            failures.append(name)
        if arguments.table:
            arguments.table.write_text(as_table({name: results[name] for name in faults if name in results}, kinds))

    print(f"{len(chosen)} faults, {len(failures)} not as the list says: {', '.join(failures) or 'none'}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
