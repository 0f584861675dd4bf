"""The list of faults, and where each of them goes in the code.

A text is found whatever its line breaks and indentation, in the file that the list names, or in
whichever other one has it, and exactly once.
"""

import dataclasses
import difflib
import pathlib
import re
import tomllib

LIST = pathlib.Path(__file__).with_name("faults.toml")
FOLDERS = ("src", "helpers", "plugins")


@dataclasses.dataclass(frozen=True)
class Fault:
    name: str
    room: str
    file: str   # where `text` was when it was put in the list
    harm: str   # what the user would see
    text: str   # of the code; «…» is what becomes wrong, all of it where there are no such marks
    wrong: str  # in its place; with FAULT, it stands for both and FAULT tells which
    hole: bool = False  # no test is known to catch it


@dataclasses.dataclass(frozen=True)
class Place:
    number: int  # by which the fault is switched on
    file: str
    start: int
    end: int
    replacement: str


def read():
    entries = tomllib.loads(LIST.read_text(encoding="utf-8"))["fault"]
    faults = [Fault(**entry) for entry in entries]
    names = [fault.name for fault in faults]
    assert len(set(names)) == len(names), "two faults of one name"
    return faults


def sources(root):
    """The text of each file that may get a fault, by its path below the root."""
    return {path.relative_to(root).as_posix(): path.read_text(encoding="utf-8")
            for folder in FOLDERS for path in sorted((root / folder).rglob("*"))
            if path.suffix in (".cpp", ".h")}


def pattern(text):
    """A fault's text as an expression whose group 1 is what becomes wrong."""
    before, mark, rest = text.partition("«")
    wrong, _, after = rest.partition("»") if mark else (before, "", "")
    parts = [r"\s+".join(map(re.escape, part.split())) for part in (before if mark else "", wrong, after)]
    # Blanks beside a mark are as free as all others.
    gap_before = r"\s+" if mark and before[-1:].isspace() else r"\s*"
    gap_after = r"\s+" if after[:1].isspace() else r"\s*"
    return re.compile(f"{parts[0]}{gap_before}({parts[1]}){gap_after}{parts[2]}")


def matches(fault, sources):
    """(file, match) of each place that has the text: those of the named file when it has any."""
    expression = pattern(fault.text)
    found = [(fault.file, match) for match in expression.finditer(sources.get(fault.file, ""))]
    return found or [(file, match) for file, text in sources.items()
                     for match in expression.finditer(text)]


def replacement(fault, number, right):
    condition = f"FaultIs({number})"
    if "FAULT" in fault.wrong:
        return fault.wrong.replace("FAULT", condition)
    if right.endswith((";", "}")):
        return f"{{ if ({condition}) {{ {fault.wrong} }} else {{ {right} }} }}"
    return f"({condition} ? ({fault.wrong}) : ({right}))"


def place(faults, sources):
    """By fault, its place; those whose text is not there exactly once have none."""
    placed = {}
    for number, fault in enumerate(faults, 1):
        found = matches(fault, sources)
        if len(found) == 1:
            file, match = found[0]
            placed[fault] = Place(number, file, *match.span(1), replacement(fault, number, match[1]))
    return placed


def complaints(faults, placed, sources):
    """What has to be mended in the list, one line each."""
    for fault in faults:
        if fault in placed:
            if placed[fault].file != fault.file:
                yield f"{fault.name}: moved from {fault.file} to {placed[fault].file}"
        elif found := matches(fault, sources):
            yield f"{fault.name}: its text is there {len(found)} times, in {found[0][0]} and …"
        else:
            yield f"{fault.name}: its text is gone from {fault.file}; like it is: {nearest(fault, sources)}"


def nearest(fault, sources):
    line = next(line for line in fault.text.splitlines() if "«" in line or "«" not in fault.text)
    line = re.sub("[«»]", "", line).strip()
    lines = {}
    for file, text in sources.items():
        for number, candidate in enumerate(text.splitlines(), 1):
            lines.setdefault(candidate.strip(), f"{file}:{number}")
    close = difflib.get_close_matches(line, lines, n=1, cutoff=0.5)
    return f"{lines[close[0]]}: {close[0]}" if close else "nothing"
