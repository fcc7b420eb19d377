#!/usr/bin/python3
"""Checks the results of a batch conversion against nbtext run alone.

    batch_check.py records NBTEXT INPUT_DIR OUTPUT_DIR [-html | -markdown]
        The JSON Lines shards of OUTPUT_DIR hold exactly one record per *.nb
        under INPUT_DIR, and each record's output, status and format are what
        `NBTEXT [-html | -markdown] FILE` gives on its own; a refused notebook's record
        carries its "could not index file" log line. records.sqlite points
        at each record's line, and the totals of summary.json count them.
    batch_check.py files NBTEXT INPUT_DIR OUTPUT_DIR EXT [-html | -markdown]
        The same for one output file per notebook (OUTPUT_DIR/<path>.EXT).
    batch_check.py summary OUTPUT_DIR KEY=VALUE...
        summary.json holds these values.
"""
import json
import os
import sqlite3
import subprocess
import sys


def notebooks(root):
    for folder, _, files in os.walk(root):
        for name in files:
            if name.endswith(".nb"):
                full = os.path.join(folder, name)
                yield os.path.relpath(full, root).replace(os.sep, "/"), full


def alone(nbtext, options, path):
    run = subprocess.run([nbtext, *options, path], capture_output=True)
    return run.returncode, run.stdout


def read_records(out):
    records, problems = {}, []
    for name in sorted(os.listdir(out)):
        if not (name.startswith("part-") and name.endswith(".jsonl")):
            continue
        with open(os.path.join(out, name), encoding="utf-8") as f:
            for number, line in enumerate(f, 1):
                r = json.loads(line)
                if r["path"] in records:
                    problems.append(f"{r['path']}: recorded twice (again in {name}:{number})")
                records[r["path"]] = r
    return records, problems


def check_account(out, records):
    """The ledger's rows point at the records' lines; the summary's totals count them."""
    problems = []
    db = sqlite3.connect(os.path.join(out, "records.sqlite"))
    rows = db.execute("SELECT path, status, shard, offset, length FROM records").fetchall()
    db.close()
    if sorted(r[0] for r in rows) != sorted(records):
        problems.append(f"records.sqlite has {len(rows)} rows for {len(records)} records")
    for path, status, shard, offset, length in rows:
        with open(os.path.join(out, shard), "rb") as f:
            f.seek(offset)
            line = f.read(length)
        if not line.endswith(b"\n") or json.loads(line).get("path") != path:
            problems.append(f"{path}: records.sqlite points at another line")
        elif records.get(path, {}).get("status") != status:
            problems.append(f"{path}: status {status} in records.sqlite")
    totals = {"converted": 0, "refused": 0, "failed": 0}
    for r in records.values():
        totals["converted" if r["status"] == 0 else "refused" if r["status"] == 255 else "failed"] += 1
    with open(os.path.join(out, "summary.json"), encoding="utf-8") as f:
        summary = json.load(f)
    if summary["records"] != totals:
        problems.append(f"summary: records {summary['records']}, the shards hold {totals}")
    return problems


def check_records(nbtext, root, out, options):
    fmt = {"-html": "html", "-markdown": "markdown"}.get(options[0] if options else None, "text")
    records, problems = read_records(out)
    problems += check_account(out, records)
    expected = dict(notebooks(root))
    for path in sorted(set(records) - set(expected)):
        problems.append(f"{path}: recorded but not in the input")
    for path, full in sorted(expected.items()):
        r = records.get(path)
        if r is None:
            problems.append(f"{path}: no record")
            continue
        status, output = alone(nbtext, options, full)
        if r["status"] != status:
            problems.append(f"{path}: status {r['status']}, alone {status}")
        if r["format"] != fmt:
            problems.append(f"{path}: format {r['format']}, expected {fmt}")
        if r["output"].encode("utf-8") != output:
            problems.append(f"{path}: output differs from nbtext alone")
        if status == 255 and "could not index file" not in r["log"]:
            problems.append(f"{path}: refused without its log line: {r['log']!r}")
        if r["size"] != os.path.getsize(full) or not isinstance(r["seconds"], float):
            problems.append(f"{path}: size or seconds wrong")
    return problems, len(expected)


def check_files(nbtext, root, out, ext, options):
    problems, count = [], 0
    for path, full in sorted(notebooks(root)):
        count += 1
        status, output = alone(nbtext, options, full)
        try:
            with open(os.path.join(out, f"{path}.{ext}"), "rb") as f:
                written = f.read()
        except OSError:
            problems.append(f"{path}: no output file")
            continue
        if written != output:
            problems.append(f"{path}: output differs from nbtext alone (status {status})")
    return problems, count


def check_summary(out, pairs):
    with open(os.path.join(out, "summary.json"), encoding="utf-8") as f:
        summary = json.load(f)
    problems = []
    for pair in pairs:
        key, value = pair.split("=", 1)
        if str(summary.get(key)) != value:
            problems.append(f"summary: {key} is {summary.get(key)}, expected {value}")
    return problems, len(pairs)


def main(argv):
    mode = argv[1]
    if mode == "records":
        problems, count = check_records(argv[2], argv[3], argv[4], argv[5:])
    elif mode == "files":
        problems, count = check_files(argv[2], argv[3], argv[4], argv[5], argv[6:])
    elif mode == "summary":
        problems, count = check_summary(argv[2], argv[3:])
    else:
        sys.exit(f"batch_check: unknown mode {mode}")
    for p in problems[:20]:
        print("  " + p)
    if problems:
        print(f"FAILED: {len(problems)} problems in {count} checked")
        return 1
    print(f"ok: {count} checked")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
