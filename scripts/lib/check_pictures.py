"""check_pictures.py FOLDER CONVERTED

Compares the bitmaps that check_pictures.sh has made in the folders png, bmp and photos of CONVERTED
with the pictures in FOLDER. Prints what differs; the status is 0 only when nothing does.
"""

import pathlib
import struct
import sys


class Bitmap:
    """The rows of a bitmap file, from the top: of each pixel blue, green, red and alpha."""

    def __init__(self, path):
        data = path.read_bytes()
        start, header = struct.unpack_from("<II", data, 10)
        self.width, height, _, bits = struct.unpack_from("<iiHH", data, 18)
        (used,) = struct.unpack_from("<I", data, 46)
        self.height = abs(height)
        table = 14 + header
        palette = [
            (*data[table + 4 * i : table + 4 * i + 3], 255)
            for i in range((used or 1 << bits) if bits <= 8 else 0)
        ]
        stride = (self.width * bits + 31) // 32 * 4
        self.rows = []
        for y in range(self.height):
            row = data[start + y * stride : start + (y + 1) * stride]
            self.rows.append([self._pixel(row, x, bits, palette) for x in range(self.width)])
        if height > 0:
            self.rows.reverse()

    @staticmethod
    def _pixel(row, x, bits, palette):
        if bits <= 8:
            index = row[x * bits // 8] >> (8 - bits - x * bits % 8) & ((1 << bits) - 1)
            return palette[index]
        size = bits // 8
        return (*row[x * size : x * size + 3], row[x * size + 3] if size == 4 else 255)


def on_white(pixel):
    """What is seen of a pixel on white."""
    alpha = pixel[3]
    return [(c * alpha + 255 * (255 - alpha)) / 255 for c in pixel[:3]]


def without_alpha(pixel):
    return pixel[:3]


def worst_difference(actual, expected, seen, opaque_only):
    """The largest one of a channel of the pixels as they are `seen`."""
    if (actual.width, actual.height) != (expected.width, expected.height):
        return 256
    worst = 0
    for row, expected_row in zip(actual.rows, expected.rows):
        for pixel, wanted in zip(row, expected_row):
            if wanted[3] == 255 or not opaque_only:
                worst = max(worst, *(abs(a - b) for a, b in zip(seen(pixel), seen(wanted))))
    return worst


def edge_levels(bitmap):
    """The mean green of each tenth of the height, in the left quarter."""
    height, width = bitmap.height // 10, bitmap.width // 4
    return [
        sum(
            bitmap.rows[tenth * height + y][x][1] for y in range(height) for x in range(width)
        )
        / (height * width)
        for tenth in range(10)
    ]


def check_suite(suite, converted):
    """PNG files show what the bitmaps do: on white, or, with a background of their own, where they
    are opaque. The bitmaps show their colours without alpha."""
    for source in sorted((suite / "png").glob("*.png")):
        if source.name.startswith("x"):  # damaged on purpose
            continue
        expected = Bitmap(suite / "bmp" / (source.stem + ".bmp"))
        has_background = b"bKGD" in source.read_bytes()
        for kind, seen, opaque_only in (
            ("png", on_white, has_background),
            ("bmp", without_alpha, False),
        ):
            target = converted / kind / (source.stem + ".bmp")
            if not target.is_file():
                yield f"{kind}/{source.name}: not converted"
                continue
            worst = worst_difference(Bitmap(target), expected, seen, opaque_only)
            if worst > 1:
                yield f"{kind}/{source.name}: differs by {worst}"


def check_rotations(converted):
    """All files of the rotated photo show it upright."""
    upright = edge_levels(Bitmap(converted / "photos" / "rotation-1.bmp"))
    for number in range(2, 9):
        name = f"rotation-{number}.bmp"
        levels = edge_levels(Bitmap(converted / "photos" / name))
        if max(abs(a - b) for a, b in zip(levels, upright)) > 12:
            yield f"{name}: not upright"


def main(folder, converted):
    problems = [
        *check_suite(pathlib.Path(folder, "pngsuite"), pathlib.Path(converted)),
        *check_rotations(pathlib.Path(converted)),
    ]
    print("\n".join(problems) or "all pictures look as they should")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
