"""The table: which tests have caught which fault."""

import re


class Table:
    """Written as it grows, to a file and to the standard output."""

    def __init__(self, path, faults):
        path.parent.mkdir(parents=True, exist_ok=True)
        self.file = path.open("w", encoding="utf-8")
        self.width = max(len(fault.name) for fault in faults)
        self.caught = set()
        self.missed = set()

    def line(self, text=""):
        print(text, flush=True)
        print(text, file=self.file, flush=True)

    def write_calm(self, calm):
        trouble = f"; FAILS BY ITSELF: {', '.join(calm.failed)}" if calm.failed else ""
        self.line(f"# {calm.program.preset} {calm.program.name}: {calm.seconds:.0f} s, comes to "
                  f"{len(calm.reached)} faults{trouble}")

    def write_head(self, fault, told):
        self.line(f"{fault.name:{self.width}}  {fault.room:17} {told}")

    def write(self, fault, results):
        results = list(results)
        count = sum(len(result.failed) for result in results)
        (self.caught if count else self.missed).add(fault.name)
        hole = " (a known hole)" if fault.hole else ""
        self.write_head(fault, f"caught by {count}" if count else f"NOT CAUGHT{hole}")
        for result in results:
            program = f"    {result.program.preset} {result.program.name}"
            if result.failed:
                self.line(f"{program}: {', '.join(result.failed)}")
            elif not count:
                tests = f"{result.tests} tests" if result.tests else "all tests"
                self.line(f"{program}: {tests} came to it")
            if result.doubtful:
                self.line(f"{program}: doubtful {', '.join(result.doubtful)}")
        if not results:
            self.line("    no test came to it")

    def write_end(self):
        self.line()
        self.line(f"{len(self.caught)} caught, {len(self.missed)} not")

    def lost(self, earlier):
        """What the table `earlier` has as caught and this one as not caught."""
        text = earlier.read_text(encoding="utf-8")
        before = set(re.findall(r"^([\w-]+) .* caught by \d+$", text, re.M))
        return sorted(before & self.missed)
