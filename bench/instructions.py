#!/usr/bin/env python3
"""Counts the instructions of instruction_count.cpp's pieces of work with callgrind.

instructions.py PROGRAM STORED [--store]: fails when a count is more than 10 % above the stored one, or not stored;
--store writes the counts into STORED instead.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

MOST = 1.10


def count(program):
    """Name and instructions of each piece, the C library's included, in the order of the program."""
    # So the C library takes the same functions, and the same way through them, on every processor.
    tunables = "glibc.cpu.hwcaps=-AVX,-AVX2,-FMA,-ERMS:glibc.cpu.x86_non_temporal_threshold=0x10000000"
    environment = dict(os.environ, LC_ALL="C", LD_BIND_NOW="1", GLIBC_TUNABLES=tunables)
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no",
             f"--callgrind-out-file={folder}/counts", program],
            env=environment, capture_output=True, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{program} ended with {run.returncode}:\n{run.stderr}")
        counts = {}
        for file in sorted(pathlib.Path(folder).glob("counts.*"), key=lambda f: int(f.suffix[1:])):
            text = file.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (\S+)$", text, re.M)
            total = re.search(r"^(?:totals|summary): (\d+)", text, re.M)
            if name and total:
                counts[name[1]] = int(total[1])
    return counts


def main(program, stored, store):
    counts = count(program)
    if not counts:
        sys.exit("nothing was counted")
    if store:
        pathlib.Path(stored).write_text("".join(f"{name} {number}\n" for name, number in counts.items()))
        print(f"{len(counts)} counts are stored in {stored}")
        return 0
    known = dict(line.split() for line in pathlib.Path(stored).read_text().splitlines())
    wrong = [f"{name} is not counted any more" for name in known if name not in counts]
    for name, number in counts.items():
        if name not in known:
            wrong.append(f"{name} has no stored count")
            continue
        ratio = number / int(known[name])
        print(f"{name:28} {number:12,} {ratio:8.3f}")
        if ratio > MOST:
            wrong.append(f"{name}: {number:,} instructions, {ratio:.2f} times the stored {int(known[name]):,}")
    if wrong:
        print("\n".join(wrong))
        print("If these are right: scripts/bench --store-instructions")
    return 1 if wrong else 0


if __name__ == "__main__":
    words = [word for word in sys.argv[1:] if word != "--store"]
    sys.exit(main(words[0], words[1], "--store" in sys.argv))
