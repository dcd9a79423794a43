#!/usr/bin/env python3
"""Writes the seeds of the separation profile fuzzer: small profiles, whole and damaged."""
import os
import struct
import sys


def profile(grid=2, inputs=2, outputs=2, channels=(3, 8), signature=b"mft2"):
    header = signature + bytes(4) + bytes([*channels, grid, 0])
    header += struct.pack(">9i", 65536, 0, 0, 0, 65536, 0, 0, 0, 65536)
    header += struct.pack(">HH", inputs, outputs)
    curve = lambda n: struct.pack(f">{n}H", *(i * 65535 // max(n - 1, 1) for i in range(n)))
    count = 8 * grid**3
    values = struct.pack(f">{count}H", *(i * 40503 % 65536 for i in range(count)))
    return header + 3 * curve(inputs) + values + 8 * curve(outputs)


folder = sys.argv[1]
seeds = {
    "two-points": profile(),
    "one-point": profile(grid=1, inputs=1, outputs=1),
    "five-points": profile(grid=5, inputs=4, outputs=3),
    "no-points": profile(grid=0),
    "no-curves": profile(inputs=0, outputs=0),
    "four-outputs": profile(channels=(3, 4)),
    "8-bit": profile(signature=b"mft1"),
    "header-only": profile()[:52],
    "grid-short": profile()[:120],
    "promises-too-much": profile()[:10] + b"\xff" + profile()[11:],
}
os.makedirs(folder, exist_ok=True)
for name, data in seeds.items():
    with open(os.path.join(folder, name), "wb") as file:
        file.write(data)
