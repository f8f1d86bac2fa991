#!/usr/bin/env python3
"""Prints what run.sh measured as Markdown: report.py VALUES PIECES.json LOGGING.json FIGURES."""

import json
import sys

LIBRARIES = ["poll", "select", "zucom", "libmodbus", "Boost.Asio", "libserialport"]
NAMES = {"poll": "bare `write`+`poll`+`read`", "select": "bare `write`+`select`+`read`", "zucom": "**libzucom**"}


def read_values(path):
    with open(path, encoding="utf-8") as file:
        return {key: float(value) for key, value in (line.split("\t") for line in file)}


def read_medians(path):
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    units = {"ns": 1, "us": 1e3, "ms": 1e6}
    return {run["run_name"]: run["cpu_time"] * units[run["time_unit"]]
            for run in runs if run.get("aggregate_name") == "median"}


def row(*cells):
    print("| " + " | ".join(cells) + " |")


def header(*cells):
    row(*cells)
    row(*["---"] * len(cells))


def shown(values, key, digits):
    return f"{values[key]:.{digits}f}" if key in values else ""


def print_exchanges(values):
    print("### One exchange beside other libraries\n")
    print("CPU time of the caller, beside bare `write`+`poll`+`read` in the same round; user instructions and system"
          " calls\ninside the calls.\n")
    header("", *(f"CPU, {size} bytes" for size in ("6", "250", "32,000")), "instructions, 6 / 250 bytes",
           "system calls")
    for name in LIBRARIES:
        key = "exchange.{}." + name + "."
        cpu = [shown(values, key.format(size) + "beside-poll", 2) for size in (6, 250, 32000)]
        instructions = " / ".join(shown(values, key.format(size) + "instructions", 0) for size in (6, 250))
        row(NAMES.get(name, name), *cpu, instructions, shown(values, key.format(6) + "calls", 1))


def goals(values, pieces):
    """(figure, measured, goal); a negative goal is a lower limit."""
    def piece(name, base):
        return pieces[name] / pieces[base]

    for size, goal in ((6, 1.03), (250, 1.03), (32000, 1.06)):
        yield (f"CPU of an exchange, {size}-byte answer, beside bare `write`+`select`+`read`",
               values[f"exchange.{size}.zucom.beside-select"], goal)
    yield "CPU of an exchange with 500 open ports, beside 1", values["ports.one-of-500"], 1.12
    yield "CPU of opening a port, beside its bare calls", values["ports.open-beside-bare"], 1.5
    for size, goal in ((6, 2.0), (250, 1.3), (2000, 1.3), (32000, 1.3)):
        yield (f"`ZuProtQueue`, 64 MB stream of {size}-byte frames, beside a linear buffer behind a call",
               piece(f"cutStream<ZuProtQueue>/{size}", f"cutStream<LinearBuffer>/{size}"), goal)
    yield ("the same with 6-byte frames, beside a linear buffer inlined into the loop",
           piece("cutStream<ZuProtQueue>/6", "cutStream<InlinedBuffer>/6"), 2.0)
    yield "`ZuProtQueue` with 10,000 waiting frames, beside 1", piece("framesWait/10000", "framesWait/1"), 1.1
    for size, goal in ((6, 1.0), (250, 8.0), (32768, 9.0)):
        yield (f"CRC of {size} bytes: times as fast as with one table",
               piece(f"crc/oneTable/{size}", f"crc/zucom/{size}"), -goal)
    yield "trace line into a file, beside bare `open`+`write`+`close`", values["log-line.beside-bare"], 1.10
    yield "4 threads into own files, beside 4 threads of the bare calls", values["log-line.4-threads"], 1.25
    yield "CPU of `dlopen`, beside an empty C++ library", values["load.beside-empty"], 1.15


def print_goals(values, pieces):
    print("\n### Figures to reach\n")
    header("figure", "goal", "measured", "")
    for figure, measured, goal in goals(values, pieces):
        reached = measured >= -goal if goal < 0 else measured <= goal
        limit = f"at least {-goal:g}" if goal < 0 else f"at most {goal:g}"
        row(figure, limit, f"{measured:.2f}", "ok" if reached else "missed")


def print_pieces(pieces, logging):
    print("\n### Pieces\n")
    header("", "8 bytes", "250 bytes", "32,000 bytes")
    for name, text in (("build", "build a frame"), ("check", "check a frame"), ("print", "frame to text"),
                       ("parse", "text to frame")):
        row(text, *(f"{pieces[f'{name}/{size}']:.0f} ns" for size in (8, 250, 32000)))
    print()
    header("an operation with three log points", "CPU")
    row("logging off", f"{pieces['readTimeout']:.0f} ns")
    row("three lines into a file", f"{logging['readTimeout']:.0f} ns")


def main():
    values, pieces, logging = read_values(sys.argv[1]), read_medians(sys.argv[2]), read_medians(sys.argv[3])
    print_exchanges(values)
    print_goals(values, pieces)
    print("\n### Figures without noise\n")
    with open(sys.argv[4], encoding="utf-8") as figures:
        print("".join(line for line in figures if line.startswith("|")), end="")
    print_pieces(pieces, logging)


if __name__ == "__main__":
    main()
