"""Makes a table of the rows and curves that the benchmarks print, one a line of JSON, and on demand files of them.

usage: report.py [--json FILE] [--svg DIRECTORY] < ROWS
"""
import argparse
import json
import math
import os
import sys

WIDTH, HEIGHT, LEFT, RIGHT, BOTTOM, LINE = 640, 320, 56, 24, 48, 16
STEPS = (0.25, 0.5, 1, 2, 5, 10, 20, 50)
COLOURS = ("#1f5fa8", "#b5451f", "#2f7d32")


def figure(value, unit):
    return "%d" % value if unit == "count" else "%.3f" % value


def verdict(row):
    if row["aim"] < 0:
        return "", ""
    return "%g" % row["aim"], "" if row["median"] <= row["aim"] else "above"


def print_table(rows):
    width = max(len(row["row"]) for row in rows)
    print("%-*s %9s %21s %7s %7s" % (width, "row", "median", "quartiles", "rounds", "aim"))
    for row in rows:
        if "failed" in row:
            print("%-*s %s" % (width, row["row"], row["failed"]))
            continue
        low, median, high = (figure(row[key], row["unit"]) for key in ("low", "median", "high"))
        print("%-*s %9s %21s %7d %7s %s" % ((width, row["row"], median, low + " to " + high, row["rounds"]) + verdict(row)))


def svg(what, curves):
    """Curves over the number of something, both in one drawing; the number's axis is logarithmic."""
    numbers = sorted({number for points in curves.values() for number, _ in points})
    most = max(1.0, max(value for points in curves.values() for _, value in points))
    step = next((step for step in STEPS if most <= 6 * step), most)
    count = math.ceil(most / step)
    head = LINE * (len(curves) + 1)
    span = math.log(numbers[-1] / numbers[0]) or 1

    def x(number):
        return LEFT + (WIDTH - LEFT - RIGHT) * math.log(number / numbers[0]) / span

    def y(value):
        return HEIGHT - BOTTOM - (HEIGHT - head - BOTTOM) * value / (count * step)

    lines = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" font-family="sans-serif" font-size="12">'
             % (WIDTH, HEIGHT), '<rect width="100%" height="100%" fill="white"/>']
    for value in (step * i for i in range(count + 1)):
        lines.append('<path d="M%d %.1fH%d" stroke="#ddd"/>' % (LEFT, y(value), WIDTH - RIGHT))
        lines.append('<text x="%d" y="%.1f" text-anchor="end">%g</text>' % (LEFT - 6, y(value) + 4, value))
    for number in numbers:
        lines.append('<text x="%.1f" y="%d" text-anchor="middle">%d</text>' % (x(number), HEIGHT - BOTTOM + 16, number))
    lines.append('<text x="%d" y="%d" text-anchor="middle">%s</text>' % ((LEFT + WIDTH) // 2, HEIGHT - 8, what))
    for index, (name, points) in enumerate(sorted(curves.items())):
        colour = COLOURS[index % len(COLOURS)]
        path = " ".join("%.1f,%.1f" % (x(number), y(value)) for number, value in sorted(points))
        lines.append('<polyline points="%s" fill="none" stroke="%s" stroke-width="2"/>' % (path, colour))
        lines.extend('<circle cx="%.1f" cy="%.1f" r="3" fill="%s"/>' % (x(number), y(value), colour)
                     for number, value in points)
        lines.append('<text x="%d" y="%d" fill="%s">%s</text>' % (LEFT, LINE * (index + 1), colour, name))
    return "\n".join(lines + ["</svg>", ""])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--json", metavar="FILE")
    parser.add_argument("--svg", metavar="DIRECTORY")
    options = parser.parse_args()
    told = [json.loads(line) for line in sys.stdin]
    rows = [item for item in told if "row" in item]
    if not rows:
        sys.exit("report: there are no rows")
    print_table(rows)
    if options.json:
        with open(options.json, "w", encoding="utf-8") as file:
            json.dump(told, file, indent=1)
            file.write("\n")
    if options.svg:
        os.makedirs(options.svg, exist_ok=True)
    drawings = {}
    for item in told:
        if "curve" in item:
            drawings.setdefault(item["of"], {}).setdefault(item["curve"], []).append((item["number"], item["value"]))
    for what, curves in drawings.items() if options.svg else ():
        with open("%s/cost-by-%s.svg" % (options.svg, what), "w", encoding="utf-8") as file:
            file.write(svg(what, curves))


main()
