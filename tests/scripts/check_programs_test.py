"""check_programs_test.py CHECK PROGRAM LIBRARY

Spoils copies of a finished program and a finished library in one way at a time: CHECK must pass the
files as they are and must name what is wrong with each copy.
"""

import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

CHECK, PROGRAM, LIBRARY = map(pathlib.Path, sys.argv[1:])


class Copy:
    def __init__(self, path):
        self.name = path.name
        self.data = bytearray(path.read_bytes())
        self.header = struct.unpack_from("<I", self.data, 0x3C)[0]

    def at(self, offset):
        """A place of the optional header."""
        return self.header + 24 + offset

    def put(self, form, offset, value):
        struct.pack_into(form, self.data, offset, value)

    def flip(self, offset, bits):
        self.put("<H", offset, struct.unpack_from("<H", self.data, offset)[0] ^ bits)

    def replace(self, old, new):
        assert self.data.count(old) > 0 and len(old) == len(new)
        self.data[:] = self.data.replace(old, new)

    def import_by_number(self):
        address = struct.unpack_from("<I", self.data, self.at(96 + 8))[0]
        place = self.file_position(address)
        table = self.file_position(struct.unpack_from("<I", self.data, place)[0])
        self.put("<I", table, 0x80000011)

    def import_later(self):
        """The first DLL's functions once more, as another DLL's, imported at the first call."""
        address = struct.unpack_from("<I", self.data, self.at(96 + 8))[0]
        first = struct.unpack_from("<5I", self.data, self.file_position(address))
        second = struct.unpack_from("<5I", self.data, self.file_position(address) + 20)
        stub = 0x40  # the program that DOS would run: room enough for one record and the last
        assert self.header >= stub + 64
        struct.pack_into("<16I", self.data, stub, 1, second[3], 0, 0, first[0], *[0] * 11)
        struct.pack_into("<2I", self.data, self.at(96 + 8 * 13), stub, 64)

    def file_position(self, address):
        count, sections = (struct.unpack_from("<H", self.data, self.header + field)[0]
                           for field in (6, 20))
        for header in range(self.at(sections), self.at(sections) + 40 * count, 40):
            start, size, offset = struct.unpack_from("<3I", self.data, header + 12)
            if start <= address < start + size:
                return address - start + offset
        raise AssertionError(hex(address))


def said_of(copy):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, copy.name)
        path.write_bytes(copy.data)
        run = subprocess.run([sys.executable, "-I", "-B", CHECK, path], capture_output=True, text=True)
        return run.returncode, run.stderr


SPOILS = {
    "32-bit machine": [lambda copy: copy.put("<H", copy.header + 4, 0x8664),
                       lambda copy: copy.put("<H", copy.at(0), 0x20B)],
    "kind": [lambda copy: copy.flip(copy.header + 22, 0x2000)],
    "relocations": [lambda copy: copy.flip(copy.header + 22, 0x1)],
    "flag of the 32-bit machine": [lambda copy: copy.flip(copy.header + 22, 0x100)],
    "DLL characteristics": [  # random addresses and their entropy, data pages, handlers, sessions
        lambda copy, bit=bit: copy.flip(copy.at(70), bit) for bit in (0x40, 0x20, 0x100, 0x400, 0x8000)],
    "system version": [lambda copy: copy.put("<H", copy.at(40), 6)],
    "subsystem version": [lambda copy: copy.put("<H", copy.at(48), 6),
                          lambda copy: copy.put("<H", copy.at(50), 1)],
    "ClosxHandle of kernel32.dll": [lambda copy: copy.replace(b"CloseHandle\0", b"ClosxHandle\0")],
    "of kexnel32.dll": [lambda copy: copy.replace(b"KERNEL32.dll\0", b"KEXNEL32.dll\0")],
    "imports #17": [Copy.import_by_number],
    "which is not on the list": [Copy.import_later],
    "is no program": [lambda copy: copy.data.__setitem__(slice(0, 2), b"SZ")],
    "ends too early": [lambda copy: copy.data.__delitem__(slice(copy.header + 40, None))],
    "where nothing is": [lambda copy: copy.put("<I", copy.at(96 + 8), 0x7FFF0000)],
}
SPOILS_OF_PROGRAM = {
    "subsystem: 3": [lambda copy: copy.put("<H", copy.at(68), 3)],
    "large addresses": [lambda copy: copy.flip(copy.header + 22, 0x20)],
    "manifest": [lambda copy: copy.replace(b"<supportedOS ", b"<supportedXS ")],
}


class CheckPrograms(unittest.TestCase):
    def test_finished_files_pass(self):
        for path in (PROGRAM, LIBRARY):
            self.assertEqual(said_of(Copy(path)), (0, ""))

    def test_each_fault_is_named(self):
        for path, spoils in ((PROGRAM, SPOILS | SPOILS_OF_PROGRAM), (LIBRARY, SPOILS)):
            for message, ways in spoils.items():
                for way, spoil in enumerate(ways):
                    with self.subTest(file=path.name, message=message, way=way):
                        copy = Copy(path)
                        spoil(copy)
                        status, said = said_of(copy)
                        self.assertEqual(status, 1)
                        self.assertIn(message, said)
                        self.assertNotIn("Traceback", said)


unittest.main(argv=sys.argv[:1])
