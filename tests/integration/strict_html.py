#!/usr/bin/python3
"""Every corpus page of nbtext -html parses without a single error in a strict
HTML5 parser, and carries the right title.

  strict_html.py CORPUS NBTEXT [EMULATOR...]

The parser is html5lib (Debian's python3-html5lib, which
scripts/ensure-tools.sh native installs) with strict=True: the first parse
error of any kind fails the page. The page's <title> must be the text of its
first Title cell as the page shows it (the first div of class Title that
shows anything), else the notebook's WindowTitle option, and the page has
no title element when there is neither. The ancient notebooks are refused by
nbtext and skipped. Without a corpus the test is skipped (status 77).
"""
import collections
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from corpus_words import corpus_notebooks, scan  # noqa: E402

SKIPPED = 77
# A few notebooks whose titles a person has read: one from a Title cell
# that the WindowTitle does not override, one from the WindowTitle alone,
# one without either.
SPOT_CHECKS = {
    "020-deploy-variant-physics-paradox.nb": "Galileo's Paradox",
    "029-earthquakes-radio-slider.nb": "NBF InfoKit - Understanding Earthquakes",
    "064-spin-thermodynamics.nb": None,
}
WINDOW_TITLE = re.compile(r'WindowTitle\s*:?->\s*"((?:[^"\\]|\\.)*)"\Z', re.S)


def one_line(text):
    return " ".join(text.split())


def window_title(source):
    """The notebook's own WindowTitle string (not one that code in a cell
    sets for a window it opens), or None."""
    notebook = None
    for head, start, _end, args in scan(source):
        if head == "Notebook" and (notebook is None or start < notebook[0]):
            notebook = (start, args)
    if notebook is None:
        return None
    for option in notebook[1][1:]:
        m = WINDOW_TITLE.match(option)
        if m:
            return one_line(re.sub(r'\\(["\\])', r"\1", m.group(1))) or None
    return None


def shown_text(element):
    """The text of an element as the page shows it, without the placeholders
    that stand for graphics."""
    if element.tag == "table" and one_line("".join(element.itertext())) == "-Graphics-":
        return element.tail or ""
    return (element.text or "") + "".join(shown_text(child) for child in element) + (element.tail or "")


def expected_title(root, source):
    for div in root.iter("div"):
        if "Title" in div.get("class", "").split():
            text = one_line(shown_text(div) if div.tail is None else shown_text(div)[:-len(div.tail)])
            if text:
                return text, "Title cell"
    title = window_title(source)
    return title, "WindowTitle" if title else "none"


def main(corpus, command):
    if not os.path.isfile(os.path.join(corpus, "MANIFEST.tsv")):
        print("SKIPPED: no corpus at %s" % corpus)
        return SKIPPED
    try:
        import html5lib
    except ImportError:
        print("FAILED: %s has no html5lib; scripts/ensure-tools.sh native installs it" % sys.executable)
        return 1
    names = corpus_notebooks(corpus)

    faults, parsed, sources = [], 0, collections.Counter()
    for name in names:
        path = os.path.join(corpus, name)
        run = subprocess.run(command + ["-html", path], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if run.returncode != 0:
            faults.append("%s: nbtext -html ended with status %d" % (name, run.returncode))
            continue
        try:
            root = html5lib.HTMLParser(strict=True, namespaceHTMLElements=False).parse(run.stdout)
        except html5lib.html5parser.ParseError:
            # Once more, leniently, to say what all the errors are.
            lenient = html5lib.HTMLParser(namespaceHTMLElements=False)
            lenient.parse(run.stdout)
            kinds = collections.Counter(code for _pos, code, _data in lenient.errors)
            (line, column), code, _data = lenient.errors[0]
            faults.append("%s: %d parse errors (%s), the first %s at line %d, column %d"
                          % (name, len(lenient.errors), ", ".join("%s %d" % k for k in kinds.items()),
                             code, line, column))
            continue
        parsed += 1

        with open(path, encoding="utf-8", errors="replace") as f:
            want, source = expected_title(root, f.read())
        sources[source] += 1
        titles = [one_line(t.text or "") for t in root.iter("title")]
        got = titles[0] if titles else None
        if len(titles) > 1 or got != want:
            faults.append("%s: title %r, expected %r (from its %s)" % (name, titles or None, want, source))
        if name in SPOT_CHECKS and got != SPOT_CHECKS[name]:
            faults.append("%s: title %r, a person read %r" % (name, got, SPOT_CHECKS[name]))

    print("%d of %d pages parse without an error in html5lib's strict mode" % (parsed, len(names)))
    print("titles: %d from a Title cell, %d from the WindowTitle, %d pages without one"
          % (sources["Title cell"], sources["WindowTitle"], sources["none"]))
    for fault in faults:
        print("  " + fault)
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    # The emulator, when there is one, runs the converter.
    sys.exit(main(sys.argv[1], sys.argv[3:] + [sys.argv[2]]))
