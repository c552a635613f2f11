#!/usr/bin/python3
"""Ratio table for vrks_bench_memory.

Reads the JSON that Google Benchmark writes (--benchmark_format=json or
--benchmark_out=FILE) from FILE or standard input, pairs every
<operation>/vrks/<bytes> case with <operation>/<reference>/<bytes>, and prints
one row per size and one column per operation. Each cell is

    vrks time / reference time   (below 1.0: vrks is faster)

followed by the vrks throughput in GB/s (10^9 bytes written per second).
With repetitions, the median of the repeated runs is used (or the reported
median aggregate when only aggregates were written).
"""
import argparse
import json
import statistics
import sys

TO_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


ELEMENTS = False


def size_label(n):
    if ELEMENTS:
        for shift, unit in ((20, "Mi"), (10, "Ki")):
            if n >= 1 << shift and n % (1 << shift) == 0:
                return f"{n >> shift} {unit}"
        return str(n)
    for shift, unit in ((20, "MiB"), (10, "KiB")):
        if n >= 1 << shift and n % (1 << shift) == 0:
            return f"{n >> shift} {unit}"
    return f"{n} B"


def load(stream, clock):
    """{(op, impl, bytes): (time in ns, bytes per second)}, plus the op order."""
    runs, medians, order = {}, {}, []
    for b in json.load(stream)["benchmarks"]:
        kind = b.get("run_type", "iteration")
        if b.get("error_occurred") or kind not in ("iteration", "aggregate"):
            continue
        if kind == "aggregate" and b.get("aggregate_name") != "median":
            continue
        parts = b.get("run_name", b["name"]).split("/")
        if len(parts) != 3 or not parts[2].isdigit():
            continue
        op, impl, size = parts[0], parts[1], int(parts[2])
        if op not in order:
            order.append(op)
        t = b[clock + "_time"] * TO_NS[b.get("time_unit", "ns")]
        sample = (t, b.get("bytes_per_second", 0.0))
        (runs if kind == "iteration" else medians).setdefault((op, impl, size), []).append(sample)
    # Aggregates stand in only where the repeated runs themselves were not reported.
    for k, v in medians.items():
        runs.setdefault(k, v)
    return {k: (statistics.median(t for t, _ in v), statistics.median(r for _, r in v))
            for k, v in runs.items()}, order


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("file", nargs="?", default="-", help="benchmark JSON (default: stdin)")
    ap.add_argument("--clock", choices=("cpu", "real"), default="cpu",
                    help="which measured time to compare (default: cpu)")
    ap.add_argument("--elements", action="store_true",
                    help="sizes are element counts, not bytes")
    args = ap.parse_args()
    global ELEMENTS
    ELEMENTS = args.elements
    if args.file == "-":
        runs, ops = load(sys.stdin, args.clock)
    else:
        with open(args.file) as f:
            runs, ops = load(f, args.clock)

    cells = {}  # (op, bytes) -> text
    for (op, impl, size), (t, rate) in runs.items():
        if impl != "vrks":
            continue
        peers = [v for (o, i, s), v in runs.items() if o == op and s == size and i != "vrks"]
        if peers and peers[0][0] > 0:
            cells[op, size] = f"{t / peers[0][0]:5.2f} {rate / 1e9:7.2f}"
    if not cells:
        sys.exit("ratios.py: no vrks/reference pairs in the input")

    sizes = sorted({s for _, s in cells})
    ops = [op for op in ops if any((op, s) in cells for s in sizes)]
    peer_of = {op: next(i for (o, i, _) in runs if o == op and i != "vrks") for op in ops}
    width = 13
    print(f"{'size':>9}" + "".join(f"  {op:>{width}}" for op in ops))
    print(f"{'':>9}" + "".join(f"  {'vs ' + peer_of[op]:>{width}}" for op in ops))
    print(f"{'':>9}" + "".join(f"  {'ratio   GB/s':>{width}}" for op in ops))
    for s in sizes:
        print(f"{size_label(s):>9}" + "".join(f"  {cells.get((op, s), '-'):>{width}}" for op in ops))


if __name__ == "__main__":
    main()
