"""Draws frame times over the number of items, both on scales of powers of ten, as SVG."""

import math
from xml.sax.saxutils import escape

import figures

WIDTH, HEIGHT = 720, 420
LEFT, TOP, RIGHT, BOTTOM = 70, 30, 210, 50
SHORTEST_MS, LONGEST_MS = 0.1, 1000
FEWEST, MOST = 1_000, figures.MILLION

# name, pattern of the benchmarks, counter, colour, dashes
LINES = (
    ("wide", figures.pan("wide", "{}", "30min"), "ours_ms", "#1f77b4", ""),
    ("wide, all selected", figures.pan("wide", "{}", "30min", "all"), "ours_ms", "#9467bd", ""),
    ("deep", figures.pan("deep", "{}", "30min"), "ours_ms", "#2ca02c", ""),
    ("others outside", figures.pan("outside", "{}", "30min"), "ours_ms", "#17becf", ""),
    ("own paint", figures.pan("wide", "{}", "30min", kind="own_paint"), "ours_ms", "#ff7f0e", ""),
    ("R", figures.pan("wide", "{}", "30min"), "R_ms", "#777777", "6 4"),
    ("S", figures.pan("wide", "{}", "30min"), "S_ms", "#777777", "2 3"),
)


def share(value, least, most):
    return (math.log(value) - math.log(least)) / (math.log(most) - math.log(least))


def x_of(count):
    return LEFT + share(count, FEWEST, MOST) * (WIDTH - LEFT - RIGHT)


def y_of(milliseconds):
    return HEIGHT - BOTTOM - share(milliseconds, SHORTEST_MS, LONGEST_MS) * (HEIGHT - TOP - BOTTOM)


def text(x, y, content, anchor="middle", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {extra}>{escape(content)}</text>'


def grid():
    for exponent in range(3, 7):
        x = x_of(10 ** exponent)
        yield f'<path d="M{x:.1f} {TOP}V{HEIGHT - BOTTOM}" stroke="#ddd"/>'
        yield text(x, HEIGHT - BOTTOM + 18, f"{10 ** exponent:,}")
    for exponent in range(-1, 4):
        y = y_of(10.0 ** exponent)
        yield f'<path d="M{LEFT} {y:.1f}H{WIDTH - RIGHT}" stroke="#ddd"/>'
        yield text(LEFT - 8, y + 4, f"{10.0 ** exponent:g}", "end")
    yield text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 12, "items")
    yield text(20, HEIGHT / 2, "ms per frame, 30 min window", extra=f'transform="rotate(-90 20 {HEIGHT / 2})"')


def lines(m):
    shown = [(line, points) for line in LINES if (points := m.over_count(line[1], line[2]))]
    for row, ((name, _, _, color, dashes), points) in enumerate(shown):
        path = " ".join(f"{x_of(n):.1f},{y_of(value):.1f}" for n, value in points)
        style = f'fill="none" stroke="{color}" stroke-width="2" stroke-dasharray="{dashes}"'
        yield f'<polyline points="{path}" {style}/>'
        for n, value in points:
            yield f'<circle cx="{x_of(n):.1f}" cy="{y_of(value):.1f}" r="3" fill="{color}"/>'
        y = TOP + 12 + 20 * row
        yield f'<path d="M{WIDTH - RIGHT + 15} {y - 4}h25" {style}/>'
        yield text(WIDTH - RIGHT + 48, y, name, "start")


def write(m, file):
    content = "\n".join([*grid(), *lines(m)])
    file.write_text(
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
        f'font-size="12">\n<rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>\n{content}\n</svg>\n',
        encoding="utf-8")
