#!/usr/bin/env python3
"""Splits Markdown at its headings into chunks for a retrieval pipeline.

    scripts/markdown-chunks.py FILE.md... >chunks.jsonl    (- reads standard input)

Writes one JSON object a line per chunk: "source" (the file), "title" (the
front matter's, or null), "headings" (the path of headings above the chunk,
its own last) and "text" (the chunk's Markdown, its heading line first).
The text before the first heading is a chunk with an empty path. A line in
a fenced code block is never a heading. Python's standard library only.
"""
import json
import re
import sys

HEADING = re.compile(r" {0,3}(#{1,6})(?:[ \t]+(.*?))?(?:[ \t]+#+)?[ \t]*\n?$")
FENCE = re.compile(r" {0,3}(`{3,}|~{3,})")
ESCAPED = re.compile(r"\\([!-/:-@\[-`{-~])")


def unquote(value):
    """A YAML scalar as nbtext writes them: double-quoted with JSON's escapes."""
    try:
        return json.loads(value) if value.startswith('"') else value
    except ValueError:
        return value


def front_matter(lines):
    """The front matter's fields and the number of lines it takes."""
    if not lines or lines[0].rstrip("\n") != "---":
        return {}, 0
    for end, line in enumerate(lines[1:], 1):
        if line.rstrip("\n") == "---":
            fields = {}
            for field in lines[1:end]:   # "key: value"; the items of a list are left out
                key, _, value = field.rstrip("\n").partition(": ")
                if value and not key.startswith((" ", "-")):
                    fields[key] = unquote(value)
            return fields, end + 1
    return {}, 0


def chunks(lines):
    """(headings, text) of each chunk of the Markdown lines."""
    path, body, fence = [], [], None   # path: [(level, heading)]
    for line in lines:
        mark = FENCE.match(line)
        if fence and mark and mark.group(1).startswith(fence) and not line[mark.end():].strip():
            fence = None
        elif not fence and mark:
            fence = mark.group(1)
        heading = None if fence else HEADING.match(line)
        if heading:
            if "".join(body).strip():
                yield [h for _, h in path], "".join(body)
            level = len(heading.group(1))
            while path and path[-1][0] >= level:
                path.pop()
            path.append((level, ESCAPED.sub(r"\1", heading.group(2) or "")))
            body = []
        body.append(line)
    if "".join(body).strip():
        yield [h for _, h in path], "".join(body)


def main(files):
    for name in files or ["-"]:
        with (sys.stdin if name == "-" else open(name, encoding="utf-8")) as f:
            lines = f.readlines()
        fields, start = front_matter(lines)
        for headings, text in chunks(lines[start:]):
            record = {"source": name, "title": fields.get("title"), "headings": headings,
                      "text": text}
            print(json.dumps(record, ensure_ascii=False))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
