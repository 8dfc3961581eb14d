#!/usr/bin/env python3
"""Runs the smoke program on an emulated processor and looks at the code that it ran there.

check_streaming.py yes|no <emulator> <model> <program and its arguments>: whether stores that bypass
the cache were among it. They belong to fills and copies larger than a cache whose size is known.
"""

import re
import subprocess
import sys
import tempfile


def main(wanted, emulator, model, *program):
    with tempfile.NamedTemporaryFile(mode="r", suffix=".log") as log:
        command = [emulator, "-cpu", model, "-d", "in_asm", "-D", log.name, *program]
        done = subprocess.run(command, capture_output=True, text=True)
        blocks = log.read().split("IN:")[1:]
    if done.returncode != 0:
        print(done.stdout, done.stderr)
        return 1
    streaming = sum(1 for block in blocks if re.search(r"\sv?movnt(dq|ps|pd|i)\b", block))
    print(f"{streaming} of {len(blocks)} blocks of code stream")
    return 0 if blocks and (streaming > 0) == (wanted == "yes") else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
