#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares two gcovr JSON reports (scripts/coverage.sh) line by line.

    scripts/coverage-compare.py BEFORE.json AFTER.json

Prints both totals of src/ and every line covered before but not after,
grouped by file; exits with 1 when there is such a line.
"""
import json
import sys
from collections import defaultdict


def covered(path):
    """The executable lines of each file, and those run at least once."""
    with open(path, encoding="utf-8") as report:
        files = json.load(report)["files"]
    lines, hits = {}, {}
    for entry in files:
        name = entry["file"]
        executable = {line["line_number"] for line in entry["lines"] if not line.get("gcovr/noncode")}
        lines[name] = executable
        hits[name] = {line["line_number"] for line in entry["lines"]
                      if line["count"] > 0 and line["line_number"] in executable}
    return lines, hits


def total(lines, hits):
    executable = sum(len(numbers) for numbers in lines.values())
    run = sum(len(numbers) for numbers in hits.values())
    return run, executable


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    before_lines, before_hits = covered(sys.argv[1])
    after_lines, after_hits = covered(sys.argv[2])
    for label, (run, executable) in (("before", total(before_lines, before_hits)),
                                     ("after", total(after_lines, after_hits))):
        print(f"{label}: {run} of {executable} lines, {100.0 * run / max(executable, 1):.2f} %")
    lost = defaultdict(list)
    for name, numbers in before_hits.items():
        for number in sorted(numbers - after_hits.get(name, set())):
            # A line that is no longer code (the file changed) is not lost.
            if number in after_lines.get(name, set()):
                lost[name].append(number)
    for name in sorted(lost):
        print(f"{name}: {len(lost[name])} lines lost: {', '.join(map(str, lost[name]))}")
    print(f"{sum(len(v) for v in lost.values())} lines covered before and not after")
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main())
