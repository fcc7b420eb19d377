#!/usr/bin/env python3
"""Builds a benchmark notebook of about MEGABYTES million bytes with the
shared generator, read in place from ../shared/tools/make-big-notebook.py.

usage: make-notebook.py OUT.nb MEGABYTES
       make-notebook.py --corpus   (prints the corpus folder)

The generator counts brackets to find each notebook's cell list, and so it
also counts the brackets inside box groups, \\( ... \\), where a bracket is
only text and need not be balanced (one corpus notebook has \\((\\(-x\\) + y\\)).
Its list then runs on past the end and the output does not parse. Here the
generator runs with a bracket matcher that steps over box groups whole.
"""
import os
import runpy
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def find_generator():
    """shared/ stands beside the checkout; a linked work tree looks beside the main one."""
    if "NBTEXT_GENERATOR" in os.environ:
        return os.environ["NBTEXT_GENERATOR"]
    tops = [os.path.join(HERE, "..")]
    try:
        common = subprocess.run(["git", "-C", HERE, "rev-parse", "--path-format=absolute", "--git-common-dir"],
                                capture_output=True, text=True, check=True).stdout.strip()
        tops.append(os.path.dirname(common))
    except (OSError, subprocess.CalledProcessError):
        pass
    for top in tops:
        path = os.path.join(top, "..", "shared", "tools", "make-big-notebook.py")
        if os.path.exists(path):
            return os.path.normpath(path)
    sys.exit("make-notebook: ../shared/tools/make-big-notebook.py not found (set NBTEXT_GENERATOR)")


def skip_group(t, i):
    """t[i:i+2] == "\\(": the index just past the "\\)" that closes it."""
    depth = 0
    while i < len(t):
        if t[i] == '"':
            i = generator["skip_string"](t, i)
            continue
        if t[i] == "\\" and i + 1 < len(t):
            if t[i + 1] == "(":
                depth += 1
            elif t[i + 1] == ")":
                depth -= 1
                if depth == 0:
                    return i + 2
            i += 2
            continue
        i += 1
    return i


def matching(t, i):
    """Index just past the bracket that closes the one at t[i]."""
    depth = 0
    while i < len(t):
        c = t[i]
        if c == '"':
            i = generator["skip_string"](t, i); continue
        if t.startswith("(*", i):
            i = generator["skip_comment"](t, i); continue
        if t.startswith("\\(", i):
            i = skip_group(t, i); continue
        if c in "[{(":
            depth += 1
        elif c in "]})":
            depth -= 1
            if depth == 0:
                return i + 1
        i += 1
    raise ValueError("unbalanced")


GENERATOR = find_generator()
if sys.argv[1:] == ["--corpus"]:
    print(os.path.normpath(os.path.join(os.path.dirname(GENERATOR), "..", "corpus")))
    sys.exit(0)
if len(sys.argv) != 3:
    sys.exit(__doc__)
# run_path hands back a copy of the module's globals; the functions look
# their helpers up in the globals they were defined in.
generator = runpy.run_path(GENERATOR, run_name="make_big_notebook")["main"].__globals__
generator["matching"] = matching
sys.argv = [GENERATOR] + sys.argv[1:]
generator["main"]()
