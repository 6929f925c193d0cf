#!/usr/bin/python3
"""kvcart transform on a file of points, beside PROJ's cs2cs and cct and
beside reading and writing the same text, file to file.

    /usr/bin/python3 bench/cli_bench.py --kvcart <build>/kvcart [--points N]
        [--repeat K]

A file of N points (1 million by default), longitude and latitude with 7
decimals over UTM zone 32's area (6..12 E, 0..84 N, fixed seed), is converted
to UTM zone 32 (WGS 84) by:
- kvcart transform LONG/LAT UTM-32 with its default threads (the cores) and
  with --threads 1;
- cs2cs +proj=longlat +datum=WGS84 +to +proj=utm +zone=32 +datum=WGS84
  -f %.4f, whose numbers are checked once against kvcart's (within 1 mm);
- cct -z0 -t0 +proj=utm +zone=32 +ellps=WGS84 (four columns: another format);
and, for what reading and writing the text costs alone:
- kvcart transform LONG/LAT LONG/LAT, which reads, parses, converts,
  formats (9 decimals, so its output is not its input) and writes every line;
- cat.
Each is timed as the best of K runs (wall clock, input and output files on
the same disk, the output file new each time), with its CPU time (user and
system) and peak resident memory (GNU time's, when /usr/bin/time is
installed). One table: seconds, points per second, how many times faster than
cs2cs, the time over the identity run's, CPU seconds and memory. On a machine
shared with other work the CPU seconds are the steadier figure.
"""

import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time


def make_points(path, count):
    rng = random.Random(32)
    with open(path, "w") as f:
        f.writelines("%.7f %.7f\n" % (rng.uniform(6.0, 12.0), rng.uniform(0.0, 84.0)) for _ in range(count))


GNU_TIME = "/usr/bin/time"


def run(command, source, target, memory_file):
    """Wall seconds, peak resident kilobytes and CPU seconds (user and system)
    of one run, stdin from source and stdout to a new target. The peak and the
    CPU time come from GNU time when it is installed (a child's own rusage
    would also count this interpreter, which it was forked from), else 0."""
    if os.path.exists(target):
        os.unlink(target)
    measured = os.access(GNU_TIME, os.X_OK)
    if measured:
        command = [GNU_TIME, "-f", "%M %U %S", "-o", memory_file] + command
    with open(source, "rb") as fin, open(target, "wb") as fout:
        start = time.perf_counter()
        process = subprocess.run(command, stdin=fin, stdout=fout, stderr=subprocess.PIPE)
        seconds = time.perf_counter() - start
    if process.returncode != 0:
        sys.exit("%s failed (%d): %s" % (" ".join(command), process.returncode,
                                         process.stderr.decode(errors="replace")[:500]))
    kilobytes, cpu = 0, 0.0
    if measured:
        with open(memory_file) as f:
            fields = f.read().split()[-3:]
            kilobytes, cpu = int(fields[0]), float(fields[1]) + float(fields[2])
    return seconds, kilobytes, cpu


def numbers(line):
    return [float(v) for v in line.split()]


def check_same_points(ours, theirs, lines=1000):
    """The first lines of two outputs give the same eastings and northings
    within 1 mm."""
    with open(ours) as a, open(theirs) as b:
        for i in range(lines):
            x = numbers(a.readline())[:2]
            y = numbers(b.readline())[:2]
            if len(x) != 2 or len(y) != 2 or max(abs(x[0] - y[0]), abs(x[1] - y[1])) > 0.001:
                sys.exit("line %d differs: %s against %s" % (i + 1, x, y))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--kvcart", default="build/kvcart")
    parser.add_argument("--points", type=int, default=1000000)
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--table-out", help="also write the table (markdown) to this file")
    parser.add_argument("--summary-rows-out",
                        help="write the program's rows for the engine table of make bench's summary (same columns: "
                             "nanoseconds per point, ours beside the named reference, the ratio, and the default "
                             "threads' speed-up over one thread)")
    args = parser.parse_args()
    kvcart = os.path.abspath(args.kvcart)
    for tool in ("cs2cs", "cct"):
        if shutil.which(tool) is None:
            sys.exit("%s is not installed (PROJ's command-line tools)" % tool)

    with tempfile.TemporaryDirectory(prefix="kvcart-cli-bench-") as tmp:
        points = os.path.join(tmp, "points.txt")
        make_points(points, args.points)
        rows = [
            ("kvcart transform (default threads)", [kvcart, "transform", "LONG/LAT", "UTM-32"]),
            ("kvcart transform --threads 1", [kvcart, "transform", "LONG/LAT", "UTM-32", "--threads", "1"]),
            ("cs2cs -f %.4f", ["cs2cs", "+proj=longlat", "+datum=WGS84", "+to", "+proj=utm", "+zone=32",
                               "+datum=WGS84", "-f", "%.4f"]),
            ("cct -z0 -t0", ["cct", "-z0", "-t0", "+proj=utm", "+zone=32", "+ellps=WGS84"]),
            ("kvcart identity LONG/LAT LONG/LAT", [kvcart, "transform", "LONG/LAT", "LONG/LAT"]),
            ("cat", ["cat"]),
        ]
        results = {}
        for name, command in rows:
            target = os.path.join(tmp, "out-%d.txt" % len(results))
            best, memory, least = None, 0, None
            for _ in range(args.repeat):
                seconds, rss, cpu = run(command, points, target, os.path.join(tmp, "memory.txt"))
                best = seconds if best is None else min(best, seconds)
                least = cpu if least is None else min(least, cpu)
                memory = max(memory, rss)
            results[name] = (best, memory, target, least)

        # The same points from kvcart and cs2cs; the identity wrote every line
        # in its own 9 decimals (it did not copy its input).
        check_same_points(results["kvcart transform (default threads)"][2], results["cs2cs -f %.4f"][2])
        check_same_points(results["kvcart transform --threads 1"][2], results["cs2cs -f %.4f"][2])
        with open(points) as a, open(results["kvcart identity LONG/LAT LONG/LAT"][2]) as b:
            first, copied = a.readline().split(), b.readline().split()
            if len(copied) != 2 or len(copied[0].split(".")[1]) != 9 or \
                    max(abs(float(u) - float(v)) for u, v in zip(first, copied)) > 1e-9:
                sys.exit("the identity run wrote %s for %s" % (copied, first))

    cs2cs = results["cs2cs -f %.4f"][0]
    identity = results["kvcart identity LONG/LAT LONG/LAT"][0]
    out = []
    out.append("kvcart transform on %d points, file to file, best of %d (%d cores)" %
               (args.points, args.repeat, os.cpu_count() or 1))
    out.append("")
    out.append("| command | seconds | points/s | times cs2cs's speed | time / identity | CPU seconds | peak memory |")
    out.append("|---|---:|---:|---:|---:|---:|---:|")
    for name, _ in rows:
        seconds, memory, _, cpu = results[name]
        out.append("| %s | %.3f | %.2f M | %.1f | %.2f | %.3f | %.1f MB |" %
                   (name, seconds, args.points / seconds / 1e6, cs2cs / seconds, seconds / identity, cpu,
                    memory / 1024.0))
    out.append("")
    out.append("Seconds: wall clock, the best of the runs; CPU seconds: user and system, the least.")
    print("\n".join(out))
    if args.table_out:
        with open(args.table_out, "w") as f:
            f.write("\n".join(out) + "\n")
    if args.summary_rows_out:
        with open(args.summary_rows_out, "w") as f:
            f.write(summary_rows(results, args.points))


def summary_rows(results, points):
    """The program as rows of the engine table: forward by one thread, beside
    cs2cs, cct and the identity run, then by the default threads with its
    speed-up; nanoseconds per point, file to file."""
    ns = {name: seconds / points * 1e9 for name, (seconds, _, _, _) in results.items()}
    one, default = ns["kvcart transform --threads 1"], ns["kvcart transform (default threads)"]
    rows = []
    for label, reference in (("cs2cs", "cs2cs -f %.4f"), ("cct", "cct -z0 -t0"),
                             ("its identity run (reading and writing only)", "kvcart identity LONG/LAT LONG/LAT")):
        theirs = ns[reference]
        rows.append("| Program: kvcart transform, %g M points LONG/LAT to UTM-32, beside %s | %.1f | %.1f | %.2f "
                    "| %.1f | %.1f | – | – | – | – | – |" %
                    (points / 1e6, label, one, theirs, one / theirs, default, one / default))
    return "\n".join(rows) + "\n"


if __name__ == "__main__":
    main()
