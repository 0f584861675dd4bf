"""check_programs.py FILE...

Checks that Windows 7 SP1 and everything newer loads the finished programs and libraries, and treats
them as cmake/TessaryTargets.cmake means it: what their headers say, and that every function that
they import is on the list windows7_imports.txt beside this script. Prints what is amiss; the status
is 0 only when nothing is.
"""

import pathlib
import struct
import sys

IMPORT_LIST = pathlib.Path(__file__).with_name("windows7_imports.txt")
CONSOLE_PROGRAMS = {"tessary-convert.exe"}

I386 = 0x14C
PE32 = 0x10B
RELOCS_STRIPPED, LARGE_ADDRESS_AWARE, MACHINE_32BIT, IS_DLL = 0x1, 0x20, 0x100, 0x2000
DYNAMIC_BASE, NX_COMPAT = 0x40, 0x100
WINDOWS_SUBSYSTEM, CONSOLE_SUBSYSTEM = 2, 3
IMPORTS, DELAYED_IMPORTS = 1, 13
BY_NUMBER = 0x80000000


class BadFile(Exception):
    """The file is not what its headers, or its lack of them, say."""


class Image:
    """A 32-bit PE file."""

    def __init__(self, path):
        self.data = path.read_bytes()
        self.at = self.number("<I", 0x3C)
        if self.data[:2] != b"MZ" or self.data[self.at:self.at + 4] != b"PE\0\0":
            raise BadFile("is no program")
        self.machine = self.number("<H", self.at + 4)
        self.flags = self.number("<H", self.at + 22)
        if self.machine != I386 or self.number("<H", self.at + 24) != PE32:
            raise BadFile("is not of the 32-bit machine")

    def number(self, form, offset):
        try:
            return struct.unpack_from(form, self.data, offset)[0]
        except struct.error:
            raise BadFile("ends too early") from None

    def optional(self, form, offset):
        return self.number(form, self.at + 24 + offset)

    def version(self, offset):
        return f"{self.optional('<H', offset)}.{self.optional('<H', offset + 2)}"

    def position(self, address):
        """Where in the file that stands which is loaded to an address."""
        sections = self.at + 24 + self.number("<H", self.at + 20)
        for index in range(self.number("<H", self.at + 6)):
            header = sections + 40 * index
            start, size, offset = (self.number("<I", header + field) for field in (12, 16, 20))
            if start <= address < start + size:
                return address - start + offset
        if address < self.optional("<I", 60):  # the headers themselves
            return address
        raise BadFile(f"points to {address:#x}, where nothing is")

    def text(self, address):
        start = self.position(address)
        end = self.data.find(b"\0", start)
        return self.data[start:end].decode("ascii", "replace")

    def descriptors(self, directory, size):
        """The records of a directory up to the one that is all zero."""
        address = self.optional("<I", 96 + 8 * directory)
        while address:
            at = self.position(address)
            record = [self.number("<I", at + 4 * field) for field in range(size // 4)]
            if not any(record):
                return
            yield record
            address += size

    def imports(self):
        """Pairs of DLL and function; of one that is imported by its number, `#` and that."""
        for record in self.descriptors(IMPORTS, 20):
            yield from self.functions(record[3], record[0] or record[4])
        for record in self.descriptors(DELAYED_IMPORTS, 32):
            yield from self.functions(record[1], record[4])

    def functions(self, name, table):
        library = self.text(name).lower()
        while True:
            entry = self.number("<I", self.position(table))
            if not entry:
                return
            yield library, f"#{entry & 0xFFFF}" if entry & BY_NUMBER else self.text(entry + 2)
            table += 4


def known_functions():
    """For each DLL of the list its functions."""
    known, library = {}, None
    for line in IMPORT_LIST.read_text(encoding="ascii").splitlines():
        words = line.partition("#")[0].split()
        if words and words[0].startswith("["):
            library = words.pop(0).strip("[]")
            known[library] = set()
        elif words and words[0] in ("XP:", "Vista:", "7:"):
            words.pop(0)
        if any(word.endswith(":") for word in words):
            sys.exit(f"error: {IMPORT_LIST}: no version of Windows that we know: {line}")
        if words:
            known[library].update(words)
    return known


def header_troubles(image, is_program, name):
    expected = {
        "system version": ("4.0", image.version(40)),
        "subsystem version": ("4.0", image.version(48)),
        "kind": ("program" if is_program else "DLL", "DLL" if image.flags & IS_DLL else "program"),
        "DLL characteristics": (hex(DYNAMIC_BASE if is_program else DYNAMIC_BASE | NX_COMPAT),
                                hex(image.optional("<H", 70))),
        "relocations": ("kept", "stripped" if image.flags & RELOCS_STRIPPED else "kept"),
        "flag of the 32-bit machine": (True, bool(image.flags & MACHINE_32BIT)),
    }
    if is_program:
        expected["subsystem"] = (
            CONSOLE_SUBSYSTEM if name in CONSOLE_PROGRAMS else WINDOWS_SUBSYSTEM,
            image.optional("<H", 68))
        expected["large addresses"] = (True, bool(image.flags & LARGE_ADDRESS_AWARE))
        expected["manifest that names the versions of Windows"] = (
            True, b"<supportedOS " in image.data)
    for what, (wanted, found) in expected.items():
        if wanted != found:
            yield f"{what}: {found} instead of {wanted}"


def import_troubles(image, known):
    for library, function in image.imports():
        if library not in known:
            yield (f"imports {function} of {library}, which is not on the list: another file of "
                   "that name beside the program could take its place")
        elif function not in known[library]:
            yield f"imports {function} of {library}, which is not on the list"


def troubles(path, known):
    try:
        image = Image(path)
        yield from header_troubles(image, path.suffix == ".exe", path.name)
        yield from import_troubles(image, known)
    except BadFile as error:
        yield str(error)


def main(*paths):
    known = known_functions()
    found = [f"error: {path}: {trouble}"
             for path in map(pathlib.Path, paths) for trouble in troubles(path, known)]
    if found:
        sys.exit("\n".join(found) + f"\nThe list is {IMPORT_LIST}.")
    if not paths:
        sys.exit("error: no files to check")


main(*sys.argv[1:])
