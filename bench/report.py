"""report.py <directory> [<document>]: the table of what the benchmark programs have measured.

Each file of the directory is one run of one program. A figure and its peer are set against each
other within a run; told are the medians over the runs. The table goes to standard output, with the
document also into its marked part, and the plots into the directory named like it. Everything goes
to <directory>.json.
"""

import json
import os
import platform
import re
import statistics
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

SIZES = [1000, 10_000, 100_000, 1_000_000]
TABLES = ["records", "links", "texts"]
REGISTRIES = {"Iid": "iidts", "Clsid": "clsidts"}
EXPORTS = {"few": "40", "many": "40,000"}
WORK = {"request": "request + `Release`", "count": "`AddRef` + `Release`",
        "create": "create + destroy"}
KINDS = {"itself": "the object itself", "BOA": "BOA", "TIE": "TIE", "kept": "kept extension",
         "transient": "transient extension"}
COMPANY = {"alone": "/alone", "beside a thread": "/threads:1"}
BEGIN, END = "<!-- figures: written by tools/bench -->\n", "<!-- end of figures -->\n"


def bars():
    """What is to be reached: description, figure, peer, the most that their ratio may be, and what
    is aimed at beyond that."""
    for safe, bar in ("thread-safe", 1.3), ("without lock", 1.0):
        for company, suffix in COMPANY.items():
            ours = f"Request/own {safe}/12{suffix}"
            text = f"cached request + `Release`, 12 interfaces, {safe}, 1 thread {company}"
            yield f"{text}; GObject", ours, f"Request/GObject/12{suffix}", bar
            if safe == "thread-safe":
                yield f"{text}; `dynamic_cast`", ours, f"Request/dynamic_cast/12{suffix}", 0.25
    ours = "Request/own thread-safe/12"
    for company, suffix in COMPANY.items():
        yield (f"the same, thread-safe, 4 threads on own objects; 1 thread {company}",
               f"{ours}/threads:4", f"{ours}{suffix}", 0.4)
    for safe in "thread-safe", "without lock":
        for company, suffix in COMPANY.items():
            yield (f"cached refusal, {safe}, 1 thread {company}; the cached request",
                   f"Refusal/own {safe}/12{suffix}", f"Request/own {safe}/12{suffix}", 1.0)
    for company, suffix in COMPANY.items():
        yield (f"`AddRef` + `Release`, thread-safe, 1 thread {company}; copy of a `shared_ptr`",
               f"Count/own thread-safe{suffix}", f"Count/shared_ptr{suffix}", 1.3)
    for threads, bar in (1, 0.7), (4, 0.25):
        for size in SIZES:
            yield (f"intern hit, {size:,} strings, {threads} thread{'s' * (threads > 1)}; "
                   "`g_intern_string`",
                   f"Intern/hit/own/{size}/threads:{threads}",
                   f"Intern/hit/GLib/{size}/threads:{threads}", bar)
    for answer in "hit", "miss":
        for size in SIZES:
            yield (f"look-up of a pair, {answer}, {size:,} entries; `absl` map + mutex",
                   f"Pair/{answer}/own/{size}/threads:1", f"Pair/{answer}/absl/{size}/threads:1",
                   0.75)
    for size in SIZES[1:]:
        yield (f"loading, a line of {size:,}; `fgets`, split, `absl` map",
               f"Load/own/{size}", f"Load/absl/{size}", 0.7, 0.5)
    for what, name in ("intern", "Intern/hit/own"), ("pair", "Pair/hit/own"):
        yield (f"{what} hit at 1,000,000; at 1,000",
               f"{name}/1000000/threads:1", f"{name}/1000/threads:1", 15)
    for company, suffix in COMPANY.items():
        yield (f"create + destroy, thread-safe, {company}; `new` + `delete`, `recursive_mutex`",
               f"Create/own thread-safe{suffix}", f"Create/std member{suffix}", 1.5)
    yield ("first request through a new library; `dlopen` + `dlsym`",
           "First/own", "First/dlopen + dlsym", 1.2)
    start = "Start/20000/threads:{}/{}"
    yield ("start with 20,000 first requests, 1 thread; hand-made",
           start.format(1, "own"), start.format(1, "hand-made"), 1.25, 1.0)
    yield ("the same, 4 threads; 1 thread", start.format(4, "own"), start.format(1, "own"),
           1.05, 0.8)
    yield ("start, reading 42,000 lines; hand-made", "Start/read/own", "Start/read/hand-made",
           0.75, 0.5)
    yield ("first request through a loaded library, 400 symbols; `dlopen` + `dlsym`",
           "FirstRequest/small/own", "FirstRequest/small/dlopen + dlsym", 3.5, 2.5)
    yield ("first request through a loaded library, 20,000 symbols; 400 symbols",
           "FirstRequest/large/own", "FirstRequest/small/own", 1.3, 1.1)
    yield ("creation by class id, library of 40,000 exports; of 40",
           "CreateById/many/threads:1", "CreateById/few/threads:1", 1.3, 1.1)
    for registry, name in REGISTRIES.items():
        yield (f"another line of `.{name}`, 400,000 entries; 10,000",
               f"{registry}/line/own/400000", f"{registry}/line/own/10000", 2.5, 1.8)
        yield (f"unknown id, `.{name}`, 400,000 entries; 10,000",
               f"{registry}/miss/own/400000/threads:1", f"{registry}/miss/own/10000/threads:1",
               4, 2)
    for work, what in WORK.items():
        for kind, of in KINDS.items():
            name = f"Kit/{work}/{kind}"
            yield f"kit: {what}, {of}; by hand", f"{name}/own", f"{name}/by hand", 1.05
    yield ("memory of an entry of 100,000; the bare tables",
           "Load/own/100000#bytes", "Memory/bare tables/100000#bytes", 1.5)


def others():
    """What else is worth knowing, in the same form without a bar."""
    for interfaces in 4, 64:
        for peer in "GObject", "dynamic_cast", "if-chain":
            yield (f"cached request, {interfaces} interfaces, thread-safe; {peer}",
                   f"Request/own thread-safe/{interfaces}/threads:1",
                   f"Request/{peer}/{interfaces}/threads:1")
    for safe in "thread-safe", "without lock":
        for peer in "GObject", "if-chain":
            for what, name in ("request", "Request"), ("refusal", "Refusal"):
                yield (f"cached {what}, 12 interfaces, {safe}; {peer}",
                       f"{name}/own {safe}/12/threads:1", f"{name}/{peer}/12/threads:1")
    yield ("cached request, 12 interfaces, thread-safe, 4 threads; GObject, 4 threads",
           "Request/own thread-safe/12/threads:4", "Request/GObject/12/threads:4")
    for safe in "thread-safe", "without lock":
        yield (f"`AddRef` + `Release`, {safe}; an atomic count",
               f"Count/own {safe}/threads:1", "Count/intrusive/threads:1")
    yield ("`AddRef` + `Release` on one object, 4 threads; copy of a `shared_ptr`",
           "Count/one object/own thread-safe/threads:4", "Count/one object/shared_ptr/threads:4")
    yield ("create + destroy, without lock; `new` + `delete`, no lock",
           "Create/own without lock/threads:1", "Create/no lock/threads:1")
    yield ("start with 5,000 first requests, 1 thread; hand-made",
           "Start/5000/threads:1/own", "Start/5000/threads:1/hand-made")
    for size in 5000, 20_000:
        yield (f"start with {size:,} first requests, 4 threads; hand-made",
               f"Start/{size}/threads:4/own", f"Start/{size}/threads:4/hand-made")
    yield ("first request through a loaded library, 20,000 symbols; `dlopen` + `dlsym`",
           "FirstRequest/large/own", "FirstRequest/large/dlopen + dlsym")
    yield ("`dlopen` + `dlsym` of a loaded library, 20,000 symbols; 400 symbols",
           "FirstRequest/large/dlopen + dlsym", "FirstRequest/small/dlopen + dlsym")
    for few in "few", "many":
        yield (f"creation by class id, {EXPORTS[few]} exports, line with \"lib\"; without",
               f"CreateById/lib/{few}/threads:1", f"CreateById/{few}/threads:1")
    for registry, name in REGISTRIES.items():
        for size in 10_000, 400_000:
            yield (f"another line of `.{name}`, {size:,} entries; `unordered_map`",
                   f"{registry}/line/own/{size}", f"{registry}/line/std/{size}")
            for answer, what in ("hit", "known id"), ("miss", "unknown id"):
                yield (f"{what}, `.{name}`, {size:,} entries; `unordered_map` + mutex",
                       f"{registry}/{answer}/own/{size}/threads:1",
                       f"{registry}/{answer}/std/{size}/threads:1")
        yield (f"another line of `.{name}`, 400,000 entries, `unordered_map`; 10,000",
               f"{registry}/line/std/400000", f"{registry}/line/std/10000")
    for size in SIZES:
        yield (f"intern a new string, up to {size:,}; `g_intern_string`",
               f"Intern/new/own/{size}", f"Intern/new/GLib/{size}")
    for size in SIZES:
        yield (f"intern hit, {size:,} ids; strings",
               f"Intern/hit/own ids/{size}/threads:1", f"Intern/hit/own/{size}/threads:1")
    for answer in "hit", "miss":
        for size in SIZES:
            yield (f"look-up of a pair, {answer}, {size:,} entries, 4 threads; `absl` map + mutex",
                   f"Pair/{answer}/own/{size}/threads:4", f"Pair/{answer}/absl/{size}/threads:4")
    for size in SIZES[1:]:
        yield f"loading, a line of {size:,}; `fgets`", f"Load/own/{size}", f"Load/fgets/{size}"
    yield ("memory of an entry of 100,000; `absl` map",
           "Load/own/100000#bytes", "Load/absl/100000#bytes")
    for part in TABLES:
        yield (f"memory of an entry, bare tables: {part}; all of them",
               f"Memory/{part}/100000#bytes", "Memory/bare tables/100000#bytes")
    for what, suffixes in (("uncontended", COMPANY.values()), ("reentrant", COMPANY.values()),
                           ("contended", ["/threads:4"])):
        for suffix in suffixes:
            yield (f"lock, {what}, {suffix[1:].replace(':1', ' 1').replace(':', ' ')}; "
                   "`recursive_mutex`",
                   f"Lock/{what}/own{suffix}", f"Lock/{what}/std member{suffix}")


class Figures:
    """The values of each figure by run: nanoseconds, and bytes under <name>#bytes."""

    def __init__(self, directory):
        self.runs = defaultdict(dict)
        for path in sorted(directory.glob("*.json")):
            program, size, run = path.stem.rsplit("-", 2)
            values = defaultdict(list)
            for measured in json.loads(path.read_text())["benchmarks"]:
                name = re.sub(r"/(real_time|manual_time|iterations:\d+)", "", measured["name"])
                if "error_occurred" in measured:
                    sys.exit(f"{program} {size}: {name}: {measured['error_message']}")
                seconds = measured.get("each", measured["real_time"] * 1e-9)
                values[name].append(seconds * 1e9)
                if "bytes" in measured:
                    values[name + "#bytes"].append(measured["bytes"])
            for name, several in values.items():
                self.runs[name][int(run)] = statistics.mean(several)
            if program == "loading":
                bare = sum(values[f"Memory/{part}/{size}#bytes"][0] for part in TABLES)
                self.runs[f"Memory/bare tables/{size}#bytes"][int(run)] = bare

    def median(self, name):
        return statistics.median(self.runs[name].values()) if name in self.runs else None

    def ratio(self, ours, peer):
        common = self.runs[ours].keys() & self.runs[peer].keys()
        return statistics.median(self.runs[ours][run] / self.runs[peer][run] for run in common)


def told(name, value):
    if name.endswith("#bytes"):
        return f"{value:.0f} B"
    if value >= 1_000_000:
        return f"{value / 1_000_000:.3g} ms"
    return f"{value / 1000:.3g} µs" if value >= 1000 else f"{value:.3g} ns"


def rows(figures, entries):
    for text, ours, peer, *bar in entries:
        if figures.median(ours) is None or figures.median(peer) is None:
            continue
        ratio = figures.ratio(ours, peer)
        what, against = text.split("; ", 1)
        cells = [what, told(ours, figures.median(ours)), against, told(peer, figures.median(peer)),
                 f"{ratio:.2f}"]
        if bar:
            most, goal = bar[0], bar[1] if len(bar) > 1 else None
            reached = "**no**" if ratio > most else "goal" if goal and ratio <= goal else "yes"
            cells += [str(most), str(goal or ""), reached]
        yield cells


def table(head, lines):
    lines = [head, *lines]
    widths = [max(len(line[i]) for line in lines) for i in range(len(head))]
    lines.insert(1, ["-" * width for width in widths])
    padded = ([f"{cell:{width}}" for cell, width in zip(line, widths)] for line in lines)
    return "".join(f"| {' | '.join(line)} |\n" for line in padded)


def machine():
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True, check=True)
    return (f"{cpu.group(1) if cpu else platform.machine()}, {os.cpu_count()} processors; "
            f"{' '.join(platform.libc_ver())}; {compiler.stdout.splitlines()[0]}")


def plots():
    """Cost against size, and against threads; each file: title, label of x, xs, lines."""
    by_size = "/{}/threads:%d"
    threads = "/threads:{}"
    yield ("intern-by-size", "Interning a known string", "strings", SIZES,
           {f"{who}, {n} thread{'s' * (n > 1)}": f"Intern/hit/{who}{by_size % n}"
            for n in (1, 4) for who in ("own", "GLib")})
    yield ("pairs-by-size", "Looking up a pair of names", "entries", SIZES,
           {f"{who}, {answer}": f"Pair/{answer}/{who}{by_size % 1}"
            for answer in ("hit", "miss") for who in ("own", "absl", "std")})
    yield ("loading-by-size", "Loading a line of dictionary files", "lines", SIZES[1:],
           {who: f"Load/{who}/{{}}" for who in ("own", "absl", "fgets")})
    asked = ["own thread-safe", "own without lock", "GObject", "if-chain", "dynamic_cast"]
    yield ("requests-by-interfaces", "A cached request, 1 thread beside another", "interfaces",
           [4, 12, 64], {who: f"Request/{who}{by_size % 1}" for who in asked})
    yield ("requests-by-threads", "A cached request, 12 interfaces, own objects", "threads",
           [1, 2, 4], {who: f"Request/{who}/12{threads}" for who in asked})
    yield ("look-ups-by-threads", "Looking up in 100,000", "threads", [1, 2, 4],
           {"intern, own": f"Intern/hit/own/100000{threads}",
            "intern, GLib": f"Intern/hit/GLib/100000{threads}",
            "pair, own": f"Pair/hit/own/100000{threads}",
            "pair, absl": f"Pair/hit/absl/100000{threads}",
            "pair, std": f"Pair/hit/std/100000{threads}"})


def draw(figures, directory):
    directory.mkdir(exist_ok=True)
    for file, title, label, xs, lines in plots():
        data = {text: [(x, figures.median(name.format(x))) for x in xs]
                for text, name in lines.items()}
        data = {text: points for text, points in data.items() if points[0][1] is not None}
        ticks = ", ".join(f'"{x:,}" {x}' for x in xs)
        curves = ", ".join(f'"-" with linespoints linewidth 2 title "{text}"' for text in data)
        script = ['set terminal svg size 640,420 noenhanced font "sans-serif" background "white"',
                  f'set output "{directory / file}.svg"', f'set title "{title}"',
                  f'set xlabel "{label}"', 'set ylabel "ns, wall time per operation"',
                  "set logscale xy", f"set xrange [{xs[0]}:{xs[-1]}]", f"set xtics ({ticks})",
                  'set linetype 5 linecolor "#b22222"', "set key below", "set grid",
                  f"plot {curves}"]
        for points in data.values():
            script += [f"{x} {y}" for x, y in points] + ["e"]
        subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)


def main():
    directory = Path(sys.argv[1])
    figures = Figures(directory)
    runs = max(len(values) for values in figures.runs.values())
    head = ["What", "Figure", "Peer", "Its figure", "Ratio"]
    with_bars = table([*head, "Bar", "Goal", "Reached"], rows(figures, bars()))
    without = table(head, rows(figures, others()))
    summary = (f"Medians of {runs}, ratios within each run. {machine()}.\n\n{with_bars}\n"
               "Further figures, without a bar; 1 thread, beside another, if nothing is said:\n\n"
               f"{without}")
    print(summary)
    directory.with_suffix(".json").write_text(json.dumps(
        {"machine": machine(), "figures": {name: list(values.values())
                                           for name, values in figures.runs.items()}}, indent=1))
    if len(sys.argv) > 2:
        document = Path(sys.argv[2])
        before, rest = document.read_text().split(BEGIN)
        document.write_text(f"{before}{BEGIN}\n{summary}\n{END}{rest.split(END)[1]}")
        draw(figures, document.with_suffix(""))


main()
