#!/usr/bin/env python3
"""Tables from the output of kelozov_bench: report.py RESULT.json [--brief] [--csv FILE]

A ratio is the time of the best peer over ours: above 1 we are faster. Peers in the column "unheld"
use instructions above the level under test, or miss the accuracy that our routine promises and then
say so by the bits of their worst result; they are shown, not compared.
"""
import argparse
import csv
import json
import math
import re
from collections import namedtuple

# What we hold ourselves to at the highest level. The mean is the geometric mean of the ratios of the
# operations that `operations` matches; a floor is for the mean of each operation, or for each size.
# `sizes` narrows an aim to the sizes that it matches, `peers` to the peers.
Aim = namedtuple("Aim", "family operations mean floor floor_of sizes peers",
                 defaults=(None, None, ".*", ".*"))
FRAME_SIZES = r".* to (1280x720|3840x2160|480x270)$"
AIMS = [
    Aim("memory", ".*", 1.0, 0.85, "size", peers="w?mem(cpy|set)"),
    Aim("arithmetic", "zovs(?!Phase)", 1.1, 0.95, "operation"),
    Aim("search", "zovsFind", 2.0, 1.0, "operation", peers="plain loop"),
    Aim("search", "zovs(Threshold|ReplaceC)", 1.0, 1.0, "operation", peers="plain loop"),
    Aim("resize", "8u C1 (nearest|linear)", 3.0, 1.5, "size", FRAME_SIZES),
    Aim("resize", "8u C4 (nearest|linear)", 1.5, 1.0, "size", FRAME_SIZES),
    Aim("resize", "32f C1 (nearest|linear)", 1.5, 1.0, "size", FRAME_SIZES),
    Aim("resize", "(8u|32f) C1 (cubic|B-spline|Catmull-Rom|mixed cubic|Lanczos)", 1.2, 0.8, "size"),
    Aim("resize", "8u C4 (cubic|B-spline|Catmull-Rom|mixed cubic|Lanczos)", 4.0, 2.0, "size"),
    Aim("resize", "area", 2.0, 1.0, "size"),
    Aim("resize", ".* antialiased", 1.0, 0.6, "size"),
    *(Aim("fft", f"{type} {direction}", mean, 1.0, "size", sizes)
      for type in ("32f", "64f") for direction in ("forward", "inverse")
      for mean, sizes in ((1.4, r"2\^([4-9]|1[0-5])$"), (1.1, r"2\^(1[6-9]|2[0-2])$"))),
    Aim("fft", ".*", 1.0, 1.0, "size"),
    Aim("conversion", ".*", 1.2, 0.95, "operation"),
    Aim("statistics", ".*", 1.2, 0.95, "operation"),
    Aim("fir", "32f direct", 1.6, 1.2, "size"),
    Aim("fir", "32f by FFT", 1.3, 1.0, "size"),
    Aim("fir", "64f.* direct", 1.6, 1.2, "size"),
    Aim("vm", ".*_A11", 2.0, 1.2, "operation"),
    Aim("vm", ".*_A21", 1.3, 1.0, "operation"),
    Aim("vm", ".*_A24", 1.5, 1.0, "operation"),
    Aim("elementary", "zovs(Ln|Exp)", 1.3, 1.0, "operation"),
    Aim("integer", ".*", 1.1, 0.95, "operation"),
]
HIGHEST_LEVEL = 6
LEAST_STEP = 0.95  # a level against the one below

Figure = namedtuple("Figure", "role name ns")


class Case:
    def __init__(self, run):
        self.family, self.operation, self.size = run["name"].split("/")[:3]
        self.unit = run["label"]
        self.work = run["work"]
        self.figures = []
        for key, value in run.items():
            role, colon, name = key.partition(":")
            if colon and role in ("ours", "peer", "unheld", "level"):
                self.figures.append(Figure(role, name, value))

    def of(self, role):
        return [figure for figure in self.figures if figure.role == role]

    def best(self, role):
        return min(self.of(role), key=lambda figure: figure.ns, default=None)

    def throughput(self, figure):
        """In the case's unit: work a nanosecond is giga, times 1000 is mega."""
        return self.work / figure.ns * (1 if self.unit.startswith("G") else 1000)

    def ratio_to(self, peers):
        names = re.compile(peers)
        best = min(figure.ns for figure in self.of("peer") if names.match(figure.name))
        return best / self.best("ours").ns

    @property
    def ratio(self):
        return self.ratio_to(".*")


def geometric_mean(values):
    return math.exp(sum(map(math.log, values)) / len(values))


def three_digits(value):
    digits = max(0, 2 - math.floor(math.log10(value))) if value > 0 else 0
    return f"{value:.{digits}f}"


def print_table(head, rows, right=()):
    """A table that reads as text and as Markdown."""
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]
    cells = [str.rjust if name in right else str.ljust for name in head]
    rule = [("-" * (w - 1) + ":") if name in right else "-" * w for name, w in zip(head, widths)]
    for row in [head, rule, *rows]:
        print("| " + " | ".join(f(c, w) for f, c, w in zip(cells, row, widths)) + " |")
    print()


def by_operation(cases):
    operations = {}
    for case in cases:
        operations.setdefault(case.operation, []).append(case)
    return operations


def print_entry(cases):
    rows = []
    for case in cases:
        entry, direct = case.best("ours").ns, case.best("peer").ns
        rows.append([case.operation, case.size, f"{direct:.2f}", f"{entry:.2f}",
                     f"{entry - direct:.2f}"])
    head = ["operation", "size", "level routine, ns", "through the entry, ns", "difference, ns"]
    print_table(head, rows, right=head[2:])


def print_family(family, cases, level, brief):
    unit = cases[0].unit
    with_unheld = any(case.of("unheld") for case in cases)
    # A rate of operations by the usual count needs the plain time beside it.
    with_time = unit == "GFLOP/s"
    head = ["operation", "size", f"KeloZov {unit}", "best peer", f"peer {unit}", "ratio"]
    if with_time:
        head.insert(2, "KeloZov ns")
    head += [f"unheld peer {unit}"] * with_unheld
    rows = []
    for case in cases:
        ours, peer, unheld = case.best("ours"), case.best("peer"), case.best("unheld")
        row = [case.operation, case.size, *([three_digits(ours.ns)] * with_time)]
        row += [three_digits(case.throughput(ours))]
        row += ([peer.name, three_digits(case.throughput(peer)), f"{case.ratio:.2f}"] if peer
                else ["none", "", ""])
        if with_unheld:
            row.append(f"{unheld.name} {three_digits(case.throughput(unheld))}" if unheld else "")
        rows.append(row)
    if not brief:
        print_table(head, rows, right=["KeloZov ns", f"KeloZov {unit}", f"peer {unit}", "ratio"])

    cases = [case for case in cases if case.of("peer")]
    if not cases:
        return
    means, rows = {}, []
    for operation, members in by_operation(cases).items():
        means[operation] = geometric_mean([case.ratio for case in members])
        worst = min(members, key=lambda case: case.ratio)
        fastest = max(members, key=lambda case: case.throughput(case.best("ours")))
        rows.append([operation, three_digits(fastest.throughput(fastest.best("ours"))),
                     f"{means[operation]:.2f}", f"{worst.ratio:.2f}", worst.size,
                     worst.best("peer").name])
    head = ["operation", f"best {unit}", "mean ratio", "lowest ratio", "at", "against"]
    print_table(head, rows, right=head[1:4])

    worst = min(cases, key=lambda case: case.ratio)
    mean = geometric_mean([case.ratio for case in cases])
    print(f"{family}: mean ratio {mean:.2f}; lowest {worst.ratio:.2f} "
          f"({worst.operation}, {worst.size}, against {worst.best('peer').name})")
    if level == HIGHEST_LEVEL:
        for aim in AIMS:
            print_aim(aim, family, cases)
    print()


def print_aim(aim, family, cases):
    """Whether an aim of this family and its floor hold."""
    matching = [case for case in cases
                if re.match(aim.operations, case.operation) and re.match(aim.sizes, case.size)]
    if aim.family != family or not matching:
        return
    verdict = lambda holds: "holds" if holds else "MISSED"
    mean = geometric_mean([case.ratio_to(aim.peers) for case in matching])
    of = "" if aim.operations == ".*" else f" for {aim.operations}"
    of += "" if aim.sizes == ".*" else f" {matching[0].size} to {matching[-1].size}"
    of += "" if aim.peers == ".*" else f" against {aim.peers}"
    text = f"aim{of}: mean {aim.mean:.2f}: {verdict(mean >= aim.mean)} with {mean:.2f}"
    if aim.floor is not None:
        if aim.floor_of == "size":
            each = {f"{case.operation}, {case.size}": case.ratio_to(aim.peers)
                    for case in matching}
        else:
            each = {operation: geometric_mean([case.ratio_to(aim.peers) for case in members])
                    for operation, members in by_operation(matching).items()}
        lowest = min(each, key=each.get)
        text += (f"; no {aim.floor_of} below {aim.floor:.2f}: "
                 f"{verdict(each[lowest] >= aim.floor)} with {each[lowest]:.2f} ({lowest})")
        below = sorted(name for name, ratio in each.items() if ratio < aim.floor and name != lowest)
        if below:
            text += "; also below: " + "; ".join(f"{name} {each[name]:.2f}" for name in below)
    print(text)


def print_levels(family, cases, brief):
    """Each level's speed over that of the level below it."""
    levels = [figure.name for figure in cases[0].of("level")]
    unit = cases[0].unit
    head = ["operation", "size", f"{levels[0]} {unit}"] + levels[1:] + [f"{levels[-1]} {unit}"]
    rows, below, lowest = [], [], {}
    for operation, members in by_operation(cases).items():
        steps = []
        for case in members:
            ns = [figure.ns for figure in case.of("level")]
            steps.append([ns[i] / ns[i + 1] for i in range(len(ns) - 1)])
            first, last = case.of("level")[0], case.of("level")[-1]
            if not brief:
                rows.append([operation, case.size, three_digits(case.throughput(first))]
                            + [f"{step:.2f}" for step in steps[-1]]
                            + [three_digits(case.throughput(last))])
        means = [geometric_mean(column) for column in zip(*steps)]
        rows.append([operation, "mean", ""] + [f"{mean:.2f}" for mean in means] + [""])
        lowest[operation] = min(means, default=1)
        below += [f"{operation} at {level}: {mean:.2f}"
                  for level, mean in zip(levels[1:], means) if mean < LEAST_STEP]
    print_table(head, rows, right=head[2:])
    operation = min(lowest, key=lowest.get)
    print(f"{family}: lowest mean step {lowest[operation]:.2f} ({operation}); every level at least "
          f"{LEAST_STEP} of the one below: " + ("MISSED by " + "; ".join(below) if below else "holds"))
    print()


def write_csv(path, cases, level):
    with open(path, "w", newline="") as file:
        out = csv.writer(file)
        out.writerow(["family", "operation", "size", "level", "role", "name", "ns_per_call",
                      "throughput", "unit", "ratio_of_kelozov"])
        for case in cases:
            ours = case.best("ours")
            for figure in case.figures:
                own_level = figure.name if figure.role == "level" else level
                ratio = f"{figure.ns / ours.ns:.4f}" if ours else ""
                out.writerow([case.family, case.operation, case.size, own_level, figure.role,
                              figure.name, f"{figure.ns:.3f}",
                              f"{case.throughput(figure):.5g}", case.unit, ratio])


def print_context(context):
    """When and where, with the load of the machine, which tells how far to trust the figures."""
    cpu = {}
    with open("/proc/cpuinfo") as file:
        for line in file:
            key, _, value = line.partition(":")
            cpu.setdefault(key.strip(), value.strip())
    load = ", ".join(f"{value:.1f}" for value in context["load_avg"])
    print(f"{context['date']}; {cpu.get('model name')}, family {cpu.get('cpu family')} model "
          f"{cpu.get('model')}, {context['num_cpus']} processors, load {load}")
    print(f"level {context['level']}; peers: {context['peers'] or 'none'}; "
          f"missing: {context['peers_missing'] or 'none'}\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("result")
    parser.add_argument("--csv")
    parser.add_argument("--brief", action="store_true", help="one row for each operation")
    options = parser.parse_args()
    with open(options.result) as file:
        result = json.load(file)
    context = result["context"]
    cases = [Case(run) for run in result["benchmarks"]]
    if not cases:
        raise SystemExit("no case matches")
    level = int(context["level"])
    print_context(context)
    families = {}
    for case in cases:
        families.setdefault(case.family, []).append(case)
    for family, members in families.items():
        print(f"## {family}\n")
        if members[0].of("level"):
            print_levels(family, members, options.brief)
        elif family == "entry":
            print_entry(members)
        else:
            print_family(family, members, level, options.brief)
    if options.csv:
        write_csv(options.csv, cases, level)


if __name__ == "__main__":
    main()
