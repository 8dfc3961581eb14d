#!/usr/bin/env python3
"""Checks the objects of one level: check_level.py <level> <object>..., or check_level.py self-test.

Symbols: an object defines nothing that the linker could take for another level, calls no other
level and no export. Instructions: an assembler that knows only the level's instruction sets must
accept the disassembly, so nothing above the level is left in the code.
"""

import re
import subprocess
import sys
import tempfile

from binary import run

SETS = {  # beside those of every x86-64 processor
    "sse2": (),
    "sse3": ("sse3",),
    "ssse3": ("ssse3",),
    "ssse3_movbe": ("ssse3", "movbe"),
    "sse4": ("sse4.1",),
    "avx": ("avx", "popcnt"),
    "avx2": ("avx2", "fma", "bmi", "bmi2", "popcnt"),
}
SPECIAL = r"_ZN|_ZZ+N|_ZGVZ*N|_ZT[VTIS]N"


def namespace(level):
    """Start of the mangled names of a level's namespace."""
    return re.compile(rf"(?:{SPECIAL})[rVK]*3zov{len(level)}{level}(?=[A-Z0-9])")


def symbol_errors(level, path):
    own = namespace(level)
    others = [namespace(other) for other in SETS if other != level]
    errors = []
    for line in run("nm", path).splitlines():
        kind, name = line.split()[-2:]
        # mingw's pointer to an object of another file is the same for every level.
        if name.startswith((".refptr.", ".rdata$.refptr.")):
            continue
        if kind == "U":
            if name.startswith("Kelo_") or any(other.match(name) for other in others):
                errors.append(f"reaches out of its level: {name}")
        elif (kind.isupper() or kind in "uvw") and not own.match(name):
            errors.append(f"defines a symbol that levels share: {name} ({kind})")
    return errors


def assembler_input(path):
    """The disassembly of an object as source of the assembler, and what each line came from."""
    source, origin = [], []
    function = "?"
    for line in run("objdump", "-d", "--no-show-raw-insn", path).splitlines():
        if match := re.match(r"[0-9a-f]+ <(.*)>:$", line):
            function = match[1]
        if not (match := re.match(r"\s+[0-9a-f]+:\s+(\S.*)", line)):
            continue
        code = match[1].split("#")[0].split("<")[0].rstrip()
        # A jump's target is a bare address; prefixes of padding are no instruction.
        code = re.sub(r"^((?:bnd |notrack )?(?:j\w+|call|loop\w*)(?:,p[nt])?\s+)([0-9a-f]+)$",
                      r"\g<1>0x\2", code)
        code = re.sub(r"^(?:(?:data16|[cdes]s|rex\.WB?) )+(?=nop|call|lea|jmp)", "", code)
        code = re.sub(r"^(?:[cdes]s )+", "", code)
        # The compiler writes rep bsf for speed: where tzcnt does not exist it is bsf.
        code = re.sub(r"^tzcnt\b", "rep bsf", code)
        source.append(code)
        origin.append(f"{function}: {code}")
    return source, origin


def instruction_errors(level, path):
    source, origin = assembler_input(path)
    if not source:
        return []
    march = "+".join(("generic64",) + SETS[level])
    done = subprocess.run(["as", f"-march={march}", "-o", "/dev/null", "-"], text=True,
                          input="\n".join(source) + "\n", capture_output=True)
    lines = re.findall(r"^\{standard input\}:(\d+): Error: (.*)$", done.stderr, re.M)
    if done.returncode != 0 and not lines:
        return [done.stderr]
    return [f"{message}: {origin[int(number) - 1]}" for number, message in lines]


def check(level, paths):
    errors = []
    for path in paths:
        found = symbol_errors(level, path) + instruction_errors(level, path)
        errors += [f"{path}: {error}" for error in found]
    return errors


def self_test():
    """Made-up objects: check() must refuse those with a fault, and no others."""
    order = list(SETS)
    allowed = {  # an instruction, and the levels that may use it
        "addps %xmm0, %xmm1": order,
        "rep bsf %rax, %rcx": order,
        "jmp 1f\n1: ret": order,
        "haddps %xmm0, %xmm1": order[1:],
        "pshufb %xmm0, %xmm1": order[2:],
        "movbe (%rax), %ecx": ["ssse3_movbe"],
        "pmulld %xmm0, %xmm1": order[4:],
        "pextrw $1, %xmm0, (%rax)": order[4:],
        "pcmpgtq %xmm0, %xmm1": order[5:],
        "popcnt %rax, %rcx": order[5:],
        "vaddps %xmm0, %xmm1, %xmm2": order[5:],
        "vaddps %ymm0, %ymm1, %ymm2": order[5:],
        "vbroadcastss (%rax), %ymm0": order[5:],
        "vbroadcastss %xmm0, %ymm0": order[6:],
        "vpaddd %ymm0, %ymm1, %ymm2": order[6:],
        "vfmadd213ps %ymm0, %ymm1, %ymm2": order[6:],
        "andn %rax, %rcx, %rdx": order[6:],
        "mulx %rax, %rcx, %rdx": order[6:],
        "lzcnt %rax, %rcx": [],
        "vcvtph2ps %xmm0, %ymm0": [],
        "vaddps %zmm0, %zmm1, %zmm2": [],
        "vaddps %ymm16, %ymm1, %ymm2": [],
    }
    own = "_ZN3zov4sse28zovsFreeEPv"
    symbols = {
        f".globl {own}\n{own}:": False,
        ".weak _ZZN3zov4sse24FindEvE5table\n_ZZN3zov4sse24FindEvE5table:": False,
        "local:": False,
        "call malloc": False,
        ".weak _ZSt3maxIfERKT_S2_S2_\n_ZSt3maxIfERKT_S2_S2_:": True,
        ".globl _ZN3zov4HelpEv\n_ZN3zov4HelpEv:": True,
        ".globl _ZN3zov5sse2x4HelpEv\n_ZN3zov5sse2x4HelpEv:": True,
        ".globl _ZN3zov4avx28zovsFreeEPv\n_ZN3zov4avx28zovsFreeEPv:": True,
        ".comm shared,8": True,
        "call _ZN3zov4avx28zovsFreeEPv": True,
        "call Kelo_zovsFree": True,
    }
    errors = []
    with tempfile.TemporaryDirectory() as folder:
        path = f"{folder}/test.o"

        def found(level, source):
            run("as", "-o", path, "-", input=f".text\n{source}\n")
            return check(level, [path])

        everything = "".join(f"line{i}: {code}\n" for i, code in enumerate(allowed))
        for level in order:
            refused = "\n".join(found(level, everything))
            for i, (code, levels) in enumerate(allowed.items()):
                if (f" line{i}: " in refused) != (level not in levels):
                    errors.append(f"{level}: {code}: {refused}")
        for code, bad in symbols.items():
            if bool(refused := found("sse2", code)) != bad:
                errors.append(f"{code}: {refused}")
    return errors


if __name__ == "__main__":
    problems = self_test() if sys.argv[1] == "self-test" else check(sys.argv[1], sys.argv[2:])
    print("\n".join(problems[:50]))
    sys.exit(1 if problems else 0)
