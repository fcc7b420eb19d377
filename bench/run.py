#!/usr/bin/env python3
"""Whole-process benchmarks of nbtext on notebooks built from the shared
corpus, with the figures that docs/performance.md quotes:

  1. a 100 MB notebook: nbtext (text, -html and -markdown) against `wc -w`,
     the floor of work done once per character;
  2. a 10 KB notebook of the corpus: nbtext against `cat`, for the start-up
     cost;
  3. peak resident memory at 1, 10 and 100 MB;
  4. linearity: one 1 MB notebook's cells repeated 10 and 100 times, so that
     the same material is measured at both sizes.

Usage: bench/run.py [BUILD_DIR]   (default: build; run `make build` first)

The notebooks go to BUILD_DIR/bench-data (or $NBTEXT_BENCH_DATA) and are
reused by later runs. The generator is ../shared/tools/make-big-notebook.py,
beside the corpus ($NBTEXT_SHARED names another shared folder). Timings are
wall-clock medians: run it on a quiet machine (check `uptime`).
"""
import os
import random
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# The smallest notebook the generator writes is one corpus notebook's cells
# (200 KB): the small file is a real notebook of the corpus, read in place.
SMALL_NAME = "077-doc-reference-symbol-page.nb"
# The generator's frame around its cells.
HEAD, TAIL = "Notebook[{\n", "\n}]\n"


def fail(message):
    sys.exit(f"bench: {message}")


def spawn(argv):
    """Runs argv with its output discarded; its exit status."""
    return subprocess.run(argv, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode


def peak_kb(argv):
    """The peak resident memory of argv in KB, through /usr/bin/time: a
    child of this process would count this process's own peak in its
    maximum (its memory until exec), a child of that small program does not."""
    run = subprocess.run(["/usr/bin/time", "-f", "%M", *argv], stdout=subprocess.DEVNULL,
                         stderr=subprocess.PIPE, text=True)
    if run.returncode != 0:
        fail(f"{' '.join(argv)} failed")
    return int(run.stderr.splitlines()[-1])


def missing(path):
    """Whether path is yet to be made (absent, or left empty by a stopped run)."""
    return not (os.path.exists(path) and os.path.getsize(path))


def converts(nbtext, path):
    if spawn([nbtext, path]) != 0:
        fail(f"nbtext cannot convert {path}")
    return path


def generated(nbtext, generator, data, megabytes):
    """A notebook of that many megabytes from the shared generator."""
    path = os.path.join(data, f"notebook-{megabytes}MB.nb")
    if missing(path):
        subprocess.run([sys.executable, generator, path, str(megabytes)], check=True,
                       stdout=sys.stderr)
        converts(nbtext, path)
    return path


def repeated(nbtext, data, source, times):
    """The cells of source, times over, in one notebook."""
    path = os.path.join(data, f"repeat-{times}x1MB.nb")
    if missing(path):
        with open(source, encoding="utf-8", errors="surrogateescape", newline="") as f:
            text = f.read()
        if not (text.startswith(HEAD) and text.endswith(TAIL)):
            fail(f"unexpected generator output in {source}")
        cells = text[len(HEAD):-len(TAIL)]
        with open(path, "w", encoding="utf-8", errors="surrogateescape", newline="") as f:
            f.write(HEAD + ",\n".join([cells] * times) + TAIL)
        converts(nbtext, path)
    return path


def interleaved(runs, *commands):
    """The median wall-clock seconds of each command, the commands run in
    turn, runs rounds after one warm-up round, in a new order each round.

    A virtual machine's speed drifts from one second to the next, and a run
    that follows one which freed much memory pays more for its own page
    faults; taking the commands in turn, in shuffled order, lets both fall
    on all of them alike, so that their ratios hold where consecutive
    batches of runs of one command would not.
    """
    order = random.Random(1)
    times = [[] for _ in commands]
    for round_ in range(runs + 1):
        for i in order.sample(range(len(commands)), len(commands)):
            start = time.perf_counter()
            status = spawn(commands[i])
            if round_:
                times[i].append(time.perf_counter() - start)
            if status != 0:
                fail(f"{' '.join(commands[i])} failed")
    return [statistics.median(t) for t in times]


def megabytes(path):
    return os.path.getsize(path) / 1e6


def main(argv):
    sys.stdout.reconfigure(line_buffering=True)  # each table as it is measured
    build = argv[1] if len(argv) > 1 else os.path.join(ROOT, "build")
    subprocess.run([os.path.join(ROOT, "scripts", "ensure-tools.sh"), "bench"], check=True)
    nbtext = os.path.realpath(os.path.join(build, "nbtext"))
    if not os.access(nbtext, os.X_OK):
        fail(f"{nbtext} is missing; run make build first")
    corpus = subprocess.run([os.path.join(ROOT, "scripts", "corpus-dir.sh"), build],
                            capture_output=True, text=True, check=True).stdout.strip()
    shared = os.environ.get("NBTEXT_SHARED", os.path.dirname(corpus))
    generator = os.path.join(shared, "tools", "make-big-notebook.py")
    small = os.path.join(corpus, SMALL_NAME)
    for needed in (generator, small):
        if not os.path.exists(needed):
            fail(f"no {needed} (set NBTEXT_SHARED or CORPUS)")
    data = os.environ.get("NBTEXT_BENCH_DATA", os.path.join(build, "bench-data"))
    os.makedirs(data, exist_ok=True)
    mb1, mb10, mb100 = (generated(nbtext, generator, data, n) for n in (1, 10, 100))
    rep10, rep100 = (repeated(nbtext, data, mb1, n) for n in (10, 100))

    load = " ".join(open("/proc/loadavg").read().split()[:3])
    print(f"== machine: {os.cpu_count()} cores, load {load}\n")

    print(f"== 1. Throughput on {os.path.basename(mb100)} ({os.path.getsize(mb100)} bytes)")
    rows = [("wc -w", ["wc", "-w", mb100]), ("nbtext", [nbtext, mb100]),
            ("nbtext -html", [nbtext, "-html", mb100]),
            ("nbtext -markdown", [nbtext, "-markdown", mb100])]
    wc, text, html, markdown = interleaved(7, *(command for _, command in rows))
    for (name, _), seconds in zip(rows, (wc, text, html, markdown)):
        print(f"{name:<16} {seconds:8.3f} s {megabytes(mb100) / seconds:6.0f} MB/s")
    print(f"text / wc -w:     {text / wc:.2f}   (target <= 3)")
    print(f"html / text:      {html / text:.2f}   (target <= 1.3)")
    print(f"markdown / text:  {markdown / text:.2f}   (target <= 1.3)\n")

    print(f"== 2. Start-up on {SMALL_NAME} ({os.path.getsize(small)} bytes)")
    cat, alone = interleaved(300, ["cat", small], [nbtext, small])
    print(f"{'cat':<12} {cat * 1e3:8.2f} ms\n{'nbtext':<12} {alone * 1e3:8.2f} ms")
    print(f"nbtext / cat:  {alone / cat:.2f}   (target <= 3)\n")

    print("== 3. Peak memory")
    print(f"{'notebook':<22} {'bytes':>12} {'peak KB':>10} {'peak/size':>10}")
    for path in (mb1, mb10, mb100):
        kb = peak_kb([nbtext, path])
        size = os.path.getsize(path)
        print(f"{os.path.basename(path):<22} {size:12d} {kb:10d} {kb * 1024 / size:10.2f}")
    print("(target: peak/size <= 1.75 at 100 MB)\n")

    print("== 4. Linearity: the same 1 MB of cells, 10 and 100 times")
    t10, t100 = interleaved(7, [nbtext, rep10], [nbtext, rep100])
    ms10, ms100 = t10 * 1e3 / megabytes(rep10), t100 * 1e3 / megabytes(rep100)
    print(f"{os.path.basename(rep10):<22} {ms10:10.1f} ms/MB")
    print(f"{os.path.basename(rep100):<22} {ms100:10.1f} ms/MB")
    print(f"100x / 10x:    {ms100 / ms10:.2f}   (target: within 20 %, 0.8 to 1.2)")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
