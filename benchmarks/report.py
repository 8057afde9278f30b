#!/usr/bin/env python3
# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT
"""report.py RESULTS DOCS: writes DOCS/benchmarks.md and its plots from the JSON of the benchmarks.

A row's name is topic/work/subject/size. Rows that differ in the subject alone do the same work.
"""

import json
import math
import os
import re
import statistics
import sys

SUBJECTS = {
    "orv": "libOrvCore",
    "boost": "Boost.Graph, a vertex per port",
    "flat": "Boost.Graph, bare nodes",
    "vectors": "vectors of children",
    "scan": "hand-written scan",
    "join": "hand-written join",
    "read": "one read of everything",
    "loop": "hand-written loop",
    "tbb": "oneTBB flow graph",
    "lightweight": "oneTBB flow graph, lightweight",
    "rebuilt": "functions sorted each frame",
    "frame": "one frame",
    "plain": "plain frame",
    "byHand": "clock read by hand",
    "direct": "direct call",
    "map": "std::mutex and std::map",
    "prometheus": "prometheus-cpp",
    "mmap": "mmap and munmap",
    "iostreams": "Boost.Iostreams",
    "allowed": "allowed",
}

TOPICS = {
    "build": ("Building",
        "Adds nodes and ports, then connections, each with a cycle test. There are 20 layers, "
        "and each node has four inputs. The size is the number of nodes."),
    "query": ("Ordering query",
        "`precedes` over 20 layers, with four inputs per node. The search begins at the last "
        "layer and looks for a node of the first layer (yes), or for a node that it does not "
        "reach (no). In nested groups, every node lies in its own group inside a group; the "
        "graph of bare nodes does not contain the groups. A cycle test is an `addEdge` that is "
        "refused. The searches over Boost.Graph keep their marks from call to call."),
    "walker": ("Walkers",
        "Complete walks from the last node, including the allocation of working state. Boost's "
        "own algorithms walk the graph with a vertex per port."),
    "name": ("Names",
        "Look-ups of the last of several names, and connections by name: eight ports of each "
        "node of a chain with the ports of the node before."),
    "removal": ("Removal and compaction",
        "Removal of nodes from 20 layers, with four inputs per node, and compaction."),
    "frame": ("Frames",
        "Passes that mix their inputs into one number. The hand-written loop makes the same "
        "calls on the same passes, but knows the sources of all inputs beforehand. The flow "
        "graph and the functions call the steps of that loop. oneTBB runs on one thread."),
    "setup": ("Setup",
        "A repeated `setup`, including the teardown, beside a frame of the same renderer and "
        "beside building the flow graph."),
    "staggered": ("Staggered first frame", "A chain of passes under the staggered first frame."),
    "histogram": ("Frame-time histogram",
        "The size is the number of buckets in use. prometheus-cpp has its 2001 buckets from the "
        "start and never empties itself. The process has already started a second thread, as "
        "hosts have: before that, the mutexes of the C library do without atomic operations."),
    "trace": ("Traces",
        "A chain of passes behind `TracedPass`, beside the same frame without it, and beside "
        "passes that read the clock before and after each of `beginFrame`, `start` and "
        "`endFrame` and append a record. A recorded call reads the clock twice; a call that is "
        "only counted does not read it."),
    "mapping": ("Mapped ranges",
        "Maps a range of a file, reads its first and its last byte, and unmaps it. The size is "
        "in KiB. Boost.Iostreams opens the file each time."),
}

# Rows without nested groups.
FLAT = r"(?!.*nested)"

# The targets: rows (topic/work/size), the other subject, the ratio, "<" or "<=".
TARGETS = [
    ("cycle test", r"query/cycle test/", "boost", 1.0, "<"),
    ("cycle test", r"query/cycle test/", "flat", 2.5, "<="),
    ("`precedes`", r"query/precedes", "boost", 1.0, "<"),
    ("`precedes`", r"query/precedes" + FLAT, "flat", 2.5, "<="),
    ("input walkers", r"walker/.*inputs", "boost", 1.0, "<"),
    ("building 2,000 nodes in layers", r"build/layered.*/2000$", "boost", 1.0, "<"),
    ("a frame", r"frame/" + FLAT, "loop", 1.4, "<="),
    ("a frame", r"frame/" + FLAT, "tbb", 0.9, "<"),
    ("a staggered frame, all up", r"staggered/frame", "plain", 1.1, "<="),
    ("`setup`", r"setup/" + FLAT, "frame", 1.5, "<="),
    ("histogram", r"histogram/", "map", 1.1, "<="),
    ("a recorded call", r"trace/recorded call/", "byHand", 1.5, "<="),
    ("mapped ranges", r"mapping/", "mmap", 1.1, "<="),
    ("`purge`", r"removal/purge/", "read", 1.2, "<="),
]

# Targets that the rules of the library make impossible, and why.
NO_TARGETS = [
    "Rows in nested groups have no target beside subjects that do not contain the groups, and "
    "`setup` has no target there. A search, a setup and a frame trace every input through all of "
    "its groups again, because the library caches nothing about the graph; those subjects store "
    "each source. Input walkers have no target beside bare nodes: a walk goes from a node over a "
    "port and an edge to the next node, and allocates a frame on the heap for each node on its "
    "path.",
]

COLORS = ["#1b6ca8", "#d1495b", "#2e8b57", "#e0a030", "#7a5195"]


def read(folder):
    """All rows: (topic, work, size) -> subject -> list of results; and the runs' context."""
    rows, context = {}, {}
    for name in sorted(os.listdir(folder)):
        if not name.endswith(".json"):
            continue
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            data = json.load(file)
        context.update(data["context"])
        for run in data["benchmarks"]:
            if run.get("run_type") == "aggregate":
                continue
            if run.get("error_occurred"):
                sys.exit(f"{run['name']} failed: {run.get('error_message')}")
            topic, work, subject, size = run["name"].split("/")[:4]
            rows.setdefault((topic, work, int(size)), {}).setdefault(subject, []).append(run)
    # The runs are in random order.
    order = list(SUBJECTS)
    ordered = {key: dict(sorted(rows[key].items(), key=lambda item: order.index(item[0])))
               for key in sorted(rows)}
    return ordered, context


UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def median(runs):
    return statistics.median(run["cpu_time"] * UNITS[run["time_unit"]] for run in runs)


def spread(runs):
    """Half the distance between the quartiles, relative to the median."""
    times = sorted(run["cpu_time"] for run in runs)
    if len(times) < 4:
        return None
    lower, middle, upper = statistics.quantiles(times, n=4, method="inclusive")
    return (upper - lower) / 2 / middle


def duration(ns):
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= factor:
            return f"{ns / factor:.3g} {unit}"
    return f"{ns:.3g} ns"


def meets(ratio, limit, sign):
    return ratio < limit if sign == "<" else ratio <= limit


def sign_text(sign):
    return "below" if sign == "<" else "at most"


def machine():
    model, cores = "an unknown processor", os.cpu_count()
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        match = re.search(r"^model name\s*:\s*(.+)$", file.read(), re.MULTILINE)
        if match:
            model = match.group(1).strip()
    with open("/proc/meminfo", encoding="utf-8") as file:
        memory = int(re.search(r"^MemTotal:\s*(\d+)", file.read(), re.MULTILINE).group(1))
    return (f"{model}, {cores} cores, {round(memory / 2**20)} GiB of memory, "
            f"Linux {os.uname().release}")


def summary(rows):
    lines = ["| What | Beside | Target | Worst row | Ratio there | Rows that hold | Holds |",
             "|---|---|---|---|---|---|---|"]
    for what, pattern, subject, limit, sign in TARGETS:
        ratios = []
        for (topic, work, size), subjects in rows.items():
            if (re.match(pattern, f"{topic}/{work}/{size}")
                    and "orv" in subjects and subject in subjects):
                ratios.append((median(subjects["orv"]) / median(subjects[subject]), work, size))
        if not ratios:
            continue
        worst, work, size = max(ratios)
        holding = sum(meets(ratio, limit, sign) for ratio, _, _ in ratios)
        lines.append(f"| {what} | {SUBJECTS[subject]} | {sign_text(sign)} {limit} | "
                     f"{work}, {size:,} | {worst:.2f} | {holding} of {len(ratios)} | "
                     f"{'yes' if holding == len(ratios) else '**no**'} |")
    return lines


def target_of(topic, work, size, subject):
    for _, pattern, other, limit, sign in TARGETS:
        if other == subject and re.match(pattern, f"{topic}/{work}/{size}"):
            return limit, sign
    return None


def topic_table(rows, topic):
    lines = ["| Work | Size | libOrvCore | Beside | Time | Ratio | Target |",
             "|---|---:|---:|---|---:|---:|---|"]
    for (row_topic, work, size), subjects in rows.items():
        if row_topic != topic or "orv" not in subjects:
            continue
        own = median(subjects["orv"])
        own_spread = spread(subjects["orv"])
        own_text = duration(own) + (f" ±{100 * own_spread:.0f} %" if own_spread is not None else "")
        for subject, runs in subjects.items():
            if subject == "orv":
                continue
            other = median(runs)
            other_spread = spread(runs)
            text = duration(other)
            if other_spread is not None:
                text += f" ±{100 * other_spread:.0f} %"
            target = target_of(topic, work, size, subject)
            verdict = ""
            if target:
                holds = meets(own / other, *target)
                verdict = (f"{sign_text(target[1])} {target[0]}: "
                           f"{'holds' if holds else '**missed**'}")
            lines.append(f"| {work} | {size:,} | {own_text} | {SUBJECTS[subject]} | {text} | "
                         f"{own / other:.2f} | {verdict} |")
    return lines


def counter_table(rows, topic, counter, head):
    works = {}
    for (row_topic, work, size), subjects in rows.items():
        if row_topic == topic:
            works[work] = {subject: runs[0][counter] for subject, runs in subjects.items()}
    others = [s for s in next(iter(works.values())) if s != "orv"] if works else []
    lines = ["| " + " | ".join([head, "libOrvCore"] + [SUBJECTS[s] for s in others]) + " |",
             "|---|" + "---:|" * (1 + len(others))]
    for work, values in works.items():
        cells = [f"{values[s]:.0f}" for s in ["orv"] + others]
        if "allowed" in values and values["orv"] > values["allowed"]:
            cells[0] = f"**{cells[0]}**"
        lines.append("| " + " | ".join([work] + cells) + " |")
    return lines


def slope(points):
    """Exponent of the growth: least squares over the logarithms."""
    xs = [math.log(x) for x, _ in points]
    ys = [math.log(y) for _, y in points]
    x_mean, y_mean = statistics.fmean(xs), statistics.fmean(ys)
    return (sum((x - x_mean) * (y - y_mean) for x, y in zip(xs, ys))
            / sum((x - x_mean) ** 2 for x in xs))


def series(rows, topic, work):
    """subject -> [(size, median)] in ascending size."""
    result = {}
    for (row_topic, row_work, size), subjects in rows.items():
        if (row_topic, row_work) == (topic, work):
            for subject, runs in subjects.items():
                result.setdefault(subject, []).append((size, median(runs)))
    return result


def escape(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def plot(title, lines, per_item=False):
    """A log-log plot of {label: [(size, ns)]} as SVG."""
    if per_item:
        lines = {label: [(x, y / x) for x, y in points] for label, points in lines.items()}
    width, height, left, right, top, bottom = 680, 380, 75, 230, 40, 45
    xs = [math.log10(x) for points in lines.values() for x, _ in points]
    ys = [math.log10(y) for points in lines.values() for _, y in points]
    x0, x1 = min(xs), max(max(xs), min(xs) + 1)
    y0, y1 = math.floor(min(ys)), math.ceil(max(ys))
    if y0 == y1:
        y1 += 1

    def px(x):
        return left + (math.log10(x) - x0) / (x1 - x0) * (width - left - right)

    def py(y):
        return height - bottom - (math.log10(y) - y0) / (y1 - y0) * (height - top - bottom)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           f'width="{width}" height="{height}" font-family="sans-serif" font-size="12">',
           f'<rect width="{width}" height="{height}" fill="white"/>',
           f'<text x="{left}" y="22" font-size="15">{escape(title)}</text>']
    for power in range(y0, y1 + 1):
        y = py(10.0 ** power)
        out.append(f'<line x1="{left}" y1="{y:.1f}" x2="{width - right}" y2="{y:.1f}" '
                   f'stroke="#ddd"/>'
                   f'<text x="{left - 8}" y="{y + 4:.1f}" text-anchor="end">'
                   f'{duration(10.0 ** power)}</text>')
    for power in range(math.ceil(x0), math.floor(x1) + 1):
        x = px(10.0 ** power)
        out.append(f'<line x1="{x:.1f}" y1="{top}" x2="{x:.1f}" y2="{height - bottom}" '
                   f'stroke="#ddd"/>'
                   f'<text x="{x:.1f}" y="{height - bottom + 18}" text-anchor="middle">'
                   f'{10 ** power:,}</text>')
    out.append(f'<text x="{(left + width - right) / 2:.0f}" y="{height - 8}" '
               f'text-anchor="middle">nodes</text>')
    for i, (label, points) in enumerate(lines.items()):
        color = COLORS[i % len(COLORS)]
        path = " ".join(f"{px(x):.1f},{py(y):.1f}" for x, y in points)
        out.append(f'<polyline points="{path}" fill="none" stroke="{color}" stroke-width="2"/>')
        out += [f'<circle cx="{px(x):.1f}" cy="{py(y):.1f}" r="3" fill="{color}"/>'
                for x, y in points]
        y = top + 12 + 20 * i
        out.append(f'<rect x="{width - right + 14}" y="{y - 9}" width="10" height="10" '
                   f'fill="{color}"/>'
                   f'<text x="{width - right + 30}" y="{y}">{escape(label)}</text>')
    out.append("</svg>\n")
    return "\n".join(out)


def main(results, docs):
    rows, context = read(results)
    if not rows:
        sys.exit(f"No results in {results}")
    plots = os.path.join(docs, "benchmarks")
    os.makedirs(plots, exist_ok=True)

    def write_plot(name, title, lines, per_item=False):
        labelled = {SUBJECTS[subject]: points for subject, points in lines.items()}
        with open(os.path.join(plots, name + ".svg"), "w", encoding="utf-8") as file:
            file.write(plot(title, labelled, per_item))
        return ["", f"![{title}](benchmarks/{name}.svg)"]

    repetitions = max(len(runs) for subjects in rows.values() for runs in subjects.values())
    versions = ", ".join(f"{key} {context[key]}" for key in
                         ("libOrvCore", "compiler", "Qt", "Google Benchmark", "Boost", "oneTBB",
                          "prometheus-cpp") if context.get(key)).replace("compiler ", "")
    text = ["# Benchmarks", "",
            "This page compares the costs of the library with peers and limits. "
            "`./scripts/bench` has measured them. A peer is another library for the same "
            "purpose. A limit is code that does only the work of this row, without the "
            "generality of the library. All subjects of a row do the same work in one process. "
            "Their results are compared before the first one is timed.", "",
            f"Times are medians of up to {repetitions} repetitions, in processor time. The "
            "repetitions are interleaved at random. ± is half the distance between the "
            "quartiles. A ratio below 1 means that the library takes less.", "",
            f"Machine: {machine()}.", "",
            f"Versions: {versions}.", "",
            "## Targets", ""]
    text += summary(rows)
    text += ["", *NO_TARGETS]
    for topic, (title, about) in TOPICS.items():
        if not any(key[0] == topic for key in rows):
            continue
        text += ["", f"## {title}", "", about, ""] + topic_table(rows, topic)
        if topic == "frame":
            for work in ("chain", "layered"):
                text += write_plot(f"frame-{work}", f"Time of a pass in a frame ({work})",
                                   series(rows, "frame", work), per_item=True)

    text += ["", "## Growth", "",
             "A chain of a hundred to a million nodes, built sink first unless the row says "
             "otherwise. The exponent is the slope of the line through all points: 1 is linear. "
             "The caches do not hold graphs of more than about ten thousand nodes.", "",
             "| Work | Subject | Exponent | Per node at 100 | Per node at 1,000,000 |",
             "|---|---|---:|---:|---:|"]
    growth_plots = []
    for work, title in (("build", "Building a chain"),
                        ("build, source first", "Building a chain from its source down"),
                        ("query", "One query along a chain"),
                        ("setup", "Setup of a chain"), ("frame", "A frame of a chain")):
        lines = series(rows, "growth", work)
        for subject, points in lines.items():
            ends = [duration(points[i][1] / points[i][0]) for i in (0, -1)]
            exponent = f"{slope(points):.2f}" if len(points) > 1 else ""
            text.append(f"| {work} | {SUBJECTS[subject]} | {exponent} | {ends[0]} | "
                        f"{ends[1] if points[-1][0] == 1000000 else ''} |")
        if lines:
            name = work.replace(", ", "-").replace(" ", "-")
            growth_plots += write_plot(f"growth-{name}", title, lines)
    text += growth_plots

    text += ["", "## Memory", "",
             "Heap bytes in a chain of 10,000 nodes, including the overhead of the allocator for "
             "each block:",
             ""]
    text += counter_table(rows, "bytes", "bytes", "Bytes")
    text += ["", "Allocations of an operation, and the allowed number: the allocations in the "
             "description of the operation, and one more for a walk. Numbers above the allowed one "
             "are bold:", ""]
    text += counter_table(rows, "allocations", "allocations", "Allocations")

    with open(os.path.join(docs, "benchmarks.md"), "w", encoding="utf-8") as file:
        file.write("\n".join(text) + "\n")
    print("\n".join(summary(rows)))
    print(f"\nWritten: {os.path.join(docs, 'benchmarks.md')}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
