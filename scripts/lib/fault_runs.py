"""Running the test programs of the copy, with a fault and without."""

import collections
import concurrent.futures
import dataclasses
import os
import pathlib
import queue
import re
import shutil
import signal
import subprocess
import time

SILENT_SECONDS = 90    # a program that tells of no test for so long hangs
LONGEST_FILTER = 8000  # characters
ALL_TESTS = "*"


@dataclasses.dataclass
class Calm:
    """A run of a program without any fault."""
    program: object
    seconds: float
    failed: list   # these are told; they count for nothing where they fail without the fault again
    reached: dict  # by number of a fault, the names of tests that come to it, or patterns of names
    times: dict    # milliseconds of each test

    def cost(self, number):
        """Roughly the milliseconds of the tests that come to a fault."""
        return sum(self.times.get(name, 1000 * self.seconds) for name in self.reached[number])


@dataclasses.dataclass
class Result:
    """What a fault has done to the tests of a program that come to it."""
    program: object
    tests: int    # that come to it; 0: all
    failed: list  # names of tests
    doubtful: list  # that failed once and not again, or without the fault too


class Crew:
    """Several runners that share the work."""

    def __init__(self, work, count):
        self.idle = queue.SimpleQueue()
        for number in range(1, count + 1):
            self.idle.put(Runner(work / f"runner-{number}"))
        self.pool = concurrent.futures.ThreadPoolExecutor(count)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.pool.shutdown(cancel_futures=True)

    def do(self, work, tasks):
        """What `work` makes of each of the tasks with a runner, in their order."""
        def do_one(task):
            runner = self.idle.get()
            try:
                return work(runner, task)
            finally:
                self.idle.put(runner)
        return self.pool.map(do_one, tasks)


class Runner:
    """Runs programs in a Wine environment of its own, which it may end as a whole."""

    def __init__(self, work):
        self.work = work
        self.log = work / "log"
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith("TESSARY_FAULT") and name != "DISPLAY"}
        self.environment["XDG_CACHE_HOME"] = str(work / "cache")
        # The i386 root is shared; only the prefix is our own.
        common = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"))
        shared, own = (cache / "tessary" / "wine-i386" for cache in (common, work / "cache"))
        own.parent.mkdir(parents=True, exist_ok=True)
        if shared.exists() and not own.is_symlink():
            own.symlink_to(shared.resolve())

    def run_calm(self, program):
        trace = self.work / "trace"
        shutil.rmtree(trace, ignore_errors=True)
        trace.mkdir()
        folder = f"Z:{trace}" if program.preset == "x86" else str(trace)
        begin = time.monotonic()
        failed = self.run(program, {"TESSARY_FAULT_TRACE": folder})
        seconds = time.monotonic() - begin
        reached = collections.defaultdict(set)
        for file in trace.iterdir():
            reached[int(file.name.partition("-")[0])].add(file.read_text() or ALL_TESTS)
        times = re.findall(r"\[       OK \] (\S+) \((\d+) ms\)", self.log_text())
        return Calm(program, seconds, failed, reached, {name: int(time) for name, time in times})

    def run_faulty(self, number, calm_runs, enough):
        """One Result after the other, the quickest program first, until `enough` have failed."""
        coming = [calm for calm in calm_runs if number in calm.reached]
        for calm in sorted(coming, key=lambda calm: calm.cost(number)):
            if enough > 0:
                yield (result := self.run_with(number, calm))
                enough -= bool(result.failed)

    def run_with(self, number, calm):
        names = sorted(calm.reached[number])
        if ALL_TESTS in names or len(":".join(names)) > LONGEST_FILTER or is_fuzzer(calm.program):
            names = []
        fault = {"TESSARY_FAULT": str(number)}
        failed = self.run(calm.program, fault, names)
        doubtful = set()
        if any("hung" not in name for name in failed):
            again = sorted({name.split()[0] for name in failed if not name.startswith("(")})
            doubtful = set(failed) - set(self.run(calm.program, fault, again))
            remove_temporary_files(calm.program)
            doubtful |= set(failed) & set(self.run(calm.program, {}, again))
        return Result(calm.program, len(names), [name for name in failed if name not in doubtful],
                      sorted(doubtful))

    def run(self, program, variables, names=()):
        """The names of the tests that failed; with what became of the program where it did not end
        by itself."""
        command = list(program.command)
        if is_fuzzer(program):
            # The same inputs each time, and nothing that an earlier run has found.
            command = [command[0], "-runs=10000", "-max_len=4096", "-seed=1",
                       f"-artifact_prefix={self.work}/", command[-1]]
        elif names:
            command.append(f"--gtest_filter={':'.join(names)}")
        with self.log.open("wb") as output:
            process = subprocess.Popen(
                ["nice", "-n", "10", *command], cwd=program.tree / "build" / program.preset,
                env={**self.environment, **variables}, stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT, start_new_session=True)
            hung = not ends(process, self.log)
        if hung:
            os.killpg(process.pid, signal.SIGKILL)
        if hung or process.returncode:
            if program.preset == "x86":
                self.stop_wine(program.tree)  # what it has left would be in the next one's way
            return failures(self.log_text(),
                            "(the program hung)" if hung else "(the program ended)")
        return []

    def log_text(self):
        """Of the latest run."""
        return self.log.read_text("utf-8", "replace")

    def stop_wine(self, tree):
        subprocess.run([tree / "scripts" / "wine.sh", "--stop"], env=self.environment,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)


def remove_temporary_files(program):
    """What a fault has left in the folder of a program, or of its test."""
    for folder in ("bin", "tests"):
        for file in (program.tree / "build" / program.preset / folder).glob("~*"):
            file.unlink(missing_ok=True)


def is_fuzzer(program):
    return program.name.startswith("fuzz_")


def ends(process, log):
    """Whether the process ends before it is silent for too long."""
    size, since = 0, time.monotonic()
    while time.monotonic() - since < SILENT_SECONDS:
        try:
            process.wait(0.5)
            return True
        except subprocess.TimeoutExpired:
            if log.stat().st_size != size:
                size, since = log.stat().st_size, time.monotonic()
    return False


def failures(text, end):
    """The tests that a log tells as failed, and the one that the program's end was in."""
    def told(mark):
        names = dict.fromkeys(re.findall(rf"\[{mark}\] ([^\s,]*\.[^\s,]+)", text))
        return [name for name in names if "DISABLED_" not in name]  # children of other tests
    failed = told("  FAILED  ")
    unended = [name for name in told(" RUN      ")
               if name not in {*failed, *told("       OK "), *told("  SKIPPED ")}]
    return failed + [f"{name} {end}" for name in unended] or [end]
