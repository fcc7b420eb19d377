#!/usr/bin/python3
"""Converts every notebook under a folder with nbtext, spread over a Dask cluster.

    scripts/nbtext-batch.py INPUT_DIR OUTPUT_DIR [--html]
                            [--workers N | --scheduler tcp://HOST:8786]

Every *.nb under INPUT_DIR is sent to the workers in batches (one task per
batch); each worker runs the nbtext executable on its files, one process per
notebook, and hands back one record per notebook. The client writes the
records as JSON Lines shards in OUTPUT_DIR (part-*.jsonl) and a summary
(summary.json). A second run over the same OUTPUT_DIR converts only the
notebooks that are new or whose size or modification time changed, and drops
the records of notebooks no longer under INPUT_DIR.

Dask does the scheduling: when a worker process dies, the scheduler runs its
tasks again elsewhere; the client takes one result per task and writes one
record per notebook, so the shards hold no duplicates.
"""
import argparse
import itertools
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import warnings

HERE = os.path.dirname(os.path.abspath(__file__))
SUMMARY = "summary.json"


def ensure_modules():
    """Imports Dask and tqdm, installing Debian's packages when they are missing."""
    try:
        import distributed  # noqa: F401
        import tqdm  # noqa: F401
        return
    except ImportError:
        pass
    if os.environ.get("NBTEXT_BATCH_REEXEC"):
        sys.exit("nbtext-batch: python3-distributed and python3-tqdm are needed "
                 "(scripts/ensure-tools.sh batch installs them)")
    subprocess.run([os.path.join(HERE, "ensure-tools.sh"), "batch"], check=True)
    os.environ["NBTEXT_BATCH_REEXEC"] = "1"
    # Debian's packages serve Debian's interpreter, whichever one started us.
    python = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable
    os.execv(python, [python, os.path.abspath(__file__)] + sys.argv[1:])


# --- What runs on the workers --------------------------------------------

class Watchdog:
    """Kills the nbtext process of a batch that runs past the timeout.

    One thread for a whole batch, looking once a second: subprocess's own
    timeout makes the wait for every process a loop of short sleeps, which
    cost about a millisecond a notebook, a sixth of the work on the corpus.
    """

    def __init__(self, timeout):
        self.timeout = timeout
        self.lock = threading.Lock()
        self.process, self.started, self.fired = None, 0.0, False
        self.stopped = threading.Event()
        threading.Thread(target=self.watch, daemon=True).start()

    def watch(self):
        while not self.stopped.wait(min(1.0, self.timeout)):
            with self.lock:
                if self.process is not None and time.monotonic() - self.started > self.timeout:
                    # The whole group: whatever the process started goes too,
                    # and with it the last holder of the output pipes.
                    try:
                        os.killpg(self.process.pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass
                    self.fired = True

    def run(self, argv):
        """(status, stdout, stderr) of argv, or None when it was killed."""
        process = subprocess.Popen(argv, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, start_new_session=True)
        with self.lock:
            self.process, self.started, self.fired = process, time.monotonic(), False
        try:
            stdout, stderr = process.communicate()
        finally:
            with self.lock:
                self.process = None
                fired = self.fired
        return None if fired else (process.returncode, stdout, stderr)

    def stop(self):
        self.stopped.set()


def convert_one(exe, options, item, watchdog):
    """Runs nbtext on one notebook and returns its record (without the timing)."""
    record = {"path": item["path"], "size": item["size"], "mtime_ns": item["mtime_ns"]}
    if exe is None:
        return dict(record, status=-1, output="", log=f"nbtext is not installed on {socket.gethostname()}")
    path = item["file"]
    scratch = None
    if "data" in item:  # the client sent the bytes: no shared file system
        scratch = tempfile.mkdtemp(prefix="nbtext-batch-")
        path = os.path.join(scratch, os.path.basename(item["path"]))
        with open(path, "wb") as f:
            f.write(item["data"])
    try:
        # nbtext skips a file it cannot open and exits 0; say so instead.
        try:
            with open(path, "rb"):
                pass
        except OSError as e:
            return dict(record, status=-1, output="", log=f"cannot read {item['path']}: {e.strerror}")
        run = watchdog.run([exe, *options, path])
        if run is None:
            return dict(record, status=-1, output="", log=f"nbtext took over {watchdog.timeout:g} s")
        status, stdout, stderr = run
        # Standard error holds the "Converting FILE" announcement, then any log lines.
        log = [line for line in stderr.decode("utf-8", "replace").splitlines()
               if line and not line.startswith("Converting ")]
        log = "\n".join(log)
        if scratch:
            log = log.replace(path, item["path"])
        try:
            output = stdout.decode("utf-8")
        except UnicodeDecodeError:
            output = stdout.decode("utf-8", "replace")
            record["output_lossy"] = True
        return dict(record, status=status, output=output, log=log)
    finally:
        if scratch:
            shutil.rmtree(scratch, ignore_errors=True)


def convert_batch(nbtext, options, items, timeout):
    """A task: converts a batch of notebooks in turn and returns their records."""
    exe = nbtext if os.sep in nbtext else shutil.which(nbtext)
    if exe is not None and not os.access(exe, os.X_OK):
        exe = None
    records = []
    watchdog = Watchdog(timeout)
    try:
        for item in items:
            start = time.perf_counter()
            record = convert_one(exe, options, item, watchdog)
            record["seconds"] = round(time.perf_counter() - start, 6)
            records.append(record)
    finally:
        watchdog.stop()
    return records


# --- What the client does ------------------------------------------------

def find_notebooks(root):
    """Every *.nb under root, as items keyed by the path relative to root."""
    found = []
    for folder, dirs, files in os.walk(root):
        dirs.sort()
        for name in sorted(files):
            if not name.endswith(".nb"):
                continue
            full = os.path.join(folder, name)
            try:
                st = os.stat(full)
            except OSError:
                continue
            rel = os.path.relpath(full, root).replace(os.sep, "/")
            found.append({"path": rel, "file": full, "size": st.st_size, "mtime_ns": st.st_mtime_ns})
    return found


def read_shards(out):
    """The records kept in out: {path: (size, mtime_ns, format)}, and the shards
    that hold a line that is not a whole record (a run stopped while writing)."""
    kept, broken = {}, set()
    for name in sorted(os.listdir(out)):
        if not (name.startswith("part-") and name.endswith(".jsonl")):
            continue
        with open(os.path.join(out, name), encoding="utf-8") as f:
            for line in f:
                try:
                    r = json.loads(line)
                    kept[r["path"]] = (r["size"], r["mtime_ns"], r.get("format"), name)
                except (ValueError, KeyError, TypeError):
                    broken.add(name)
    return kept, broken


def rewrite_shards(out, names, drop):
    """Rewrites the named shards without the records of the paths in drop
    (and without broken lines); a shard left empty is removed."""
    for name in names:
        path = os.path.join(out, name)
        kept = []
        with open(path, encoding="utf-8") as f:
            for line in f:
                try:
                    if json.loads(line)["path"] not in drop:
                        kept.append(line)
                except (ValueError, KeyError, TypeError):
                    pass
        if not kept:
            os.remove(path)
            continue
        with open(path + ".tmp", "w", encoding="utf-8") as f:
            f.writelines(kept)
            f.flush()
            os.fsync(f.fileno())
        os.replace(path + ".tmp", path)


def make_batches(items, max_files, max_bytes):
    """Largest notebooks first, so that the long tasks start early, cut into
    batches of at most max_files notebooks and about max_bytes."""
    batches, batch, size = [], [], 0
    for item in sorted(items, key=lambda i: -i["size"]):
        if batch and (len(batch) >= max_files or size + item["size"] > max_bytes):
            batches.append(batch)
            batch, size = [], 0
        batch.append(item)
        size += item["size"]
    if batch:
        batches.append(batch)
    return batches


class ShardWriter:
    """Appends records to this run's shards, starting a new one past max_bytes."""

    def __init__(self, out, max_bytes):
        self.out, self.max_bytes = out, max_bytes
        self.stamp = time.strftime("%Y%m%dT%H%M%S") + f"-{os.getpid()}"
        self.index, self.file, self.written, self.names = 0, None, 0, []

    def write(self, record):
        if self.file is None or self.written >= self.max_bytes:
            self.close()
            self.index += 1
            name = f"part-{self.stamp}-{self.index:05d}.jsonl"
            self.names.append(name)
            self.file = open(os.path.join(self.out, name), "w", encoding="utf-8")
            self.written = 0
        line = json.dumps(record, ensure_ascii=False) + "\n"
        self.file.write(line)
        self.written += len(line)

    def flush(self):
        if self.file:
            self.file.flush()

    def close(self):
        if self.file:
            self.file.flush()
            os.fsync(self.file.fileno())
            self.file.close()
            self.file = None


def start_client(args):
    import logging
    from distributed import Client, LocalCluster
    if args.scheduler:
        return Client(args.scheduler), None
    cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1, processes=True,
                           dashboard_address=None, silence_logs=logging.ERROR)
    return Client(cluster), cluster


def parse_arguments():
    p = argparse.ArgumentParser(
        prog="nbtext-batch",
        description="Converts every *.nb under INPUT_DIR with nbtext on a Dask cluster "
                    "and writes JSON Lines shards and a summary to OUTPUT_DIR.")
    p.add_argument("input", metavar="INPUT_DIR")
    p.add_argument("output", metavar="OUTPUT_DIR")
    p.add_argument("--html", action="store_true", help="record the HTML page instead of the text")
    where = p.add_mutually_exclusive_group()
    where.add_argument("--workers", type=int, default=os.cpu_count() or 1,
                       help="start a local cluster of N worker processes (default: one per core)")
    where.add_argument("--scheduler", metavar="ADDRESS", help="join a running cluster, e.g. tcp://host:8786")
    p.add_argument("--nbtext", default="nbtext",
                   help="the nbtext executable on the workers (default: nbtext on their PATH)")
    p.add_argument("--send-files", action="store_true",
                   help="send each notebook's bytes to the workers, for workers without the input's file system")
    p.add_argument("--batch-files", type=int, default=32, help="notebooks per task at most (default 32)")
    p.add_argument("--batch-mb", type=float, default=16, help="megabytes per task, about (default 16)")
    p.add_argument("--shard-mb", type=float, default=256, help="megabytes per shard, about (default 256)")
    p.add_argument("--timeout", type=float, default=600, help="seconds one notebook may take (default 600)")
    p.add_argument("--quiet", action="store_true", help="no progress bar and no closing line")
    args = p.parse_args()
    if args.workers < 1 or args.batch_files < 1:
        p.error("--workers and --batch-files take a positive number")
    if os.sep in args.nbtext:
        args.nbtext = os.path.abspath(args.nbtext)
    return args


def main():
    args = parse_arguments()
    ensure_modules()
    from distributed import as_completed
    from tqdm import tqdm
    # With --send-files a task carries its notebooks' bytes on purpose: it can
    # then run again on any worker when the one that held it is lost.
    warnings.filterwarnings("ignore", message="Large object")

    if not os.path.isdir(args.input):
        sys.exit(f"nbtext-batch: {args.input} is not a folder")
    os.makedirs(args.output, exist_ok=True)
    fmt = "html" if args.html else "text"
    started = time.perf_counter()

    notebooks = find_notebooks(args.input)
    kept, broken = read_shards(args.output)
    formats = {f for (_, _, f, _) in kept.values()}
    if formats - {fmt}:
        sys.exit(f"nbtext-batch: {args.output} holds {', '.join(sorted(formats - {fmt}))} "
                 f"records; write {fmt} to another folder")
    current = {n["path"]: n for n in notebooks}
    todo = [n for n in notebooks
            if kept.get(n["path"], (None, None))[:2] != (n["size"], n["mtime_ns"])]
    # Records to replace (changed notebooks) or to forget (notebooks gone).
    drop = {p for p in kept if p not in current} | {n["path"] for n in todo if n["path"] in kept}
    stale = {kept[p][3] for p in drop} | broken
    if stale:
        rewrite_shards(args.output, sorted(stale), drop)

    options = ["-html"] if args.html else []
    counts = {"converted": 0, "refused": 0, "failed": 0}
    bytes_out = 0
    writer = ShardWriter(args.output, int(args.shard_mb * 1e6))
    seen = set()
    client = cluster = None
    start_seconds = 0.0
    try:
        if todo:
            joining = time.perf_counter()
            client, cluster = start_client(args)
            start_seconds = time.perf_counter() - joining
            threads = max(1, sum(client.nthreads().values()))
            batches = make_batches(todo, args.batch_files, int(args.batch_mb * 1e6))
            # A bounded window of tasks in flight keeps the client's memory flat
            # with --send-files and still keeps every worker thread busy.
            window = max(4 * threads, 8)
            pending = iter(batches)

            def submit(batch):
                items = []
                for n in batch:
                    item = {k: n[k] for k in ("path", "file", "size", "mtime_ns")}
                    if args.send_files:
                        try:
                            with open(n["file"], "rb") as f:
                                item["data"] = f.read()
                        except OSError:
                            pass  # the worker records it as unreadable
                    items.append(item)
                return client.submit(convert_batch, args.nbtext, options, items, args.timeout,
                                     pure=False, retries=2)

            running = as_completed([submit(b) for b in itertools.islice(pending, window)])
            bar = tqdm(total=len(todo), unit="nb", disable=args.quiet, file=sys.stderr,
                       smoothing=0.1, dynamic_ncols=True)
            for future in running:
                records = future.result()
                future.release()
                for r in records:
                    if r["path"] in seen:
                        continue
                    seen.add(r["path"])
                    r["format"] = fmt
                    writer.write(r)
                    bytes_out += len(r["output"].encode("utf-8"))
                    key = ("converted" if r["status"] == 0 else
                           "refused" if r["status"] == 255 else "failed")
                    counts[key] += 1
                writer.flush()
                bar.update(len(records))
                bar.set_postfix(refused=counts["refused"], failed=counts["failed"], refresh=False)
                nxt = next(pending, None)
                if nxt is not None:
                    running.add(submit(nxt))
            bar.close()
    finally:
        writer.close()
        if client:
            client.close()
        if cluster:
            cluster.close()

    wall = time.perf_counter() - started
    bytes_in = sum(n["size"] for n in todo)
    summary = {
        "input": os.path.abspath(args.input),
        "format": fmt,
        "files": len(notebooks),
        "up_to_date": len(notebooks) - len(todo),
        **counts,
        "bytes_in": bytes_in,
        "bytes_out": bytes_out,
        "wall_seconds": round(wall, 3),
        "start_seconds": round(start_seconds, 3),
        "files_per_second": round(len(todo) / wall, 2) if wall > 0 else None,
        "megabytes_per_second": round(bytes_in / 1e6 / wall, 3) if wall > 0 else None,
        "shards": writer.names,
    }
    with open(os.path.join(args.output, SUMMARY), "w", encoding="utf-8") as f:
        json.dump(summary, f, indent=1)
        f.write("\n")
    if not args.quiet:
        print(f"{summary['files']} notebooks: {len(todo)} converted in this run "
              f"({counts['refused']} refused, {counts['failed']} failed), "
              f"{summary['up_to_date']} up to date; {wall:.1f} s, "
              f"{summary['files_per_second']} files/s, {summary['megabytes_per_second']} MB/s",
              file=sys.stderr)
    return 1 if counts["failed"] else 0


if __name__ == "__main__":
    sys.exit(main())
