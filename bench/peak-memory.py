#!/usr/bin/env python3
"""peak-memory.py COMMAND...: runs a command and prints its wall time in milliseconds and the most memory
that it and its children had together, in MB. Memory that processes share is shared out among them."""
import os
import subprocess
import sys
import time


def family(pid):
    yield pid
    for task in os.listdir(f'/proc/{pid}/task'):
        with open(f'/proc/{pid}/task/{task}/children', encoding='ascii') as file:
            for child in file.read().split():
                yield from family(int(child))


def memory(pid):
    """Proportional set size in kB."""
    with open(f'/proc/{pid}/smaps_rollup', encoding='ascii') as file:
        return sum(int(line.split()[1]) for line in file if line.startswith('Pss:'))


peak = 0
start = time.monotonic()
child = subprocess.Popen(sys.argv[1:])
while child.poll() is None:
    try:
        peak = max(peak, sum(map(memory, family(child.pid))))
    except (OSError, ProcessLookupError):
        pass  # one has ended meanwhile
    time.sleep(.005)
print(f'{(time.monotonic() - start) * 1000:.0f} {peak / 1000:.0f}')
sys.exit(child.returncode)
