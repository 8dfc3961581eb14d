"""Reads ELF and PE files through binutils, for the checks of this folder."""

import re
import subprocess


def run(*command, **options):
    done = subprocess.run(command, capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise SystemExit(f"{' '.join(command)}:\n{done.stderr}")
    return done.stdout


class Binary:
    """A linked library: its sections, its symbols and the bytes at an address."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        self.path = path
        self.is_elf = self.data.startswith(b"\x7fELF")
        # index, name, size, address, load address, file offset
        row = re.compile(r"^\s*\d+ (\S+)\s+" + r"([0-9a-f]+)\s+" * 4, re.M)
        self.sections = {}
        for name, size, address, _, offset in row.findall(run("objdump", "-h", path)):
            self.sections[name] = (int(address, 16), int(size, 16), int(offset, 16))
        # address, size (ELF only), type, name
        self.symbols = {}
        for line in run("nm", "-S", path).splitlines():
            fields = line.split()
            if len(fields) >= 3 and len(fields[-2]) == 1:
                size = int(fields[1], 16) if len(fields) == 4 else None
                self.symbols[fields[-1]] = (int(fields[0], 16), size, fields[-2])

    def section_at(self, address):
        for name, (start, size, _) in self.sections.items():
            if start <= address < start + size:
                return name
        return None

    def bytes_at(self, address, count):
        start, _, offset = self.sections[self.section_at(address)]
        return self.data[offset + address - start : offset + address - start + count]
