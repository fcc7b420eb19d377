#!/usr/bin/env python3
"""Checks nbtext's Markdown over the corpus against its text and its HTML page.

  markdown_check.py NBTEXT [CORPUS_DIR] [--verbose NAME]...
  markdown_check.py --self-test

For every notebook of CORPUS_DIR (default: what scripts/corpus-dir.sh says)
that is not of the ancient era, the Markdown of `NBTEXT -markdown`, its front
matter taken off, is rendered by cmark-gfm as GitHub renders it, and:

  raw HTML   the rendering holds none: without --unsafe, cmark-gfm writes each
             raw HTML block and inline tag as "<!-- raw HTML omitted -->";
  words      the words of the rendering (its text, code included, entities
             decoded, and the address of a link beside its label) are those of
             `NBTEXT` (text) within 1 %: the size of the symmetric difference
             of the two multisets over the number of words of the text. The
             text writes a link whose label is its address as "URL <URL>",
             the Markdown as one autolink: such an address counts once;
  headings   the h1 to h6 of the rendering, in order, are the cells of
             `NBTEXT -html` whose style is Title, Chapter, Section,
             Subsection, Subsubsection or Subsubsubsection, with the same
             words, the highest style used being h1 and each lower style
             used one level down (a style the notebook skips takes no level).

A word is a maximal run of letters and digits; a Greek letter counts as its
name, so that "α" and the text's "\\[Alpha]" are the same word. A table of
the notebooks and a summary go to standard output; --verbose NAME (a file
name, or its number such as 017) checks that notebook alone and shows its
differences: the words each side lacks, the headings and the raw HTML.
Exit status: 0 when every notebook passes, 1 when one fails (they are
listed), 2 when the check cannot run, 77 when there is no corpus.
"""
import argparse
import collections
import html.parser
import os
import re
import shutil
import subprocess
import sys
import unicodedata
import unittest

from corpus_words import convert, corpus_notebooks, parsed

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
NAMED_CHARACTERS = os.path.join(ROOT, "..", "shared", "named-characters.tsv")
CMARK = ["cmark-gfm", "--extension", "table", "--extension", "autolink",
         "--extension", "strikethrough"]
RAW_HTML = "raw HTML omitted"
MAX_DIFFERENCE = 0.01
OUTLINE = ["Title", "Chapter", "Section", "Subsection", "Subsubsection", "Subsubsubsection"]
# Tags inside which a word may go on: the rest (paragraphs, cells, line
# breaks, scripts) end the word before them.
INLINE_TAGS = {"a", "em", "strong", "code", "del", "span", "b", "i", "u", "s", "font",
               "sub", "sup"}


#===--- Words ---------------------------------------------------------------===#

def load_names(path=NAMED_CHARACTERS):
    """(character of each name, name of each Greek letter) from the TSV of
    named characters, whose header names its columns."""
    with open(path, encoding="utf-8") as f:
        rows = [line.rstrip("\n").split("\t") for line in f]
    code, name = rows[0].index("code"), rows[0].index("name")
    characters, greek = {}, {}
    for row in rows[1:]:
        ch = chr(int(row[code], 16))
        characters[row[name]] = ch
        if unicodedata.name(ch, "").startswith("GREEK"):
            greek.setdefault(ch, row[name])
    return characters, greek


class Words:
    """Splits texts into words, named characters and Greek letters mapped alike."""
    ESCAPE = re.compile(r"\\\[([A-Za-z0-9]+)\]")
    WORD = re.compile(r"[^\W_]+")

    def __init__(self, names):
        self.characters, greek = names
        self.greek = {ord(ch): f" {name} " for ch, name in greek.items()}

    def normalize(self, text):
        text = self.ESCAPE.sub(lambda m: self.characters.get(m.group(1), m.group(0)), text)
        return unicodedata.normalize("NFC", text).translate(self.greek)

    def split(self, text):
        return self.WORD.findall(self.normalize(text))

    def count(self, text):
        return collections.Counter(self.split(text))


def link_once(text):
    """The text with "URL <URL>" (a link labelled with its own address) as "URL"."""
    return re.sub(r"(?<!\S)(\S+) <\1>", r"\1", text)


def difference(text_words, markdown_words):
    """The share of the text's words that the Markdown lacks or adds."""
    missing, extra = text_words - markdown_words, markdown_words - text_words
    changed = sum(missing.values()) + sum(extra.values())
    total = sum(text_words.values())
    return changed / total if total else float(changed > 0), missing, extra


#===--- Markdown and its rendering ------------------------------------------===#

def strip_front_matter(markdown):
    """The Markdown after its front matter, or None when the block is not closed."""
    if not markdown.startswith("---\n"):
        return markdown
    end = markdown.find("\n---\n", 3)
    if end < 0:
        return None
    return markdown[end + len("\n---\n"):]


def render(markdown, to="html"):
    run = subprocess.run(CMARK + ["--to", to], input=markdown.encode("utf-8"),
                         capture_output=True, check=True)
    return run.stdout.decode("utf-8")


class Rendering(html.parser.HTMLParser):
    """The text of an HTML rendering, its headings and its raw HTML marks."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.parts, self.headings, self.raw_html = [], [], 0
        self.heading = None  # [level, parts] while inside h1..h6
        self.link = None     # (href, index of its first part) while inside a link

    def handle_starttag(self, tag, attrs):
        if tag not in INLINE_TAGS:
            self.parts.append("\n")
        if re.fullmatch(r"h[1-6]", tag):
            self.heading = [int(tag[1]), []]
        attrs = dict(attrs)
        if tag == "img" and attrs.get("alt"):
            self.handle_data(attrs["alt"])
        if tag == "a":
            self.link = (attrs.get("href") or "", len(self.parts))

    def handle_endtag(self, tag):
        if tag == "a" and self.link:
            # The text writes a web address after its label: count it once,
            # unless it is the label itself (an autolink).
            href, start = self.link
            label = "".join(self.parts[start:]).strip()
            self.link = None
            if href and href not in (label, "http://" + label, "mailto:" + label):
                self.parts.append(" " + href + " ")
        if re.fullmatch(r"h[1-6]", tag) and self.heading:
            self.headings.append((self.heading[0], "".join(self.heading[1])))
            self.heading = None
        if tag not in INLINE_TAGS:
            self.parts.append("\n")

    def handle_data(self, data):
        self.parts.append(data)
        if self.heading:
            self.heading[1].append(data)

    def handle_comment(self, data):
        self.raw_html += RAW_HTML in data

    def text(self):
        return "".join(self.parts)


def parse_rendering(page):
    return parsed(Rendering(), page)


def raw_html_pieces(markdown):
    """(line, source) of each piece of the Markdown that cmark-gfm reads as raw HTML."""
    xml = subprocess.run(CMARK + ["--to", "xml", "--sourcepos"], input=markdown.encode("utf-8"),
                         capture_output=True, check=True).stdout.decode("utf-8")
    return [(int(m.group(1)), html.unescape(m.group(2)).strip())
            for m in re.finditer(r'<html_(?:block|inline) sourcepos="(\d+):[^"]*"[^>]*>(.*?)</html_',
                                 xml, re.S)]


#===--- The page's outline --------------------------------------------------===#

class Outline(html.parser.HTMLParser):
    """(style, text) of each outline cell of an nbtext page: a cell is a
    <div class="STYLE">, and the head's style sheet and title are no cell.
    The page shows a picture as a table holding PICTURE, which the text
    leaves out, and keeps a control's value in an attribute, which the text
    shows: the outline here does as the text does."""
    PICTURE = "-Graphics-"

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.cells, self.divs, self.skip = [], [], 0

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag in ("style", "script", "title"):
            self.skip += 1
        if tag == "input" and attrs.get("value"):
            self.handle_data(" " + attrs["value"] + " ")
        if tag == "div":
            style = (attrs.get("class") or "").split()
            self.divs.append([style[0], []] if style and style[0] in OUTLINE else None)
        elif tag not in INLINE_TAGS and self.divs and self.divs[-1]:
            self.divs[-1][1].append(" ")

    def handle_endtag(self, tag):
        if tag in ("style", "script", "title"):
            self.skip -= 1
        if tag == "div" and self.divs:
            cell = self.divs.pop()
            if cell:
                self.cells.append((cell[0], "".join(cell[1])))

    def handle_data(self, data):
        if not self.skip and data != self.PICTURE:
            for cell in self.divs:
                if cell:
                    cell[1].append(data)


def outline(page):
    return parsed(Outline(), page).cells


def compare_headings(words, cells, headings):
    """Faults of the rendering's headings [(level, text)] against the outline
    cells [(style, text)]. Scripts are <sub> in HTML and run on in the text
    (m<sub>ij</sub>, mij), so the words are compared without their breaks."""
    used = sorted({OUTLINE.index(style) for style, _ in cells})
    expected = [(used.index(OUTLINE.index(style)) + 1, text) for style, text in cells]
    faults = []
    for i in range(max(len(expected), len(headings))):
        want = expected[i] if i < len(expected) else None
        got = headings[i] if i < len(headings) else None
        if want is None or got is None:
            faults.append(f"heading {i + 1}: expected {want}, got {got}")
        elif "".join(words.split(want[1])) != "".join(words.split(got[1])):
            faults.append(f"heading {i + 1}: expected {want[1].strip()!r}, got {got[1].strip()!r}")
        elif want[0] != got[0]:
            faults.append(f"heading {i + 1} {got[1].strip()!r}: level h{got[0]}, expected h{want[0]}")
    return faults


#===--- One notebook --------------------------------------------------------===#

def check_notebook(nbtext, words, path):
    """A dict of the measures of one notebook, its faults among them."""
    result = {"faults": [], "words": 0, "difference": None, "raw_html": 0, "headings": None}
    outputs = {}
    for option in ("", "-markdown", "-html"):
        status, outputs[option] = convert(nbtext, path, *filter(None, [option]))
        if status:
            result["faults"].append(f"nbtext {option or '(text)'} exited with status {status}")
    if result["faults"]:
        return result
    body = strip_front_matter(outputs["-markdown"])
    if body is None:
        result["faults"].append("the front matter is not closed by a --- line")
        return result
    rendering = parse_rendering(render(body))
    text_words = words.count(link_once(outputs[""]))
    share, missing, extra = difference(text_words, words.count(rendering.text()))
    heading_faults = compare_headings(words, outline(outputs["-html"]), rendering.headings)
    result.update(words=sum(text_words.values()), difference=share, missing=missing, extra=extra,
                  raw_html=rendering.raw_html, headings=heading_faults, body=body)
    if rendering.raw_html:
        result["faults"].append(f"{rendering.raw_html} pieces of raw HTML")
    if share > MAX_DIFFERENCE:
        result["faults"].append(f"the words differ by {share:.2%}")
    if heading_faults:
        result["faults"].append(f"{len(heading_faults)} heading faults")
    return result


def show_details(name, result, limit=40):
    print(f"\n== {name}")
    for fault in result["faults"]:
        print(f"  fault: {fault}")
    if result["difference"] is None:
        return
    for label, counter in (("in the text, not in the Markdown", result["missing"]),
                           ("in the Markdown, not in the text", result["extra"])):
        common = counter.most_common()
        print(f"  {sum(counter.values())} words {label} ({len(common)} distinct):")
        for word, count in common[:limit]:
            print(f"    {count:5d}  {word}")
        if len(common) > limit:
            print(f"    ... {len(common) - limit} more")
    for fault in result["headings"][:limit]:
        print(f"  {fault}")
    for line, source in raw_html_pieces(result["body"])[:limit]:
        print(f"  raw HTML at line {line} (front matter off): {source[:100]!r}")


#===--- The corpus ----------------------------------------------------------===#

def matches(name, wanted):
    return name == wanted or name.split("-", 1)[0] == wanted


def check_corpus(nbtext, corpus, verbose):
    if not os.path.isfile(os.path.join(corpus, "MANIFEST.tsv")):
        print(f"SKIPPED: no corpus at {corpus}")
        return 77
    if not shutil.which(CMARK[0]):
        print(f"FAILED: {CMARK[0]} is missing; install it with (as root): "
              f"{os.path.join(ROOT, 'scripts', 'ensure-tools.sh')} native")
        return 2
    if not os.access(nbtext, os.X_OK):
        print(f"FAILED: {nbtext} is not built (run make test first)")
        return 2
    # The table of named characters lies beside the corpus.
    names_file = os.path.join(os.path.dirname(os.path.abspath(corpus)), "named-characters.tsv")
    if not os.path.isfile(names_file):
        print(f"FAILED: no {names_file} beside the corpus")
        return 2
    words = Words(load_names(names_file))
    names = corpus_notebooks(corpus)
    unknown = [v for v in verbose if not any(matches(n, v) for n in names)]
    if unknown:
        print(f"FAILED: no notebook {', '.join(unknown)} in {corpus}")
        return 2
    if verbose:
        names = [n for n in names if any(matches(n, v) for v in verbose)]
    width = max(map(len, names))
    print(f"{'notebook':<{width}} {'words':>7} {'diff %':>7} {'raw':>4}  headings")
    failed, shown, counts = [], [], collections.Counter()
    for name in names:
        result = check_notebook(nbtext, words, os.path.join(corpus, name))
        share = "-" if result["difference"] is None else f"{100 * result['difference']:.2f}"
        headings = "-" if result["headings"] is None else "ok" if not result["headings"] else \
            f"{len(result['headings'])} faults"
        print(f"{name:<{width}} {result['words']:7d} {share:>7} {result['raw_html']:4d}  {headings}")
        if result["faults"]:
            failed.append(name)
            counts.update(f.split(" ", 1)[0] if f.startswith("nbtext") else
                          "words" if "words" in f else "raw" if "raw" in f else
                          "headings" if "heading" in f else "front" for f in result["faults"])
        if verbose:
            shown.append((name, result))
    for name, result in shown:
        show_details(name, result)
    print(f"\n{len(names)} notebooks: {len(names) - len(failed)} pass, {len(failed)} fail "
          f"(words over {MAX_DIFFERENCE:.0%}: {counts['words']}, raw HTML: {counts['raw']}, "
          f"headings: {counts['headings']}, unclosed front matter: {counts['front']}, "
          f"not converted: {counts['nbtext']})")
    if failed:
        print("FAILED: " + " ".join(failed))
        print(f"(the differences of one: {sys.argv[0]} {nbtext} {corpus} --verbose NAME)")
        return 1
    return 0


#===--- Self-test -----------------------------------------------------------===#

class SelfTest(unittest.TestCase):
    """The check's own logic, so that a broken check cannot pass unseen."""

    @classmethod
    def setUpClass(cls):
        cls.words = Words(load_names())

    def test_words(self):
        cases = [
            # text, words
            ("l'ensemble des arêtes", ["l", "ensemble", "des", "arêtes"]),
            ("foo_bar x2 2004", ["foo", "bar", "x2", "2004"]),
            ("e\u0301te\u0301", ["été"]),               # decomposed accents
            # Greek letters count as their names, written or named.
            ("α-helix", ["Alpha", "helix"]),
            ("\\[Alpha]-helix", ["Alpha", "helix"]),
            ("x\\[Beta]y and xβy", ["x", "Beta", "y", "and", "x", "Beta", "y"]),
            ("ϕ \\[Phi]", ["Phi", "Phi"]),            # the TSV's Phi is U+03D5
            # Other named letters meet their characters; unknown names stay.
            ("\\[ScriptL] ℓ", ["ℓ", "ℓ"]),
            ("\\[NoSuchName]", ["NoSuchName"]),
        ]
        for text, expected in cases:
            with self.subTest(text=text):
                self.assertEqual(self.words.split(text), expected)

    def test_difference(self):
        cases = [
            # text, markdown, share
            ("a b c d", "d c b a", 0.0),
            # A link labelled with its address is one autolink in Markdown.
            ("see https://x.org/a <https://x.org/a>", "see https://x.org/a", 0.0),
            ("see <https://x.org/a>", "see https://x.org/a", 0.0),
            ("x.org <https://x.org>", "x.org", 3 / 5),          # another label: kept
            ("a b c", "a b d", 2 / 3),
            ("a a b", "a b", 1 / 3),
            ("α β", "\\[Alpha] \\[Beta]", 0.0),
            ("", "", 0.0),
            ("", "x", 1.0),
        ]
        for text, markdown, share in cases:
            with self.subTest(text=text, markdown=markdown):
                got = difference(self.words.count(link_once(text)), self.words.count(markdown))[0]
                self.assertAlmostEqual(got, share)

    def test_front_matter(self):
        cases = [
            ('---\ntitle: "T"\nauthor: "A"\n---\n# T\n', "# T\n"),
            ("# T\n\n---\n\nx\n", "# T\n\n---\n\nx\n"),
            ('---\ntitle: "T"\n# T\n', None),
            ("---\n---\nx\n", "x\n"),
        ]
        for markdown, body in cases:
            with self.subTest(markdown=markdown):
                self.assertEqual(strip_front_matter(markdown), body)

    def test_rendering_text(self):
        cases = [
            # cmark-gfm's HTML, words
            ("<p>a<em>b</em>c</p><p>d</p>", ["abc", "d"]),
            ("<p>a<br />\nb</p><ul>\n<li>c</li>\n<li>d</li>\n</ul>", ["a", "b", "c", "d"]),
            ('<p><a href="https://x.org/p_q">see</a></p>', ["see", "https", "x", "org", "p", "q"]),
            ('<p><a href="http://www.x.org">www.x.org</a> <a href="https://y.org">https://y.org</a></p>',
             ["www", "x", "org", "https", "y", "org"]),
            ('<pre><code class="language-output">f[x_] &lt; 3 &eacute;t&eacute;\n</code></pre>',
             ["f", "x", "3", "été"]),
            ("<table><tr><th>a</th><th>b</th></tr><tr><td>1</td><td>2</td></tr></table>",
             ["a", "b", "1", "2"]),
            ('<p><img src="x.png" alt="Graphics" /></p>', ["Graphics"]),
        ]
        for page, expected in cases:
            with self.subTest(page=page):
                self.assertEqual(self.words.split(parse_rendering(page).text()), expected)

    def test_raw_html(self):
        cases = [
            # Markdown, pieces of raw HTML that cmark-gfm omits
            ("<div>\nx\n</div>\n\npara <span>y</span>\n", 3),
            ("a \\<b\\> `<c>` <https://x.org> 1 < 2 and x<y\n", 0),
            ("```\n<div>\n```\n", 0),
            ("<!-- note -->\n", 1),
        ]
        for markdown, count in cases:
            with self.subTest(markdown=markdown):
                self.assertEqual(parse_rendering(render(markdown)).raw_html, count)
                self.assertEqual(len(raw_html_pieces(markdown)), count)

    def test_headings(self):
        page = ('<html><head><title>Not a cell</title><style>div.Title { }</style></head><body>'
                '<div class="Title">Graphes &amp; arbres</div><div class="Text">Body</div>'
                '<div class="Section">1. m<sub>ij</sub> and \u03b1</div>'
                '<div class="Subsection extra">1.1. x<sup>n + 1</sup></div>'
                # A picture's placeholder, a control's value
                '<div class="Subsection">Usage<table width="11" height="11" bgcolor="#EEEEEE"><tr>'
                '<td align="center">-Graphics-</td></tr></table> <input type="text" value="Go"/></div>'
                '</body></html>')
        cells = outline(page)
        self.assertEqual([c[0] for c in cells], ["Title", "Section", "Subsection", "Subsection"])
        ok = [(1, "Graphes & arbres"), (2, "1. mij and \\[Alpha]"), (3, "1.1. x^(n + 1)"),
              (3, "UsageGo")]
        cases = [
            # headings of the rendering, faults
            (ok, 0),
            (ok[:3], 1),                                             # one missing
            (ok + [(5, "More")], 1),                                 # one too many
            ([ok[0], (3, ok[1][1]), (4, ok[2][1]), (4, ok[3][1])], 3),  # Chapter's level kept
            ([ok[0], (2, "1. mij and beta"), ok[2], ok[3]], 1),      # other words
            ([ok[1], ok[0], ok[2], ok[3]], 2),                       # out of order
        ]
        for headings, faults in cases:
            with self.subTest(headings=headings):
                self.assertEqual(len(compare_headings(self.words, cells, headings)), faults)
        # The highest style used is h1, whichever it is, and the next one used h2.
        sections = outline('<div class="Section">A</div><div class="Subsubsection">B</div>'
                           '<div class="Section">C</div>')
        self.assertEqual(compare_headings(self.words, sections, [(1, "A"), (2, "B"), (1, "C")]), [])

    def test_rendering_headings(self):
        rendering = parse_rendering(render("# T &amp; *x*\n\ntext\n\n### 1\\. S\n"))
        self.assertEqual(rendering.headings, [(1, "T & x"), (3, "1. S")])


def main(argv):
    p = argparse.ArgumentParser(prog="markdown_check.py", description=__doc__.split("\n")[0])
    p.add_argument("nbtext", nargs="?")
    p.add_argument("corpus", nargs="?")
    p.add_argument("--verbose", metavar="NAME", action="append", default=[],
                   help="check this notebook alone (a file name or its number, e.g. 017) and "
                        "show its word, heading and raw HTML differences")
    p.add_argument("--self-test", action="store_true", help="test the check's own logic")
    args = p.parse_args(argv[1:])
    if args.self_test:
        if not os.path.isfile(NAMED_CHARACTERS):
            print(f"SKIPPED: no {NAMED_CHARACTERS}")
            return 77
        suite = unittest.defaultTestLoader.loadTestsFromTestCase(SelfTest)
        return 0 if unittest.TextTestRunner(verbosity=1).run(suite).wasSuccessful() else 1
    if not args.nbtext:
        p.error("NBTEXT is needed")
    corpus = args.corpus or subprocess.run(
        [os.path.join(ROOT, "scripts", "corpus-dir.sh"), os.path.dirname(os.path.abspath(args.nbtext))],
        capture_output=True, text=True, check=True).stdout.strip()
    sys.stdout.reconfigure(line_buffering=True)
    return check_corpus(os.path.abspath(args.nbtext), corpus, args.verbose)


if __name__ == "__main__":
    sys.exit(main(sys.argv))
