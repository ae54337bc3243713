#!/usr/bin/python3
"""Paints the grain of the board's wood, as seen on a cut along the log: data/Rollix/wood.png.

One channel: 0 is the pale wood of spring, 255 the darkest line of autumn. Shaders mirror the
board's cells at its borders, so these need not meet. Lengths are in units of the board, one unit a cell.
"""

import math
import random
import sys
from pathlib import Path

from PIL import Image, ImageDraw

TEXELS = 1024          # along each edge
PER_UNIT = 40.0        # texels a unit; the board's shader knows this number, too
RINGS_PER_UNIT = 2.3
LOG_DEPTH = 6.0        # of the log's axis under the cut: the nearer, the broader the flames
LOG_ASIDE = 1.7        # of the axis, from the picture's middle
LEAN = 0.05            # of the axis, units sideways a unit along
DIP = 0.035            # units downward a unit along
SEED = 3


def field(rng, along, across):
    """Smooth noise about zero, mostly within -1 and 1, in waves that long (x) and wide (y), in units."""
    waves = TEXELS / PER_UNIT
    small = Image.new("F", (max(int(waves / along) + 3, 4), max(int(waves / across) + 3, 4)))
    small.putdata([rng.gauss(0.0, 0.6) for _ in range(small.width * small.height)])
    box = (0.5, 0.5, 0.5 + waves / along, 0.5 + waves / across)
    return list(small.resize((TEXELS, TEXELS), Image.BICUBIC, box=box).getdata())


def pores(rng):
    """Short dark dashes along the log."""
    picture = Image.new("L", (TEXELS, TEXELS), 0)
    draw = ImageDraw.Draw(picture)
    for _ in range(int(TEXELS * TEXELS / 150)):
        x, y = rng.random() * TEXELS, rng.random() * TEXELS
        length = rng.uniform(0.08, 0.3) * PER_UNIT
        draw.line((x, y, x + length, y + rng.uniform(-0.4, 0.4)), fill=rng.randint(40, 150))
    return [value / 255.0 for value in picture.getdata()]


def year(phase, sharpness):
    """How dark a year is at its phase, 0 to 1: pale and wide in spring, dark in autumn, then it breaks off."""
    rise = phase ** 2.6
    return rise * (1.0 - max(0.0, (phase - (1.0 - sharpness)) / sharpness) ** 1.5)


def main(folder):
    rng = random.Random(SEED)
    slow = field(rng, 7.0, 2.6)
    quick = field(rng, 2.2, 0.45)
    tone = field(rng, 5.0, 1.6)
    curl = field(rng, 0.5, 1.3)
    fibre = field(rng, 0.9, 0.035)
    fine = field(rng, 0.3, 0.026)
    vigour = field(rng, 12.0, 0.7)
    pore = pores(rng)

    grain = []
    for row in range(TEXELS):
        y = (TEXELS / 2 - row) / PER_UNIT
        for column in range(TEXELS):
            x = (column - TEXELS / 2) / PER_UNIT
            i = row * TEXELS + column
            radius = math.hypot(y - LOG_ASIDE + LEAN * x, LOG_DEPTH + DIP * x)
            radius += 0.42 * slow[i] + 0.05 * quick[i]
            rings = year((radius * RINGS_PER_UNIT) % 1.0, 0.14) * (0.8 + 0.3 * vigour[i])
            dark = (0.12 + 0.62 * rings + 0.11 * fibre[i] + 0.05 * fine[i] + 0.10 * tone[i]
                    + 0.05 * curl[i] + 0.34 * pore[i] * (0.5 + rings))
            grain.append(min(max(round(255.0 * dark), 0), 255))
    picture = Image.new("L", (TEXELS, TEXELS))
    picture.putdata(grain)
    picture.save(Path(folder) / "wood.png", optimize=True)


if __name__ == "__main__":
    main(sys.argv[1])
