#!/usr/bin/env python3
"""include-layers.py ROOT: every include points the way that the table in docs/architecture.md allows.

A file may include files of its own folder and of the folders in its row, in quotes or in angle brackets.
A folder without a row of its own belongs to the one above it. The check is tried first: on copies of real
files to which a forbidden include has been added, it has to complain.
"""
import os
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*["<]([^">]+)[">]', re.M)
ROW = re.compile(r'^\| `([\w/]+)/` \|(.*?)\|')


def read_table(root):
    with open(os.path.join(root, "docs/architecture.md"), encoding="utf-8") as page:
        rows = [row for row in map(ROW.match, page) if row]
    table = {row.group(1): re.findall(r"`([\w/]+)/`", row.group(2)) for row in rows}
    unknown = {name for names in table.values() for name in names} - table.keys()
    if not table or unknown:
        sys.exit(f"docs/architecture.md: no table, or no row for {sorted(unknown)}")
    return table


def row_of(path, table):
    folder = os.path.dirname(path)
    while folder and folder not in table:
        folder = os.path.dirname(folder)
    return folder


def resolve(root, path, name):
    """The file of the tree that an include means, or None: the system's, or Apple's from platform/include."""
    for candidate in (name, os.path.join("include", name), os.path.join(os.path.dirname(path), name)):
        if os.path.isfile(os.path.join(root, candidate)):
            return os.path.normpath(candidate)
    return None


def sources(table):
    for folder in sorted({name.split("/")[0] for name in table}):
        for parent, _, names in os.walk(folder):
            yield from (os.path.join(parent, n) for n in sorted(names) if n.endswith((".h", ".cpp", ".mm")))


def faults(root, path, table, text):
    own = row_of(path, table)
    if not own:
        return [f"{path}: its folder has no row in docs/architecture.md"]
    found = []
    for name in INCLUDE.findall(text):
        target = resolve(root, path, name)
        row = target and row_of(target, table)
        if target and row != own and row not in table[own]:
            found.append(f"{path} includes {target}: {own}/ may not include {row or os.path.dirname(target)}/")
    return found


def try_the_check(table):
    """Every row with every folder that is not in it, in both forms."""
    for own in table:
        for other in table.keys() - {own, *table[own]}:
            with tempfile.TemporaryDirectory() as root:
                os.makedirs(os.path.join(root, other))
                open(os.path.join(root, other, "Forbidden.h"), "w").close()
                for form in ('#include "%s"\n', "#import <%s>\n"):
                    if not faults(root, f"{own}/Some.cpp", table, form % f"{other}/Forbidden.h"):
                        sys.exit(f"the check misses {form % other} in {own}/")


def main():
    root = sys.argv[1]
    table = read_table(root)
    try_the_check(table)
    os.chdir(root)
    complaints = []
    count = 0
    for path in sources(table):
        with open(path, encoding="utf-8") as file:
            complaints += faults(root, path, table, file.read())
        count += 1
    if not count:
        complaints.append("no source found")
    for complaint in complaints:
        print(complaint, file=sys.stderr)
    sys.exit(1 if complaints else 0)


main()
