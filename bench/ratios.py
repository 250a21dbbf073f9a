"""Prints the ratios of ratios.tsv from the results of one run, writes them as JSON, and draws the growth curves.

usage: ratios.py RATIOS RESULTS_FOLDER JSON_FILE SVG_FILE
RESULTS_FOLDER holds BENCHMARK/NUMBER.json of each case of a benchmark, as Google Benchmark writes it.
"""
import json
import math
import pathlib
import sys

# What the growth curves show: a name, the cases as BENCHMARK:CASE without the number of entries, a colour, and whether the
# time is of all entries together.
CURVES = [
    ("build_apart", "tree_bench:build_apart", "#888888", False),
    ("build/wide", "tree_bench:build/wide", "#1b6ca8", False),
    ("build/deep", "tree_bench:build/deep", "#7ab8d9", False),
    ("remove", "tree_bench:remove", "#b3541e", False),
    ("walk/wide", "tree_bench:walk/wide", "#2e7d32", False),
    ("walk/deep", "tree_bench:walk/deep", "#81c784", False),
    ("is_visible/wide", "tree_bench:is_visible/wide", "#6a1b9a", False),
    ("is_visible/deep", "tree_bench:is_visible/deep", "#ba68c8", False),
    ("commit, a dependant", "binding_commit_bench:commit", "#c2185b", False),
    ("an option at a position", "enum_entry_bench:display_each_position", "#f9a825", False),
    ("live tree, a node", "live_data_bench:read_tree", "#00838f", True),
    ("load, an entry", "menu_bench:load/plain", "#3e2723", False),
    ("load, with a rule", "menu_bench:load/rules", "#8d6e63", False),
]


# A unit of a counter, or of a figure that stands for a case, in those of the results: nanoseconds, and percent as they are.
UNITS = {"ms": 1e6, "percent": 1}


def counted(result):
    """The counters with a unit in their name, by name."""
    for name, value in result.items():
        unit = name.rpartition("_")[2]
        if unit in UNITS and isinstance(value, (int, float)):
            yield name, value * UNITS[unit]


def nanoseconds(result):
    """The time per entry where the case reports it, else the time of an iteration: of the processor, or the measured one."""
    if "per_entry" in result:
        return result["per_entry"] * 1e9
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[result["time_unit"]]
    is_measured = "/manual_time" in result["name"]
    return result["real_time" if is_measured else "cpu_time"] * scale


def read_results(folder):
    """The shortest time of the repetitions of each case: what else runs on the machine only adds."""
    times = {}
    for file in sorted(folder.glob("*/*.json")):
        for result in json.loads(file.read_text())["benchmarks"]:
            if result["run_type"] == "iteration":
                case = f"{file.parent.name}:{result['name']}"
                times[case] = min(nanoseconds(result), times.get(case, math.inf))
                for name, value in counted(result):
                    counter = f"{case}@{name}"
                    times[counter] = min(value, times.get(counter, math.inf))
    return times


def figure(text, times):
    """What stands in a column of ratios.tsv: a case, or a number and its unit."""
    number, _, unit = text.partition(" ")
    return float(number) * UNITS[unit] if unit in UNITS else times[text]


def read_ratios(file, times):
    for line in file.read_text().splitlines():
        if line and not line.startswith("#"):
            what, case, beside, limit = line.split("\t")
            found, peer = figure(case, times), figure(beside, times)
            yield {"what": what, "found": found, "beside": peer, "ratio": found / peer, "limit": float(limit)}


def curves(times):
    for name, cases, colour, is_of_all in CURVES:
        prefix = f"{cases}/"
        points = sorted((int(case[len(prefix):]), ns) for case, ns in times.items()
                        if case.startswith(prefix) and case[len(prefix):].isdigit())
        if points:
            yield name, colour, [(entries, ns / entries if is_of_all else ns) for entries, ns in points]


def draw(times, file):
    """Time per entry over the number of entries, both in powers of ten."""
    width, height, left, top = 560, 300, 60, 20

    def x(entries):
        return left + (math.log10(entries) - 1) / 5 * width

    def y(ns):
        return top + height - min(max(math.log10(ns) - 1, 0), 3.5) / 3.5 * height

    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 190}" height="{top + height + 45}" '
             'font-family="sans-serif" font-size="11">', '<rect width="100%" height="100%" fill="white"/>']
    for power in range(1, 7):
        at = x(10 ** power)
        lines.append(f'<path d="M{at:.1f} {top}v{height}" stroke="#ddd"/>'
                     f'<text x="{at:.1f}" y="{top + height + 15}" text-anchor="middle">{10 ** power:,}</text>')
    for ns in (10, 30, 100, 300, 1000, 3000, 10000, 30000):
        lines.append(f'<path d="M{left} {y(ns):.1f}h{width}" stroke="#ddd"/>'
                     f'<text x="{left - 6}" y="{y(ns) + 4:.1f}" text-anchor="end">{ns:,} ns</text>')
    lines.append(f'<text x="{left + width / 2}" y="{top + height + 35}" text-anchor="middle">entries</text>')
    for number, (name, colour, points) in enumerate(curves(times)):
        path = " ".join(f"{x(entries):.1f},{y(ns):.1f}" for entries, ns in points)
        row = top + 12 + 16 * number
        lines.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>'
                     f'<path d="M{left + width + 10} {row}h20" stroke="{colour}" stroke-width="2"/>'
                     f'<text x="{left + width + 35}" y="{row + 4}">{name}</text>')
    file.write_text("\n".join(lines + ["</svg>", ""]))


def main():
    ratios_file, folder, json_file, svg_file = map(pathlib.Path, sys.argv[1:])
    times = read_results(folder)
    ratios = list(read_ratios(ratios_file, times))
    print(f"{'ns or %':>10} {'beside':>10} {'ratio':>7} {'limit':>6}  what")
    for row in ratios:
        mark = "  above its limit" if row["ratio"] > row["limit"] else ""
        print(f"{row['found']:10.1f} {row['beside']:10.1f} {row['ratio']:7.2f} {row['limit']:6.2f}  {row['what']}{mark}")
    json_file.write_text(json.dumps({"ratios": ratios, "cases": times}, indent=1) + "\n")
    draw(times, svg_file)


if __name__ == "__main__":
    main()
