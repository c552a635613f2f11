#!/usr/bin/python3
"""Ratio tables for vrks_bench_memory, vrks_bench_convert and vrks_bench_fft.

Reads the JSON that Google Benchmark writes (--benchmark_format=json or
--benchmark_out=FILE) from FILE or standard input. With repetitions, the
median of the repeated runs is used (or the reported median aggregate when
only aggregates were written).

Memory (cases <operation>/<vrks|reference>/<bytes>): one row per size, one
column per operation. Each cell is

    vrks time / reference time   (below 1.0: vrks is faster)

followed by the vrks throughput in GB/s (10^9 bytes written per second).

Conversion (cases <pair>/<vrks|loop|copy>/<elements>, recognised by the
"copy" cases): one row per pair; for each length

    speed-up   plain loop time / vrks time (above 1.0: vrks is faster)
    GB/s       vrks traffic, bytes read plus bytes written, per second
    of copy    copy time / vrks time for the same traffic (1.00: vrks runs
               at the speed of a copy; 0.90: within 10% of it)

FFT (cases <kind>/<vrks|measure|estimate>/<order>, recognised by the FFTW
cases): one row per kind (c32, c64, r32, r64) and order, with the mflops of
vrks, of the FFTW_MEASURE plan and of the FFTW_ESTIMATE plan, then

    vrks mflops / FFTW mflops   (above 1.0: vrks is faster)

for each of the two plans. mflops is 5 N log2 N (complex) or 2.5 N log2 N
(real) per transform over the time in microseconds, taken from the chosen
clock.
"""
import argparse
import json
import statistics
import sys

TO_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
FFT_KINDS = ("c32", "c64", "r32", "r64")
FFT_PEERS = ("measure", "estimate")


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
    """{(op, impl, bytes): (time in ns, bytes per second, mflops)}, plus the op order."""
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
        # The benchmark's rate counters run on CPU time; rescaled to the clock.
        mflops = b.get("mflops", 0.0) * b["cpu_time"] / b[clock + "_time"] if b[clock + "_time"] else 0.0
        sample = (t, b.get("bytes_per_second", 0.0), mflops)
        (runs if kind == "iteration" else medians).setdefault((op, impl, size), []).append(sample)
    # Aggregates stand in only where the repeated runs themselves were not reported.
    for k, v in medians.items():
        runs.setdefault(k, v)
    return {k: tuple(statistics.median(column) for column in zip(*v)) for k, v in runs.items()}, order


def convert_table(runs):
    """The conversion table: pairs by rows, lengths by column groups."""
    pairs = []
    for (op, impl, _) in runs:
        if impl == "vrks" and op not in pairs:
            pairs.append(op)
    sizes = sorted({s for (_, i, s) in runs if i == "vrks"})
    with_copy = {s for (_, i, s) in runs if i == "copy"}
    width = max([len(p) for p in pairs] + [4])
    head = f"{'pair':<{width}}"
    for s in sizes:
        head += f"  {'x loop':>7} {'GB/s':>7}" + (f" {'of copy':>8}" if s in with_copy else "")
    print(" " * width + "".join(f"  {'length ' + str(s):<{16 + (9 if s in with_copy else 0)}}" for s in sizes))
    print(head)
    for p in pairs:
        line = f"{p:<{width}}"
        for s in sizes:
            v, loop, copy = runs.get((p, "vrks", s)), runs.get((p, "loop", s)), runs.get((p, "copy", s))
            line += f"  {loop[0] / v[0]:7.2f}" if v and loop else f"  {'-':>7}"
            line += f" {v[1] / 1e9:7.2f}" if v else f" {'-':>7}"
            if s in with_copy:
                line += f" {copy[0] / v[0]:8.2f}" if v and copy else f" {'-':>8}"
        print(line)


def fft_table(runs):
    """The FFT table: kinds and orders by rows, vrks and the two FFTW plans by columns."""
    print(f"{'kind':<4} {'order':>5}  {'vrks':>9} {'MEASURE':>9} {'ESTIMATE':>9}"
          f"  {'vrks/MEASURE':>12} {'vrks/ESTIMATE':>13}")
    print(f"{'':<4} {'':>5}  {'mflops':>9} {'mflops':>9} {'mflops':>9}")
    for kind in FFT_KINDS:
        for order in sorted({s for (k, _, s) in runs if k == kind}):
            mine = runs.get((kind, "vrks", order))
            peers = [runs.get((kind, p, order)) for p in FFT_PEERS]
            line = f"{kind:<4} {order:>5}  "
            line += " ".join(f"{v[2]:9.0f}" if v else f"{'-':>9}" for v in [mine] + peers) + " "
            for peer, width in zip(peers, (12, 13)):
                ok = mine and peer and peer[2] > 0
                line += f" {mine[2] / peer[2]:{width}.2f}" if ok else f" {'-':>{width}}"
            print(line)


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
    if any(impl == "copy" for (_, impl, _) in runs):
        return convert_table(runs)
    if any(impl in FFT_PEERS for (_, impl, _) in runs):
        return fft_table(runs)

    cells = {}  # (op, bytes) -> text
    for (op, impl, size), (t, rate, _) in runs.items():
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
