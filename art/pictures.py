#!/usr/bin/python3
"""Makes the pictures of the score line: rows of five hearts for nought to five lives, and a coin.

They are drawn from distances to outlines, so that every edge is smooth at any size, and written as PNG
without a colour profile. Heights are powers of two, and so are widths: the graphics library then takes
them as they are instead of scaling them to the next such size.
"""

import math
import sys
from pathlib import Path

from PIL import Image

HEIGHT = 128
HEARTS = 5
ROW_WIDTH = 512


def write_png(path, width, height, pixels):
    """pixels: rows of (r, g, b, a), each 0 to 1."""
    raw = bytes(min(255, max(0, round(c * 255))) for row in pixels for pixel in row for c in pixel)
    Image.frombytes("RGBA", (width, height), raw).save(path, optimize=True)


def mix(a, b, t):
    return tuple(p + (q - p) * t for p, q in zip(a, b))


def step(low, high, x):
    t = min(max((x - low) / (high - low), 0.0), 1.0)
    return t * t * (3.0 - 2.0 * t)


def outline_distance(polygon, x, y):
    """Pixels to a closed outline, below zero inside it."""
    nearest = 1e9
    inside = False
    for i in range(len(polygon)):
        ax, ay = polygon[i - 1]
        bx, by = polygon[i]
        ex, ey = bx - ax, by - ay
        t = min(max(((x - ax) * ex + (y - ay) * ey) / (ex * ex + ey * ey), 0.0), 1.0)
        nearest = min(nearest, (x - ax - t * ex) ** 2 + (y - ay - t * ey) ** 2)
        if (ay > y) != (by > y) and x < ax + (y - ay) / ey * ex:
            inside = not inside
    return -math.sqrt(nearest) if inside else math.sqrt(nearest)


def heart_outline(middle_x, middle_y, width, height):
    points = []
    for i in range(96):
        t = 2.0 * math.pi * i / 96
        s = math.sin(t)
        x = s * s * s
        y = (13.0 * math.cos(t) - 5.0 * math.cos(2 * t) - 2.0 * math.cos(3 * t) - math.cos(4 * t))
        points.append((middle_x + x * width / 2.0, middle_y - (y + 2.5) * height / 29.0))
    return points


def heart_tile(width, full):
    """One heart; the row of lives is a row of these."""
    border = 8.0
    outline = heart_outline(width / 2.0, HEIGHT / 2.0, width - 11.0, HEIGHT - 30.0)
    rows = []
    for j in range(HEIGHT):
        row = []
        for i in range(width):
            x, y = i + 0.5, j + 0.5
            d = outline_distance(outline, x, y)
            edge = (1.0, 1.0, 1.0) if full else (0.78, 0.80, 0.86)
            color, alpha = edge, min(max(0.5 - (d - border / 2.0), 0.0), 1.0)
            inner = min(max(0.5 - (d + border / 2.0), 0.0), 1.0)
            if full:
                light = math.exp(-((x - width * 0.33) ** 2 + (y - HEIGHT * 0.32) ** 2) / 260.0)
                body = mix((0.93, 0.10, 0.14), (0.60, 0.0, 0.06), step(0.25, 0.95, y / HEIGHT))
                body = mix(body, (1.0, 0.80, 0.80), 0.85 * light)
                color = mix(color, body, inner)
            else:
                # Hollow: the edge stays, the body is a shade on what lies behind.
                color = mix(color, (0.12, 0.12, 0.20), inner)
                alpha *= 1.0 - 0.55 * inner
            row.append((*color, alpha))
        rows.append(row)
    return rows


def lives(target):
    # Whole pixels to each heart, and what the division leaves over goes to the two ends.
    pitch = ROW_WIDTH // HEARTS
    margin = (ROW_WIDTH - HEARTS * pitch) // 2
    full, hollow = heart_tile(pitch, True), heart_tile(pitch, False)
    for count in range(HEARTS + 1):
        tiles = [full] * count + [hollow] * (HEARTS - count)
        rows = []
        for j in range(HEIGHT):
            row = [(1.0, 1.0, 1.0, 0.0)] * margin
            for tile in tiles:
                row += tile[j]
            row += [(1.0, 1.0, 1.0, 0.0)] * (ROW_WIDTH - len(row))
            rows.append(row)
        write_png(target / f"lives-{count}.png", ROW_WIDTH, HEIGHT, rows)


def star_outline(middle, outer, inner):
    return [(middle + (outer if i % 2 == 0 else inner) * math.sin(math.pi * i / 5.0),
             middle - (outer if i % 2 == 0 else inner) * math.cos(math.pi * i / 5.0))
            for i in range(10)]


def coin(target):
    middle = HEIGHT / 2.0
    radius, rim = 58.0, 46.0
    star = star_outline(middle, 34.0, 14.5)
    rows = []
    for j in range(HEIGHT):
        row = []
        for i in range(HEIGHT):
            x, y = i + 0.5, j + 0.5
            r = math.hypot(x - middle, y - middle)
            slant = step(-0.7, 0.7, ((x - middle) + (y - middle)) / (2.0 * radius))  # light: upper left
            color, alpha = (0.42, 0.25, 0.0), min(max(0.5 - (r - radius), 0.0), 1.0)
            gold = mix((1.0, 0.93, 0.45), (0.86, 0.58, 0.05), slant)
            color = mix(color, gold, min(max(0.5 - (r - radius + 5.0), 0.0), 1.0))
            field = mix((0.90, 0.64, 0.08), (1.0, 0.84, 0.28), slant)
            color = mix(color, field, min(max(0.5 - (r - rim), 0.0), 1.0))
            d = outline_distance(star, x, y)
            color = mix(color, (0.50, 0.30, 0.0), min(max(0.5 - (d - 3.0), 0.0), 1.0))
            color = mix(color, mix((1.0, 0.97, 0.65), (1.0, 0.80, 0.20), slant),
                        min(max(0.5 - d, 0.0), 1.0))
            row.append((*color, alpha))
        rows.append(row)
    write_png(target / "coins.png", HEIGHT, HEIGHT, rows)


def main():
    target = Path(sys.argv[1])
    lives(target)
    coin(target)


if __name__ == "__main__":
    main()
