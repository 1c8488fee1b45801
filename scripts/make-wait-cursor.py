#!/usr/bin/env python3
"""Writes data/cursors/C_WAIT05.CUR: a 32 x 32 hourglass cursor (Windows CUR
format, 32-bit BGRA with an AND mask), hot spot in the middle."""
import struct, sys

W = H = 32
def pixel(x, y):
    # Hourglass: two triangles meeting at the centre, framed top and bottom.
    if y in (2, 3, 28, 29) and 6 <= x <= 25:
        return (40, 50, 70, 255)
    if 4 <= y <= 27:
        half = abs(15.5 - y)
        lo, hi = 15.5 - half * 0.78, 15.5 + half * 0.78
        if lo - 1.2 <= x <= hi + 1.2:
            inside = lo <= x <= hi
            sand = (y > 16 and half > 5) or (y < 16 and half < 7)
            if not inside:
                return (40, 50, 70, 255)
            return (232, 169, 58, 255) if sand else (240, 245, 252, 235)
    return (0, 0, 0, 0)

rows = []
for y in range(H - 1, -1, -1):  # bottom-up
    for x in range(W):
        r, g, b, a = pixel(x, y)
        rows.append(struct.pack("<BBBB", b, g, r, a))
xor = b"".join(rows)
and_mask = b"\x00" * (4 * H)  # alpha carries the shape
header = struct.pack("<IiiHHIIiiII", 40, W, H * 2, 1, 32, 0, len(xor) + len(and_mask), 0, 0, 0, 0)
image = header + xor + and_mask
directory = struct.pack("<HHH", 0, 2, 1) + struct.pack("<BBBBHHII", W, H, 0, 0, 16, 16, len(image), 22)
with open(sys.argv[1] if len(sys.argv) > 1 else "data/cursors/C_WAIT05.CUR", "wb") as out:
    out.write(directory + image)
