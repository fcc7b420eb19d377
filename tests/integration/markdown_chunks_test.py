#!/usr/bin/env python3
"""scripts/markdown-chunks.py over a Markdown file shaped as nbtext writes
them: the heading path of every chunk, and docs/markdown.md showing the
script's own code."""
import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SCRIPT = os.path.join(ROOT, "scripts", "markdown-chunks.py")

MARKDOWN = r'''---
title: "Graphes \"dessinés\""
author: "M. L."
---

# Graphes "dessinés"

Intro text.

## 1\. Matrices

### 1.1. Introduction

A graph *G* = (S, A).

```
f[x_] := x^2
# not a heading
```

### 1.2. Adjacency

````output
```
## still output
```
````

## 2 Laplacian ##

#### 2.0.1. Deep

Text under a skipped level.

### 2.1. Back up

- item
'''

EXPECTED = [
    # heading path, first line, a line the chunk must hold
    (["Graphes \"dessinés\""], "# Graphes \"dessinés\"\n", "Intro text.\n"),
    (["Graphes \"dessinés\"", "1. Matrices"], "## 1\\. Matrices\n", None),
    (["Graphes \"dessinés\"", "1. Matrices", "1.1. Introduction"], "### 1.1. Introduction\n",
     "# not a heading\n"),
    (["Graphes \"dessinés\"", "1. Matrices", "1.2. Adjacency"], "### 1.2. Adjacency\n",
     "## still output\n"),
    (["Graphes \"dessinés\"", "2 Laplacian"], "## 2 Laplacian ##\n", None),
    (["Graphes \"dessinés\"", "2 Laplacian", "2.0.1. Deep"], "#### 2.0.1. Deep\n",
     "Text under a skipped level.\n"),
    (["Graphes \"dessinés\"", "2 Laplacian", "2.1. Back up"], "### 2.1. Back up\n", "- item\n"),
]


class MarkdownChunksTest(unittest.TestCase):
    def run_script(self, markdown):
        with tempfile.TemporaryDirectory() as work:
            path = os.path.join(work, "notebook.md")
            with open(path, "w", encoding="utf-8") as f:
                f.write(markdown)
            run = subprocess.run([sys.executable, SCRIPT, path], capture_output=True, text=True,
                                 check=True)
        return [json.loads(line) for line in run.stdout.splitlines()], path

    def test_heading_paths(self):
        records, path = self.run_script(MARKDOWN)
        # The blank line between the front matter and the first heading is no chunk.
        self.assertEqual([r["headings"] for r in records], [e[0] for e in EXPECTED])
        for record, (_, first, held) in zip(records, EXPECTED):
            with self.subTest(headings=record["headings"]):
                self.assertEqual(record["source"], path)
                self.assertEqual(record["title"], 'Graphes "dessinés"')
                self.assertTrue(record["text"].startswith(first))
                if held:
                    self.assertIn(held, record["text"].splitlines(keepends=True))

    def test_text_before_any_heading(self):
        records, _ = self.run_script("Just text.\n\n# A\n\nmore\n")
        self.assertEqual([(r["headings"], r["title"]) for r in records], [([], None), (["A"], None)])
        self.assertEqual(records[0]["text"], "Just text.\n\n")

    def test_title_beside_a_list_of_authors(self):
        records, _ = self.run_script('---\ntitle: "T: one"\nauthor:\n  - "A"\n  - "B"\n---\n\n# T: one\n')
        self.assertEqual([(r["headings"], r["title"]) for r in records], [(["T: one"], "T: one")])

    def test_the_guide_shows_this_code(self):
        with open(os.path.join(ROOT, "docs", "markdown.md"), encoding="utf-8") as f:
            guide = f.read()
        with open(SCRIPT, encoding="utf-8") as f:
            script = f.read()
        blocks = guide.split("```python\n")[1:]
        self.assertTrue(blocks, "docs/markdown.md shows no Python")
        for block in blocks:
            self.assertIn(block.split("```\n")[0], script)


if __name__ == "__main__":
    unittest.main()
