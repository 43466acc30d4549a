#!/usr/bin/env python3
"""Makes one table of what the benchmark programs have measured, and says by its exit status whether a quick run holds.

report.py quick|full FOLDER [--docs FILE]    FOLDER holds the JSON files of the programs; FILE gets the table
"""

import argparse
import pathlib
import sys

import figures
import picture
from measurements import Measurements

# A quick run, on a machine that others use, too, is to find what goes through everything instead of what is in sight,
# which misses by tens and hundreds; by how much a target is missed otherwise the table says.
ROOM_FOR_NOISE = 10
BEGIN, END = "<!-- measured: begin -->\n", "<!-- measured: end -->\n"


def number(value, unit=""):
    if value is None:
        return "-"
    digits = 0 if abs(value) >= 100 else 1 if abs(value) >= 10 else 2
    return f"{value:,.{digits}f} {unit}".rstrip()


def verdict(figure):
    return {None: "not measured", True: "reached", False: "NOT REACHED"}[figure.is_reached()]


def rows_of(all_figures):
    yield ("", "Figure", "Target", "Measured", "", "R, ms", "S, ms")
    for figure in all_figures:
        yield (figure.group, figure.text, f"<= {number(figure.target, figure.unit)}",
               number(figure.measured, figure.unit), verdict(figure), number(figure.r), number(figure.s))


def plain_table(rows):
    rows = list(rows)
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows)


def markdown_table(rows):
    lines = ["| " + " | ".join(row) + " |" for row in rows]
    lines.insert(1, "|" + " --- |" * lines[0].count(" |"))
    return "\n".join(lines)


def machine_of(m, extent):
    """One line about the run, and a second one when the machine had other work to do."""
    context = m.context
    load = context["load_avg"][0]
    lines = [f"A {extent} run on {context['num_cpus']} cores of {context['mhz_per_cpu']} MHz, {context['date'][:10]}, "
             f"load {load:.1f} when a program began."]
    # The benchmarks' own is about 1.
    if load > 1.5:
        lines.append("Other work was running: these figures are to be measured again on an idle machine.")
    return lines


def write_docs(file, m, all_figures, extent):
    text = file.read_text(encoding="utf-8")
    before, rest = text.split(BEGIN)
    after = rest.split(END)[1]
    measured = " ".join(machine_of(m, extent)) + "\n\n" + markdown_table(rows_of(all_figures)) + "\n"
    file.write_text(before + BEGIN + "\n" + measured + "\n" + END + after, encoding="utf-8")
    picture.write(m, file.parent / "images" / "frame-times.svg")


def failures(m, all_figures, is_full):
    found = list(m.errors)
    if is_full:
        return found
    for figure in all_figures:
        if figure.is_ratio and figure.is_reached(ROOM_FOR_NOISE) is False:
            found.append(f"{figure.text}: {number(figure.measured, figure.unit)}, "
                         f"more than {number(figure.target * ROOM_FOR_NOISE)}")
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("extent", choices=("quick", "full"))
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--docs", type=pathlib.Path)
    arguments = parser.parse_args()

    files = sorted(arguments.folder.glob("*.json"))
    if not files:
        sys.exit(f"{arguments.folder}: there are no measurements")
    is_full = arguments.extent == "full"
    m = Measurements(files)
    all_figures = figures.all_figures(m, is_full)
    print(plain_table(rows_of(all_figures)))
    print("\n" + "\n".join(machine_of(m, arguments.extent)))
    if arguments.docs:
        write_docs(arguments.docs, m, all_figures, arguments.extent)

    found = failures(m, all_figures, is_full)
    for failure in found:
        print(f"FAILED: {failure}", file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
