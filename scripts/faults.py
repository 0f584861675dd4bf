#!/usr/bin/env -S python3 -B
"""faults.py [OPTION…] [FAULT…]

Puts the faults of scripts/lib/faults.toml, or those that are named, into a copy of the code, one at a
time, and tells which tests catch them. Whoever shortens tests runs it before and after.

--check           Only tells which faults' texts are no longer found in the code, or only elsewhere.
--output FILE     Where the table goes (build/faults/table.txt).
--compare TABLE   Tells at the end what was caught in that earlier table and no longer is.
--preset PRESET   x86 or native only; else both.
--jobs N          How many programs run at a time, each in a Wine environment of its own (2).
--enough N        How many test programs have to notice a fault before the next fault's turn comes (1).

The copy is build/faults/tree. All faults are built into it at once, and switched on at run time by
the environment variable TESSARY_FAULT. A first run without any fault notes which tests come to which
fault; each is then tried with these tests only, of the quickest program first. What fails is run
once more with the fault and once without: it counts only when it fails with it alone. The status is
0 when every fault was tried, and none was lost that --compare knows as caught. Needs what
scripts/test.sh has installed and built.
"""

import argparse
import functools
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "lib"))

import fault_build  # noqa: E402
import fault_list  # noqa: E402
import fault_runs  # noqa: E402
import fault_table  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "faults"


def chosen(faults, names):
    unknown = set(names) - {fault.name for fault in faults}
    if unknown:
        sys.exit(f"error: the list has no {', '.join(sorted(unknown))}")
    return [fault for fault in faults if not names or fault.name in names]


def run_faulty(placed, calm_runs, enough, runner, fault):
    """None when the fault's text is gone."""
    if fault not in placed:
        return None
    return list(runner.run_faulty(placed[fault].number, calm_runs, enough))


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("faults", nargs="*")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--output", type=pathlib.Path, default=WORK / "table.txt")
    parser.add_argument("--compare", type=pathlib.Path)
    parser.add_argument("--preset", choices=["x86", "native"])
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--enough", type=int, default=1)
    options = parser.parse_args()

    sources = fault_list.sources(ROOT)
    faults = fault_list.read()
    placed = fault_list.place(faults, sources)  # all: what is built stays the same
    faults = chosen(faults, options.faults)
    for complaint in fault_list.complaints(faults, placed, sources):
        print(complaint, file=sys.stderr)
    lacking = any(fault not in placed for fault in faults)
    if options.check:
        return lacking

    presets = [options.preset] if options.preset else ["x86", "native"]
    fault_build.make_tree(ROOT, WORK, placed)
    programs = [program for preset in presets for program in fault_build.build(WORK, preset)]
    table = fault_table.Table(options.output, faults)
    with fault_runs.Crew(WORK, options.jobs) as crew:
        calm_runs = []
        for calm in crew.do(lambda runner, program: runner.run_calm(program), programs):
            calm_runs.append(calm)
            table.write_calm(calm)
        try_one = functools.partial(run_faulty, placed, calm_runs, options.enough)
        for fault, results in zip(faults, crew.do(try_one, faults)):
            if results is None:
                table.write_head(fault, "TEXT GONE")
            else:
                table.write(fault, results)
    table.write_end()
    lost = table.lost(options.compare) if options.compare else []
    for name in lost:
        table.line(f"lost: {name}")
    return bool(lost) or lacking


sys.exit(main())
