#!/usr/bin/python3
"""Converts every notebook under a folder with nbtext, spread over a Dask cluster.

    scripts/nbtext-batch.py INPUT_DIR OUTPUT_DIR [--html | --markdown] [--retry-refused]
                            [--workers N | --scheduler tcp://HOST:8786]

Every *.nb under INPUT_DIR is sent to the workers in batches (one task per
batch); each worker runs the nbtext executable on its files, one process per
notebook, and hands back one record per notebook. The client writes the
records as JSON Lines shards in OUTPUT_DIR (part-*.jsonl), keeps the account
of what they hold in OUTPUT_DIR/records.sqlite, and writes a summary
(summary.json). A second run over the same OUTPUT_DIR converts the notebooks
that are new, whose size or modification time changed, or whose conversion
failed (nbtext missing, over the time limit, killed), and drops the records
of notebooks no longer under INPUT_DIR; refused notebooks keep their record
unless --retry-refused.

It needs Debian's python3-distributed and python3-tqdm (scripts/ensure-tools.sh
batch installs them) and installs nothing itself. Exit status: 0, or 1 when a
notebook failed, or 2 when it could not start (a module or nbtext missing,
bad arguments, an output folder it did not write).

Dask does the scheduling: when a worker process dies, the scheduler runs its
tasks again elsewhere; the client takes one result per task and writes one
record per notebook, so the shards hold no duplicates.
"""
import argparse
import importlib.util
import itertools
import json
import os
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import warnings

HERE = os.path.dirname(os.path.abspath(__file__))
# Where `make run` and `make test` leave the converter in this checkout.
CHECKOUT_NBTEXT = os.path.join(os.path.dirname(HERE), "build", "nbtext")
LEDGER = "records.sqlite"
SUMMARY = "summary.json"
# A notebook that every working nbtext converts: run before any work.
PROBE = b'Notebook[{Cell["nbtext-batch", "Text"]}]\n'
# The nbtext options of each output format that --html and --markdown choose.
FORMAT_OPTIONS = {"text": [], "html": ["-html"], "markdown": ["-markdown"]}


class SetupError(Exception):
    """The run cannot start; its text says what to do."""


def require_modules():
    """Stops with the command that installs them when Dask or tqdm is missing."""
    missing = [package for module, package in (("distributed", "python3-distributed"),
                                                ("tqdm", "python3-tqdm"))
               if importlib.util.find_spec(module) is None]
    if not missing:
        return
    text = (f"{' and '.join(missing)} missing for {sys.executable}; install "
            f"{'it' if len(missing) == 1 else 'them'} with (as root):\n"
            f"  {os.path.join(HERE, 'ensure-tools.sh')} batch")
    if os.path.realpath(sys.executable) != os.path.realpath("/usr/bin/python3"):
        text += "\nand run the script with /usr/bin/python3, which Debian's packages serve"
    raise SetupError(text)


# --- What runs on the workers --------------------------------------------

def resolve(nbtext):
    """The executable that nbtext names on this machine, or None."""
    exe = nbtext if os.sep in nbtext else shutil.which(nbtext)
    return exe if exe is not None and os.access(exe, os.X_OK) else None


def probe(nbtext):
    """Why nbtext cannot convert a notebook on this machine, or None when it can."""
    exe = resolve(nbtext)
    if exe is None:
        return f"{nbtext} is not there or not executable"
    try:
        run = subprocess.run([exe], input=PROBE, capture_output=True, timeout=60)
    except OSError as e:
        return f"{exe} does not start: {e.strerror}"
    except subprocess.TimeoutExpired:
        return f"{exe} did not convert a one-cell notebook within 60 s"
    if run.returncode != 0:
        last = (run.stderr.decode("utf-8", "replace").strip().splitlines() or [""])[-1]
        return f"{exe} exited with status {run.returncode} on a one-cell notebook" + (
            f": {last}" if last else "")
    return None


def probe_worker(nbtext):
    """probe() on a worker, with the worker's host name."""
    reason = probe(nbtext)
    return None if reason is None else f"{socket.gethostname()}: {reason}"


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
    exe = resolve(nbtext)
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

def find_nbtext(given, remote):
    """The nbtext to run: --nbtext, else the one on the PATH, else this
    checkout's build. A bare name is looked up again on each worker, and
    the workers of a running cluster may have one where this machine has not."""
    if given:
        return os.path.abspath(given) if os.sep in given else given
    if shutil.which("nbtext"):
        return "nbtext"
    if os.access(CHECKOUT_NBTEXT, os.X_OK):
        return CHECKOUT_NBTEXT
    if remote:
        return "nbtext"
    raise SetupError(f"no nbtext on the PATH nor at {CHECKOUT_NBTEXT}: build it "
                     "(make run), install it (make deb, then apt-get install "
                     "./build-deb/nbtext_*.deb) or name it with --nbtext PATH")


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


def outcome(status):
    """converted, refused (nbtext's 255) or failed (could not be run, killed, ...)."""
    return "converted" if status == 0 else "refused" if status == 255 else "failed"


def is_shard(name):
    return name.startswith("part-") and name.endswith(".jsonl")


class Ledger:
    """The account of the shards of an output folder, in records.sqlite: for
    each notebook recorded, its size and time when converted, its status, and
    where its line is (shard, offset, length); for each shard, the bytes that
    the rows account for.

    Records are appended to a shard first and their rows committed after, so
    what the rows say is always on disk: on opening, a shard longer than its
    rows say is cut back (the tail of a run stopped before committing), a
    shard shorter or missing loses its rows (its notebooks are converted
    again), and a shard with no row at all (begun, never committed) goes.
    """

    SCHEMA = """
        CREATE TABLE IF NOT EXISTS shards (name TEXT PRIMARY KEY, bytes INTEGER NOT NULL);
        CREATE TABLE IF NOT EXISTS records (
            path TEXT PRIMARY KEY, size INTEGER NOT NULL, mtime_ns INTEGER NOT NULL,
            format TEXT NOT NULL, status INTEGER NOT NULL,
            shard TEXT NOT NULL, offset INTEGER NOT NULL, length INTEGER NOT NULL);
    """

    def __init__(self, out):
        self.out, self.copies = out, 0
        path = os.path.join(out, LEDGER)
        if not os.path.exists(path) and any(is_shard(n) for n in os.listdir(out)):
            raise SetupError(f"{out} holds shards but no {LEDGER}: it was not written "
                             "by this version of nbtext-batch; write to another folder")
        self.db = sqlite3.connect(path)
        self.db.executescript(self.SCHEMA)
        self.reconcile()

    def reconcile(self):
        on_disk = {n for n in os.listdir(self.out) if is_shard(n)}
        for name, committed in self.db.execute("SELECT name, bytes FROM shards").fetchall():
            path = os.path.join(self.out, name)
            size = os.path.getsize(path) if name in on_disk else -1
            on_disk.discard(name)
            if size > committed:
                os.truncate(path, committed)
            elif size < committed:
                self.forget_shard(name)
        for name in on_disk:
            os.remove(os.path.join(self.out, name))

    def forget_shard(self, name):
        with self.db:
            self.db.execute("DELETE FROM records WHERE shard = ?", (name,))
            self.db.execute("DELETE FROM shards WHERE name = ?", (name,))
        if os.path.exists(os.path.join(self.out, name)):
            os.remove(os.path.join(self.out, name))

    def formats(self):
        return {f for (f,) in self.db.execute("SELECT DISTINCT format FROM records")}

    def plan(self, notebooks, retry_refused):
        """The notebooks to convert; the records they replace, and those of
        notebooks gone from the input, are dropped."""
        kept = {path: (size, mtime_ns, status) for path, size, mtime_ns, status in
                self.db.execute("SELECT path, size, mtime_ns, status FROM records")}
        todo = []
        for n in notebooks:
            size, mtime_ns, status = kept.pop(n["path"], (None, None, None))
            if ((size, mtime_ns) != (n["size"], n["mtime_ns"]) or outcome(status) == "failed"
                    or (retry_refused and status == 255)):
                todo.append(n)
        self.drop(set(kept) | {n["path"] for n in todo})
        return todo

    def drop(self, paths):
        """Takes the records of paths out of their shards: each shard that held
        one is copied without them to a new shard, which replaces it in one
        transaction; the old file goes after."""
        if not paths:
            return
        where = {}
        for path, shard in self.db.execute("SELECT path, shard FROM records"):
            where.setdefault(shard, []).append(path)
        for shard in sorted({s for s, ps in where.items() if not paths.isdisjoint(ps)}):
            rows = self.db.execute("SELECT path, offset, length FROM records WHERE shard = ? "
                                   "ORDER BY offset", (shard,)).fetchall()
            keep = [r for r in rows if r[0] not in paths]
            if not keep:
                self.forget_shard(shard)
                continue
            self.copies += 1
            name = f"part-{time.strftime('%Y%m%dT%H%M%S')}-{os.getpid()}-kept-{self.copies:05d}.jsonl"
            moved = []
            with open(os.path.join(self.out, shard), "rb") as source, \
                    open(os.path.join(self.out, name), "wb") as target:
                for path, offset, length in keep:
                    source.seek(offset)
                    moved.append((name, target.tell(), path))
                    target.write(source.read(length))
                target.flush()
                os.fsync(target.fileno())
                total = target.tell()
            with self.db:
                self.db.execute("INSERT INTO shards VALUES (?, ?)", (name, total))
                self.db.executemany("UPDATE records SET shard = ?, offset = ? WHERE path = ?", moved)
                self.db.executemany("DELETE FROM records WHERE path = ?",
                                    [(r[0],) for r in rows if r[0] in paths])
                self.db.execute("DELETE FROM shards WHERE name = ?", (shard,))
            os.remove(os.path.join(self.out, shard))

    def commit(self, shard, size, rows):
        """Accounts for rows (path, size, mtime_ns, format, status, offset,
        length) newly written to shard, now size bytes long."""
        with self.db:
            self.db.execute("INSERT OR REPLACE INTO shards VALUES (?, ?)", (shard, size))
            self.db.executemany("INSERT OR REPLACE INTO records VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                                [r[:5] + (shard,) + r[5:] for r in rows])

    def totals(self):
        """How many records say converted, refused and failed."""
        totals = {"converted": 0, "refused": 0, "failed": 0}
        for status, count in self.db.execute("SELECT status, COUNT(*) FROM records GROUP BY status"):
            totals[outcome(status)] += count
        return totals

    def close(self):
        self.db.close()


class ShardWriter:
    """Appends records to this run's shards, starting a new one past
    max_bytes, and accounts for them in the ledger after each batch."""

    def __init__(self, ledger, max_bytes):
        self.ledger, self.out, self.max_bytes = ledger, ledger.out, max_bytes
        self.stamp = time.strftime("%Y%m%dT%H%M%S") + f"-{os.getpid()}"
        self.index, self.file, self.name, self.names = 0, None, None, []

    def write_batch(self, records):
        rows = []
        for r in records:
            if self.file is None or self.file.tell() >= self.max_bytes:
                self.close()
                self.index += 1
                self.name = f"part-{self.stamp}-{self.index:05d}.jsonl"
                self.names.append(self.name)
                self.file = open(os.path.join(self.out, self.name), "wb")
            line = (json.dumps(r, ensure_ascii=False) + "\n").encode("utf-8")
            rows.append((r["path"], r["size"], r["mtime_ns"], r["format"], r["status"],
                         self.file.tell(), len(line)))
            self.file.write(line)
            if self.file.tell() >= self.max_bytes:
                self.account(rows)
                rows = []
        self.account(rows)

    def account(self, rows):
        if rows:
            self.file.flush()
            self.ledger.commit(self.name, self.file.tell(), rows)

    def close(self):
        if self.file:
            self.file.flush()
            os.fsync(self.file.fileno())
            self.file.close()
            self.file = None


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


def start_client(args):
    import logging
    from distributed import Client, LocalCluster
    if args.scheduler:
        return Client(args.scheduler), None
    cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1, processes=True,
                           dashboard_address=None, silence_logs=logging.ERROR)
    return Client(cluster), cluster


def check_workers(client, nbtext):
    """Stops before any work when a worker of a running cluster cannot run nbtext."""
    reasons = [r for r in client.run(probe_worker, nbtext).values() if r]
    if reasons:
        raise SetupError("nbtext does not run on every worker:\n  " + "\n  ".join(sorted(reasons)))


def task_items(batch, send_files):
    """What a task carries for each notebook: its name, size and time, and
    with --send-files its bytes."""
    items = []
    for n in batch:
        item = {k: n[k] for k in ("path", "file", "size", "mtime_ns")}
        if send_files:
            try:
                with open(n["file"], "rb") as f:
                    item["data"] = f.read()
            except OSError:
                pass  # the worker records it as unreadable
        items.append(item)
    return items


def failed_task(batch, error):
    """The records of a batch whose task failed as a whole (its workers kept dying)."""
    return [{"path": n["path"], "size": n["size"], "mtime_ns": n["mtime_ns"], "status": -1,
             "output": "", "log": f"the task failed: {error!r}", "seconds": 0.0} for n in batch]


class Progress:
    """This run's counts, on a progress bar unless --quiet."""

    def __init__(self, total, quiet):
        from tqdm import tqdm
        self.counts = {"converted": 0, "refused": 0, "failed": 0}
        self.bytes_out = 0
        self.bar = tqdm(total=total, unit="nb", disable=quiet or not total, file=sys.stderr,
                        smoothing=0.1, dynamic_ncols=True)

    def add(self, records):
        for r in records:
            self.counts[outcome(r["status"])] += 1
            self.bytes_out += len(r["output"].encode("utf-8"))
        self.bar.update(len(records))
        self.bar.set_postfix(refused=self.counts["refused"], failed=self.counts["failed"],
                             refresh=False)

    def close(self):
        self.bar.close()


def convert(args, nbtext, todo, writer, progress):
    """Runs the batches of todo on the cluster and writes their records;
    returns the seconds spent starting or joining the cluster."""
    from distributed import as_completed
    # With --send-files a task carries its notebooks' bytes on purpose: it can
    # then run again on any worker when the one that held it is lost.
    warnings.filterwarnings("ignore", message="Large object")
    options = FORMAT_OPTIONS[args.format]
    joining = time.perf_counter()
    client, cluster = start_client(args)
    start_seconds = time.perf_counter() - joining
    try:
        if args.scheduler:
            check_workers(client, nbtext)
        threads = max(1, sum(client.nthreads().values()))
        pending = iter(make_batches(todo, args.batch_files, int(args.batch_mb * 1e6)))
        batches = {}

        def submit(batch):
            future = client.submit(convert_batch, nbtext, options, task_items(batch, args.send_files),
                                   args.timeout, pure=False, retries=2)
            batches[future.key] = batch
            return future

        # A bounded window of tasks in flight keeps the client's memory flat
        # with --send-files and still keeps every worker thread busy.
        running = as_completed([submit(b) for b in itertools.islice(pending, max(4 * threads, 8))])
        seen = set()
        for future in running:
            batch = batches.pop(future.key)
            try:
                records = future.result()
            except Exception as error:  # noqa: BLE001 - any failure of the task
                records = failed_task(batch, error)
            future.release()
            records = [dict(r, format=args.format) for r in records if r["path"] not in seen]
            seen.update(r["path"] for r in records)
            writer.write_batch(records)
            progress.add(records)
            nxt = next(pending, None)
            if nxt is not None:
                running.add(submit(nxt))
    finally:
        client.close()
        if cluster:
            cluster.close()
    return start_seconds


def parse_arguments():
    p = argparse.ArgumentParser(
        prog="nbtext-batch",
        description="Converts every *.nb under INPUT_DIR with nbtext on a Dask cluster "
                    "and writes JSON Lines shards and a summary to OUTPUT_DIR.")
    p.add_argument("input", metavar="INPUT_DIR")
    p.add_argument("output", metavar="OUTPUT_DIR")
    output = p.add_mutually_exclusive_group()
    output.add_argument("--html", dest="format", action="store_const", const="html", default="text",
                        help="record the HTML page instead of the text")
    output.add_argument("--markdown", dest="format", action="store_const", const="markdown",
                        help="record the Markdown instead of the text")
    where = p.add_mutually_exclusive_group()
    where.add_argument("--workers", type=int, default=os.cpu_count() or 1,
                       help="start a local cluster of N worker processes (default: one per core)")
    where.add_argument("--scheduler", metavar="ADDRESS", help="join a running cluster, e.g. tcp://host:8786")
    p.add_argument("--nbtext", metavar="PATH",
                   help="the nbtext executable (default: nbtext on the PATH, else this checkout's "
                        "build/nbtext)")
    p.add_argument("--retry-refused", action="store_true",
                   help="convert again the notebooks that nbtext refused in earlier runs")
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
    if not os.path.isdir(args.input):
        p.error(f"{args.input} is not a folder")
    return args


def prepare(args):
    """Checks all that the run needs before any work: the modules, nbtext,
    the output folder and its ledger. Returns (nbtext, ledger)."""
    require_modules()
    nbtext = find_nbtext(args.nbtext, remote=bool(args.scheduler))
    if not args.scheduler:
        reason = probe(nbtext)  # the local workers see what this process sees
        if reason:
            raise SetupError(f"nbtext does not run: {reason}")
    os.makedirs(args.output, exist_ok=True)
    ledger = Ledger(args.output)
    others = ledger.formats() - {args.format}
    if others:
        ledger.close()
        raise SetupError(f"{args.output} holds {', '.join(sorted(others))} records; "
                         f"write {args.format} to another folder")
    return nbtext, ledger


def write_summary(args, notebooks, todo, progress, totals, start_seconds, wall, shards):
    """summary.json: this run's counts, and the totals of all the records kept."""
    bytes_in = sum(n["size"] for n in todo)
    summary = {
        "input": os.path.abspath(args.input),
        "format": args.format,
        "files": len(notebooks),
        "up_to_date": len(notebooks) - len(todo),
        **progress.counts,
        "records": totals,
        "bytes_in": bytes_in,
        "bytes_out": progress.bytes_out,
        "wall_seconds": round(wall, 3),
        "start_seconds": round(start_seconds, 3),
        "files_per_second": round(len(todo) / wall, 2) if wall > 0 else None,
        "megabytes_per_second": round(bytes_in / 1e6 / wall, 3) if wall > 0 else None,
        "shards": shards,
    }
    with open(os.path.join(args.output, SUMMARY), "w", encoding="utf-8") as f:
        json.dump(summary, f, indent=1)
        f.write("\n")
    return summary


def closing_line(summary):
    return (f"{summary['files']} notebooks: {summary['converted']} converted, "
            f"{summary['refused']} refused, {summary['failed']} failed in this run, "
            f"{summary['up_to_date']} up to date; {summary['wall_seconds']:.1f} s, "
            f"{summary['files_per_second']} files/s, {summary['megabytes_per_second']} MB/s")


def main():
    args = parse_arguments()
    started = time.perf_counter()
    try:
        nbtext, ledger = prepare(args)
        notebooks = find_notebooks(args.input)
        todo = ledger.plan(notebooks, args.retry_refused)
        progress = Progress(len(todo), args.quiet)
        writer = ShardWriter(ledger, int(args.shard_mb * 1e6))
        try:
            start_seconds = convert(args, nbtext, todo, writer, progress) if todo else 0.0
        finally:
            writer.close()
            progress.close()
    except SetupError as e:
        print(f"nbtext-batch: {e}", file=sys.stderr)
        return 2
    summary = write_summary(args, notebooks, todo, progress, ledger.totals(), start_seconds,
                            time.perf_counter() - started, writer.names)
    ledger.close()
    if not args.quiet:
        print(closing_line(summary), file=sys.stderr)
    return 1 if progress.counts["failed"] else 0


if __name__ == "__main__":
    sys.exit(main())
