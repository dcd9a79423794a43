#!/usr/bin/env python3
"""coverage-table.py ROOT LINES BRANCHES LIST FOLDER...: sums up by folder what `llvm-cov export -summary-only` writes
of what lies in those folders, and prints a table. Every file goes into LIST, the least covered one first. Exits with
1 when the whole is below LINES percent of the lines or BRANCHES percent of the branches."""
import collections
import json
import os
import sys

KINDS = ("lines", "branches")


def percent(covered, count):
    return 100.0 * covered / count if count else 100.0


def row(name, counts):
    cells = [f"{percent(*counts[kind]):6.1f} %  {counts[kind][1]:6d}" for kind in KINDS]
    return f"{name:34s} {cells[0]}   {cells[1]}"


root, least_lines, least_branches, list_path = sys.argv[1], float(sys.argv[2]), float(sys.argv[3]), sys.argv[4]
shipped = sys.argv[5:]
folders = collections.defaultdict(lambda: {kind: [0, 0] for kind in KINDS})
files = {}
for file in json.load(sys.stdin)["data"][0]["files"]:
    name = os.path.relpath(file["filename"], root)
    if name.split("/")[0] not in shipped:
        continue
    files[name] = {kind: [file["summary"][kind]["covered"], file["summary"][kind]["count"]] for kind in KINDS}
    for group in (os.path.dirname(name) + "/", "all"):
        for kind in KINDS:
            for i in (0, 1):
                folders[group][kind][i] += files[name][kind][i]

if not files:
    sys.exit("coverage-table.py: nothing that is shipped was run")
heading = f"{'folder':34s}    lines      of   branches      of"
print(heading)
total = folders.pop("all")
for name in sorted(folders):
    print(row(name, folders[name]))
print(row("all that is shipped", total))
with open(list_path, "w") as out:
    print(heading.replace("folder", "file  "), file=out)
    for name in sorted(files, key=lambda n: percent(*files[n]["lines"])):
        print(row(name, files[name]), file=out)

failures = 0
for kind, least in (("lines", least_lines), ("branches", least_branches)):
    reached = percent(*total[kind])
    if reached < least:
        print(f"coverage: {reached:.1f} % of the {kind} are tested; at least {least:g} % have to be", file=sys.stderr)
        failures = 1
sys.exit(failures)
