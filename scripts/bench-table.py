#!/usr/bin/env python3
"""Prints the results of scripts/bench.sh as a table with ratios to the floor.

Usage: scripts/bench-table.py RESULTS.json [--write DOCUMENT]

  --write DOCUMENT  puts the table into a Markdown document instead, as the whole of its section
                    "One run"
"""
import argparse

import bench_results

BEGIN = "## One run\n"
END = "\n## "


def duration(nanoseconds):
    if nanoseconds < 10_000:
        return f"{nanoseconds:.1f} ns"
    return f"{nanoseconds / 1000:.1f} us"


def ratio_text(ratio):
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:.0f}"


def lines(results):
    yield " ".join(bench_results.machine_sentence(results["machine"]))
    yield ""
    yield "| row | what | median | lowest to highest | ratio | goal |"
    yield "|---|---|---:|---:|---:|---:|"
    for row in results["rows"]:
        for measurement, ratio in bench_results.with_ratios(row):
            is_floor = measurement["role"] == "floor"
            goal = bench_results.GOALS.get((row["row"], measurement["what"]))
            what = f"**{measurement['what']}**" if measurement["role"] == "product" else measurement["what"]
            spread = f"{duration(measurement['lowest'])} to {duration(measurement['highest'])}"
            yield (f"| {row['row'] if is_floor else ''} | {what} | {duration(measurement['nanoseconds'])} | {spread} | "
                   f"{'1' if is_floor else ratio_text(ratio)} | {goal if goal else ''} |")


def write(table, path):
    with open(path, encoding="utf-8") as file:
        before, _, rest = file.read().partition(BEGIN)
    _, marker, after = rest.partition(END)
    if not marker:
        raise SystemExit(f"{path} has no section for results with another one behind it")
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{BEGIN}\n{table}\n{END}{after}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("results")
    parser.add_argument("--write", metavar="DOCUMENT")
    arguments = parser.parse_args()
    table = "\n".join(lines(bench_results.load(arguments.results)))
    if arguments.write:
        write(table, arguments.write)
    else:
        print(table)


main()
