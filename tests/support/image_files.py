"""Makes valid and invalid DNG, TIFF and PNG files byte by byte; reads PGM and PNG files."""

import struct
import zlib
from pathlib import Path

BYTE, SHORT, LONG = 1, 3, 4


def pack_samples(rows, bits, order):
    """Packs the samples of each row. Samples of 16 bits have the file's byte order. Smaller samples form a
    bit stream, highest bit first."""
    if bits == 16:
        return b"".join(struct.pack(f"{order}{len(row)}H", *row) for row in rows)
    packed = b""
    for row in rows:
        text = "".join(f"{sample:0{bits}b}" for sample in row)
        text += "0" * (-len(text) % 8)
        packed += int(text, 2).to_bytes(len(text) // 8, "big")
    return packed


def directory(entries, at, order):
    """Makes a TIFF directory for the offset `at` from entries (tag, type, values). Values of more than 4
    bytes follow the directory."""
    entries = sorted(entries)
    behind = at + 2 + 12 * len(entries) + 4
    head, tail = struct.pack(f"{order}H", len(entries)), b""
    for tag, kind, values in entries:
        packed = values if isinstance(values, bytes) else struct.pack(
            f"{order}{len(values)}{'H' if kind == SHORT else 'I'}", *values)
        count = len(values) // 8 if kind in (5, 10) else len(values)
        if len(packed) > 4:
            head += struct.pack(f"{order}HHII", tag, kind, count, behind + len(tail))
            tail += packed + b"\0" * (len(packed) % 2)
        else:
            head += struct.pack(f"{order}HHI", tag, kind, count) + packed.ljust(4, b"\0")
    return head + b"\0" * 4 + tail


def lossless_jpeg(rows, bits, components):
    """Makes a lossless JPEG (SOF3) with interleaved components. Each sample is predicted from the previous
    sample of its component in the row. A component's first sample in a row is predicted from the sample above
    or, in the first row, from the middle level."""
    every = range(components)
    frame = struct.pack(">HBHHB", 8 + 3 * components, bits, len(rows), len(rows[0]) // components, components)
    lengths = [17 * (i == 4) for i in range(16)]
    head = (b"\xff\xd8\xff\xc4" + struct.pack(">HB16B17B", 36, 0, *lengths, *range(17))
            + b"\xff\xc3" + frame + b"".join(bytes([i, 0x11, 0]) for i in every)
            + b"\xff\xda" + struct.pack(">HB", 6 + 2 * components, components)
            + b"".join(bytes([i, 0]) for i in every) + b"\1\0\0")
    text = []
    for y, row in enumerate(rows):
        for x, sample in enumerate(row):
            first = rows[y - 1][x] if y else 1 << bits - 1
            step = (sample - (row[x - components] if x >= components else first) + 32768) % 65536 - 32768
            size = abs(step).bit_length()
            text.append(f"{size:05b}")
            if 0 < size < 16:
                text.append(f"{step if step > 0 else step + (1 << size) - 1:0{size}b}")
    packed = "".join(text)
    packed += "1" * (-len(packed) % 8)
    return head + int(packed, 2).to_bytes(len(packed) // 8, "big").replace(b"\xff", b"\xff\0") + b"\xff\xd9"


def blocks_of(rows, rows_per_strip, tile):
    if tile is None:
        return [rows[top:top + rows_per_strip] for top in range(0, len(rows), rows_per_strip)]
    width, height = tile
    blocks = []
    for top in range(0, len(rows), height):
        for left in range(0, len(rows[0]), width):
            block = [(row[left:left + width] + [0] * width)[:width] for row in rows[top:top + height]]
            blocks.append(block + [[0] * width] * (height - len(block)))
    return blocks


RED_FIRST = [(33421, SHORT, [2, 2]), (33422, BYTE, bytes([0, 1, 1, 2]))]


def dng(rows, bits=16, big_endian=False, white=None, rows_per_strip=None, tile=None, compression=1,
        components=0, thumbnail=False, strips=None, backwards=False, photometric=32803, pattern=None,
        extra=()):
    """Makes a DNG file. `components` is the number of components of a lossless JPEG, or 0 without JPEG. With
    `thumbnail`, the raw image is in a subdirectory. `strips` limits the number of strips or tiles;
    `backwards` stores them in reverse order."""
    order = ">" if big_endian else "<"
    compression = 7 if components else compression
    rows_per_strip = rows_per_strip or len(rows)
    blocks = [lossless_jpeg(block, bits, components) if components else pack_samples(block, bits, order)
              for block in blocks_of(rows, rows_per_strip, tile)][:strips]
    version = [(50706, BYTE, bytes([1, 4, 0, 0]))]

    def raw(offsets):
        entries = [(256, LONG, [len(rows[0])]), (257, LONG, [len(rows)]), (258, SHORT, [bits]),
                   (259, SHORT, [compression]), (262, SHORT, [photometric]), (277, SHORT, [1]),
                   *(RED_FIRST if pattern is None else pattern), *extra]
        if white:
            entries.append((0xC61D, SHORT, [white]))
        if tile:
            return entries + [(322, LONG, [tile[0]]), (323, LONG, [tile[1]]), (324, LONG, offsets)]
        return entries + [(273, LONG, offsets), (278, LONG, [rows_per_strip]),
                          (279, LONG, [len(block) for block in blocks])]

    def headers(offsets):
        if not thumbnail:
            return directory(raw(offsets) + version, 8, order)
        first = [(256, LONG, [1]), (257, LONG, [1]), (262, SHORT, [2]), (330, LONG, [100])] + version
        return directory(first, 8, order).ljust(92, b"\0") + directory(raw(offsets), 100, order)

    start = 8 + len(headers([0] * len(blocks)))
    offsets = [start + sum(len(b) for b in (blocks[i + 1:] if backwards else blocks[:i]))
               for i in range(len(blocks))]
    mark = struct.pack(f"{order}2sHI", b"MM" if big_endian else b"II", 42, 8)
    return mark + headers(offsets) + b"".join(blocks[::-1] if backwards else blocks)


def tiff(rows):
    """Makes a grey TIFF file with 16 bits per sample."""
    return dng(rows, photometric=1)


def png(rows, bits):
    """Makes a grey PNG file."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    lines = b"".join(b"\0" + pack_samples([row], bits, ">") for row in rows)
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), bits, 0, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines))
            + chunk(b"IEND", b""))


def read_pgm(path):
    """Returns the samples of a PGM file with two bytes per sample; None if the file is missing."""
    if not Path(path).exists():
        return None
    _, size, _, data = Path(path).read_bytes().split(b"\n", 3)
    width, height = map(int, size.split())
    samples = struct.unpack(f">{width * height}H", data)
    return [list(samples[i:i + width]) for i in range(0, len(samples), width)]


def read_png(data):
    """Returns the rows of an RGB PNG file with 8 bits per sample. Each row is a list of samples."""
    width, height = struct.unpack(">II", data[16:24])
    at, packed = 8, b""
    while at < len(data):
        size, kind = struct.unpack(">I4s", data[at:at + 8])
        packed += data[at + 8:at + 8 + size] if kind == b"IDAT" else b""
        at += size + 12
    lines, rows, above = zlib.decompress(packed), [], [0] * (3 * width)
    for y in range(height):
        line = lines[y * (3 * width + 1):(y + 1) * (3 * width + 1)]
        row = []
        for i, byte in enumerate(line[1:]):
            left, corner = (row[i - 3], above[i - 3]) if i > 2 else (0, 0)
            nearest = min((left, above[i], corner), key=lambda s: abs(left + above[i] - corner - s))
            row.append((byte + (0, left, above[i], (left + above[i]) // 2, nearest)[line[0]]) % 256)
        rows.append(row)
        above = row
    return rows
