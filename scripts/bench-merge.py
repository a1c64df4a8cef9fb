#!/usr/bin/env python3
"""Merges the reports of the benchmark programs into one results file.

Usage: scripts/bench-merge.py RESULTS.json REPORT.json...

Fails when a run reported an error, lost an operation or has no floor.
"""
import sys

import bench_results


def main():
    if sys.argv[1:2] in (["-h"], ["--help"]):
        print(__doc__)
        return
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    try:
        bench_results.save(bench_results.merged(sys.argv[2:]), sys.argv[1])
    except (bench_results.InvalidResults, OSError, ValueError, KeyError) as error:
        sys.exit(f"No results: {error!r}")


main()
