"""make_zip.py FOLDER SECONDS ZIP

Packs everything in FOLDER, under its own name, into ZIP. Equal folders give equal bytes: the files
go in the order of their names, all are dated SECONDS after 1970 (in universal time), and nothing
of this machine, its users or their rights is kept. Names beyond ASCII are refused: the Explorer of
Windows 7 unpacks them wrong wherever its code page is not the archive's.
"""

import os
import pathlib
import sys
import time
import zipfile

FAT = 0  # a file system without users and rights
ARCHIVE_BIT = 0x20
FIRST_DATE = (1980, 1, 1, 0, 0, 0)


def main(folder, seconds, target):
    folder = pathlib.Path(folder)
    date = max(time.gmtime(int(seconds))[:6], FIRST_DATE)
    files = {path.relative_to(folder.parent).as_posix(): path
             for path in folder.rglob("*") if path.is_file()}
    unfinished = target + ".part"
    with zipfile.ZipFile(unfinished, "w") as archive:
        for name in sorted(files):
            if not name.isascii():
                sys.exit(f"error: not every Windows can unpack the name {name}")
            entry = zipfile.ZipInfo(name, date)
            entry.create_system = FAT
            entry.external_attr = ARCHIVE_BIT
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, files[name].read_bytes(), compresslevel=9)
    os.replace(unfinished, target)


main(*sys.argv[1:])
