"""The copy of the checkout that has all faults in it, each switched off."""

import dataclasses
import json
import pathlib
import shutil
import subprocess

HEADER = "fault_is.h"
HEADER_FROM = pathlib.Path(__file__).with_name(HEADER)


@dataclasses.dataclass(frozen=True)
class Program:
    preset: str
    name: str
    command: tuple  # how ctest starts it
    tree: pathlib.Path


def make_tree(root, work, placed):
    """Copies what Git knows or would take, with the faults; what is the same keeps its time."""
    tree = work / "tree"
    (tree / "build").mkdir(parents=True, exist_ok=True)
    dependencies = tree / "build" / "deps"
    if not dependencies.is_symlink():
        dependencies.symlink_to(root / "build" / "deps")
    listed = subprocess.run(["git", "ls-files", "-coz", "--exclude-standard"], cwd=root, check=True,
                            capture_output=True, text=True).stdout.split("\0")
    files = {name for name in listed if name and (root / name).is_file()}
    for old in tree.rglob("*"):
        name = old.relative_to(tree).as_posix()
        if old.is_file() and name not in files and not name.startswith("build/") and name != HEADER:
            old.unlink()
    for name in files:
        content = (root / name).read_bytes()
        places = sorted((place for place in placed.values() if place.file == name),
                        key=lambda place: place.start)
        write_if_new(tree / name, with_faults(content, places) if places else content)
        shutil.copymode(root / name, tree / name)
    write_if_new(tree / HEADER, HEADER_FROM.read_bytes())


def with_faults(content, places):
    text = content.decode("utf-8")
    parts, at = [f'#include "{HEADER}"\n#line 1\n'], 0
    for place in places:
        assert at <= place.start, f"two faults at one place of {place.file}"
        parts += [text[at:place.start], place.replacement]
        at = place.end
    return "".join([*parts, text[at:]]).encode("utf-8")


def write_if_new(path, content):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def build(work, preset):
    """The test programs and fuzzers of the copy, built, with all that they load."""
    tree = work / "tree"
    trace = tree / "scripts" / "lib" / "fault_trace.cmake"
    subprocess.run(["cmake", "--preset", preset, "--log-level=WARNING",
                    f"-DCMAKE_PROJECT_TessaryViewer_INCLUDE={trace}"],
                   cwd=tree, check=True, stdout=subprocess.DEVNULL)
    targets = subprocess.run(["cmake", "--build", "--preset", preset, "--target", "help"], cwd=tree,
                             check=True, capture_output=True, text=True).stdout
    # Tests without a program of their own look at scripts.
    names = [name for name in tests(tree, preset) if f"\n{name}: phony" in targets]
    subprocess.run(["cmake", "--build", "--preset", preset, "--target", *names], cwd=tree,
                   check=True)
    commands = tests(tree, preset)
    return [Program(preset, name, tuple(commands[name]), tree) for name in names]


def tests(tree, preset):
    """How ctest starts each test, as far as its program is there."""
    listed = subprocess.run(
        ["ctest", "--test-dir", tree / "build" / preset, "--show-only=json-v1"], check=True,
        capture_output=True, text=True).stdout
    return {test["name"]: test.get("command", []) for test in json.loads(listed)["tests"]}
