#!/usr/bin/env python3
"""Makes a large project file for measuring: the trends of a project, repeated.

    repeat_page.py PROJECT COPIES OUTPUT

Adds COPIES copies of the first data page of TchrTrends to a copy of PROJECT. The copies stand in
the table's usage map but in no index: good for timing a whole-table read, and for nothing else.
"""

import struct
import sys

PAGE = 4096
BITS = (PAGE - 4) * 8  # pages that one bitmap page speaks of
TABLE_COLUMN = "TrendVar".encode("utf-16le")  # only TchrTrends has it


def main(project, copies, output):
    with open(project, "rb") as file:
        data = bytearray(file.read())

    def number(form, offset):
        return struct.unpack_from(form, data, offset)[0]

    count = len(data) // PAGE
    table = next(i for i in range(count)
                 if data[i * PAGE] == 2 and TABLE_COLUMN in data[i * PAGE:(i + 1) * PAGE])
    pages = [i for i in range(count)
             if data[i * PAGE] == 1 and number("<I", i * PAGE + 4) == table]
    first = bytes(data[pages[0] * PAGE:(pages[0] + 1) * PAGE])
    data += first * copies
    pages += range(count, count + copies)

    bitmaps = []
    for share in range(max(pages) // BITS + 1):
        bitmap = bytearray(PAGE)
        bitmap[0:2] = b"\x05\x01"
        for page in pages:
            if page // BITS == share:
                bit = page % BITS
                bitmap[4 + bit // 8] |= 1 << bit % 8
        bitmaps.append(len(data) // PAGE)
        data += bitmap

    # The table's own map becomes a list of those bitmap pages.
    pointer = number("<I", table * PAGE + 0x37)
    place, row = (pointer >> 8) * PAGE, pointer & 0xFF
    start = number("<H", place + 14 + 2 * row) & 0x1FFF
    end = number("<H", place + 12 + 2 * row) & 0x1FFF if row else PAGE
    entries = bytearray(end - start)
    entries[0] = 1
    for i, bitmap in enumerate(bitmaps):
        struct.pack_into("<I", entries, 1 + 4 * i, bitmap)
    data[place + start:place + end] = entries
    with open(output, "wb") as file:
        file.write(data)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(sys.argv[1], int(sys.argv[2]), sys.argv[3])
