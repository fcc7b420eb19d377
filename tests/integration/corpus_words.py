#!/usr/bin/env python3
"""Search words for the indexer tests, taken from the corpus's converted text.

  corpus_words.py prepare NBTEXT CORPUS WORK
      Converts every notebook of CORPUS that is not of the ancient era to text
      and to HTML, links the notebooks into WORK/docs (the folder to index)
      and writes WORK/words.tsv: words that occur in exactly one notebook's
      text, each with the notebook and where it came from (a title or section
      cell, a text cell, only inside controls or grids; accented or not).
  corpus_words.py heads WORK recoll|omega QUERY...
      Runs QUERY, which lists every notebook of the HTML index with its
      fields, and checks that the indexer shows the title and author of each
      page that has them (WORK/heads.tsv, written by prepare).
  corpus_words.py check WORK text|html QUERY...
      Runs QUERY followed by each word and compares the notebooks named in its
      output with the expected ones; it also checks that markup terms
      ("RowBox", "Cell", the name in "\\[Alpha]", and for HTML "span", "div")
      find no notebook whose text lacks them.
"""
import base64
import collections
import html.parser
import os
import re
import subprocess
import sys
import time
import unicodedata

HEADING_STYLES = {"Title", "Subtitle", "Chapter", "Subchapter", "Section",
                  "Subsection", "Subsubsection"}
CONTROL_HEADS = {"ButtonBox", "CheckboxBox", "RadioButtonBox", "PopupMenuBox",
                 "ActionMenuBox", "SetterBox", "InputFieldBox", "TabViewBox",
                 "GridBox"}
MARKUP_TERMS = ["RowBox", "StyleBox", "BoxData", "TextData", "CellGroupData",
                "Cell", "FontSize", "FontWeight", "FrontEndVersion",
                "CellChangeTimes", "Alpha", "EAcute", "Dash", "IndentingNewLine", "Rule"]
# Words of the HTML page's own markup and style sheet.
PAGE_TERMS = ["div", "span", "bgcolor", "javascript", "serif", "monospace"]
# Characters that some indexers join to a neighbouring word ("l'ensemble",
# "a.b", "foo_bar", "C++"): a word counts only where it stands clear of them.
JOINERS = set(".'\u2019-_@&+#/\\:")
MIN_NOTEBOOKS = 20
# Notebooks with a title, whose heads the indexers must show.
MIN_TITLED = 20


def fold(text):
    """Lower case without accents, as an indexer that folds both sees it."""
    text = unicodedata.normalize("NFKD", text)
    return "".join(c for c in text if not unicodedata.combining(c)).casefold()


# Letters of the Latin, Greek and Cyrillic scripts once folded. Indexers cut
# words where the script changes ("不同Cell" holds the word "cell").
LETTERS = re.compile("[a-z\u00c0-\u00d6\u00d8-\u00f6\u00f8-\u024f\u0370-\u03ff"
                     "\u0400-\u052f\u1e00-\u1fff]+")


def letter_runs(text):
    return LETTERS.findall(fold(text))


def is_wanted_word(token):
    if not token.isalpha() or len(token) < (4 if not token.isascii() else 5):
        return False
    return all(unicodedata.name(c, "").startswith(("LATIN", "GREEK", "CYRILLIC"))
               for c in token)


def clear_words(text):
    """The words of `text` in order of first appearance that stand clear of joiners."""
    seen = {}
    for m in re.finditer(r"\w+", text):
        before = text[m.start() - 1] if m.start() else " "
        after = text[m.end()] if m.end() < len(text) else " "
        if before not in JOINERS and after not in JOINERS and is_wanted_word(m.group()):
            seen.setdefault(m.group(), None)
    return list(seen)


#===--- Notebook source: cells and boxes ------------------------------------===#

TOKEN = re.compile(r'"(?:[^"\\]|\\.)*"|\(\*|[\[\](){},]|([A-Za-z$][A-Za-z0-9$`]*)\[', re.S)
COMMENT_MARK = re.compile(r"\(\*|\*\)")


def scan(source):
    """Yields (head, start, end, args) for every `Head[...]` of the source, where
    args are the source texts of its top-level arguments; strings and comments
    are skipped."""
    stack = []  # [head, start, arg_start, args]
    pos = 0
    while True:
        m = TOKEN.search(source, pos)
        if not m:
            return
        tok, pos = m.group(), m.end()
        if tok == "(*":
            depth = 1
            while depth and pos < len(source):
                nxt = COMMENT_MARK.search(source, pos)
                if not nxt:
                    return
                depth += 1 if nxt.group() == "(*" else -1
                pos = nxt.end()
        elif m.group(1):
            stack.append([m.group(1), m.start(), pos, []])
        elif tok in "({[" and len(tok) == 1:
            stack.append([None, m.start(), pos, []])
        elif tok == "," and stack and stack[-1][0]:
            stack[-1][3].append(source[stack[-1][2]:m.start()].strip())
            stack[-1][2] = pos
        elif tok in ")}]" and len(tok) == 1 and stack:
            head, start, arg_start, args = stack.pop()
            if head:
                args.append(source[arg_start:m.start()].strip())
                yield head, start, pos, args


def category_sources(source):
    """Source texts of the heading cells, the text cells and the outermost
    controls and grids of a notebook."""
    pieces = {"heading": [], "text": [], "control": []}
    controls = []
    for head, start, end, args in scan(source):
        if head == "Cell" and len(args) >= 2:
            style = args[1].strip('"')
            if style in HEADING_STYLES:
                pieces["heading"].append(source[start:end])
            elif style == "Text":
                pieces["text"].append(source[start:end])
        elif head in CONTROL_HEADS:
            # Boxes end inner first, so the ones this box holds are the last.
            while controls and controls[-1][0] >= start:
                controls.pop()
            controls.append((start, end))
    pieces["control"] = ['Cell[BoxData[%s], "Output"]' % source[s:e] for s, e in controls]
    return pieces


def corpus_notebooks(corpus):
    """The notebooks of the corpus's manifest that are not of the ancient era, sorted."""
    with open(os.path.join(corpus, "MANIFEST.tsv"), encoding="utf-8") as f:
        rows = [line.rstrip("\n").split("\t") for line in f]
    era = rows[0].index("era")
    return sorted(r[0] for r in rows[1:] if len(r) > era and r[era] != "ancient")


def convert(nbtext, path, *options):
    run = subprocess.run([nbtext, *options, path], stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL)
    return run.returncode, run.stdout.decode("utf-8", "replace")


def parsed(parser, page):
    """The parser after it has read the whole page."""
    parser.feed(page)
    parser.close()
    return parser


def convert_pieces(nbtext, work, pieces):
    if not pieces:
        return ""
    path = os.path.join(work, "piece.nb")
    with open(path, "w", encoding="utf-8") as f:
        f.write("Notebook[{\n%s\n}]\n" % ",\n".join(pieces))
    status, text = convert(nbtext, path)
    return text if status == 0 else ""


class VisibleText(html.parser.HTMLParser):
    """The text an HTML indexer reads: no style sheet, no attribute values."""
    BLOCKS = {"div", "br", "table", "tr", "td", "select", "option", "p"}

    def __init__(self):
        super().__init__()
        self.parts, self.skip = [], False

    def handle_starttag(self, tag, attrs):
        self.skip = tag in ("style", "script")
        if tag in self.BLOCKS:
            self.parts.append(" ")

    def handle_endtag(self, tag):
        self.skip = False
        if tag in self.BLOCKS:
            self.parts.append(" ")

    def handle_data(self, data):
        if not self.skip:
            self.parts.append(data)


class PageHead(html.parser.HTMLParser):
    """The title and the author meta element of a page."""

    def __init__(self):
        super().__init__()
        self.title, self.author, self.in_title = "", "", False

    def handle_starttag(self, tag, attrs):
        self.in_title = tag == "title"
        if tag == "meta" and dict(attrs).get("name") == "author":
            self.author = dict(attrs).get("content", "")

    def handle_endtag(self, tag):
        self.in_title = False

    def handle_data(self, data):
        if self.in_title:
            self.title += data


def page_head(page):
    parser = parsed(PageHead(), page[:page.find("</head>")])
    return parser.title, parser.author


def visible_text(page):
    return "".join(parsed(VisibleText(), page).parts)


#===--- prepare -------------------------------------------------------------===#

def prepare(nbtext, corpus, work):
    names = corpus_notebooks(corpus)
    docs = os.path.join(work, "docs")
    for sub in ("docs", "text", "html"):
        os.makedirs(os.path.join(work, sub), exist_ok=True)

    started = time.monotonic()
    texts, pages, heads, failed = {}, {}, [], []
    for name in names:
        path = os.path.join(corpus, name)
        os.symlink(os.path.abspath(path), os.path.join(docs, name))
        status, text = convert(nbtext, path)
        status_html, page = convert(nbtext, path, "-html")
        if status or status_html:
            failed.append("%s (%d/%d)" % (name, status, status_html))
            continue
        texts[name], pages[name] = text, visible_text(page)
        heads.append((name,) + page_head(page))
        for sub, content in (("text", text), ("html", pages[name])):
            with open(os.path.join(work, sub, name), "w", encoding="utf-8") as f:
                f.write(content)
    took = time.monotonic() - started
    print("converted %d of %d notebooks to text and HTML in %.1f s (%d bytes of text)"
          % (len(texts), len(names), took, sum(len(t.encode()) for t in texts.values())))
    if failed:
        print("WARNING: nbtext refused %d notebooks: %s" % (len(failed), ", ".join(failed)))

    with open(os.path.join(work, "heads.tsv"), "w", encoding="utf-8") as f:
        f.writelines("\t".join(row) + "\n" for row in heads)

    # A word qualifies when, folded, it is a word of one notebook's text only
    # and of no path that an indexer might also index.
    spread = {}
    for name, text in texts.items():
        for run in set(letter_runs(text)):
            spread.setdefault(run, set()).add(name)
    in_paths = set(letter_runs(os.path.abspath(docs) + " " + " ".join(names)))

    words = []
    for name in sorted(texts):
        unique = [w for w in clear_words(texts[name])
                  if spread.get(fold(w)) == {name} and fold(w) not in in_paths]
        with open(os.path.join(corpus, name), encoding="utf-8", errors="replace") as f:
            pieces = category_sources(f.read())
        runs = {kind: collections.Counter(letter_runs(convert_pieces(nbtext, work, p)))
                for kind, p in pieces.items()}
        full = collections.Counter(letter_runs(texts[name]))
        chosen, taken = {}, set()

        def choose(kind, test):
            for w in unique:
                if fold(w) not in taken and test(w):
                    chosen[w] = kind
                    taken.add(fold(w))
                    return

        choose("heading", lambda w: fold(w) in runs["heading"])
        choose("text", lambda w: fold(w) in runs["text"])
        choose("control", lambda w: full[fold(w)] == runs["control"][fold(w)])
        choose("accented", lambda w: not w.isascii())
        for w, kind in chosen.items():
            only_controls = full[fold(w)] == runs["control"][fold(w)]
            words.append((w, name, kind, "accented" if not w.isascii() else "-",
                          "controls-only" if only_controls else "-"))

    with open(os.path.join(work, "words.tsv"), "w", encoding="utf-8") as f:
        for row in words:
            f.write("\t".join(row) + "\n")
    covered = {w[1] for w in words}
    counts = {k: sum(1 for w in words if w[2] == k) for k in ("heading", "text", "control", "accented")}
    print("chose %d words from %d notebooks: %d from titles and sections, %d from text cells, "
          "%d only inside controls or grids, %d more accented; %d accented in all"
          % (len(words), len(covered), counts["heading"], counts["text"], counts["control"],
             counts["accented"], sum(1 for w in words if w[3] == "accented")))
    if len(covered) < MIN_NOTEBOOKS or not counts["control"] or not any(w[3] == "accented" for w in words):
        sys.exit("FAILED: the corpus gave words for %d notebooks (at least %d wanted), "
                 "with controls and accents among them" % (len(covered), MIN_NOTEBOOKS))


#===--- check ---------------------------------------------------------------===#

def hits(query, word, names):
    """The notebooks that the query finds, from the lines that end in their paths."""
    run = subprocess.run(query + [word.lower()], stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL, check=True)
    ends = re.findall(r"([^/\s]+\.nb)$", run.stdout.decode("utf-8", "replace"), re.M)
    return set(ends) & names


def check(work, mode, query):
    names, contents = set(os.listdir(os.path.join(work, "docs"))), {}
    for name in os.listdir(os.path.join(work, mode)):
        with open(os.path.join(work, mode, name), encoding="utf-8") as f:
            contents[name] = set(letter_runs(f.read()))
    with open(os.path.join(work, "words.tsv"), encoding="utf-8") as f:
        words = [line.rstrip("\n").split("\t") for line in f]

    faults, unseen = [], 0
    for word, name, kind, accented, controls in words:
        # HTML keeps button labels and field values in attributes, which
        # indexers skip: there a word is expected wherever it is visible.
        expected = {name} if mode == "text" else {n for n, c in contents.items() if fold(word) in c}
        unseen += not expected
        found = hits(query, word, names)
        if found != expected:
            faults.append("%r (%s, %s) found %s, expected %s"
                          % (word, name, kind, sorted(found) or "nothing", sorted(expected) or "nothing"))
    terms = MARKUP_TERMS + (PAGE_TERMS if mode == "html" else [])
    for term in terms:
        # Indexers index the file name too.
        allowed = {n for n, c in contents.items() if fold(term) in c}
        allowed |= {n for n in names if fold(term) in letter_runs(n)}
        stray = hits(query, term, names) - allowed
        if stray:
            faults.append("markup term %r found %s, whose text lacks it" % (term, sorted(stray)))
    print("%s: %d words from %d notebooks (%d of them only in HTML attributes), %d markup terms"
          % (mode, len(words), len({w[1] for w in words}), unseen, len(terms)))
    for fault in faults:
        print("  " + fault)
    print("%s: %d passed, %d failed" % (mode, len(words) + len(terms) - len(faults), len(faults)))
    return 1 if faults else 0


#===--- heads ---------------------------------------------------------------===#

def indexed_fields(kind, output):
    """{notebook: (title, author)} from the listing of an index."""
    fields = {}
    if kind == "recoll":
        # recollq -F "filename title author": each field in base64, one
        # notebook a line, an empty field left empty.
        for line in output.splitlines():
            parts = line.split(" ")
            if len(parts) >= 3 and parts[0]:
                try:
                    name, title, author = (base64.b64decode(p).decode("utf-8") for p in parts[:3])
                except ValueError:
                    continue
                fields[name] = (title, author)
        return fields
    # quest prints each match's data, one field a line, from url= on.
    record = {}
    for line in output.splitlines() + ["url="]:
        key, _, value = line.partition("=")
        if key == "url":
            if record.get("url"):
                fields[os.path.basename(record["url"])] = (record.get("caption", ""), record.get("author", ""))
            record = {}
        if key in ("url", "caption", "author"):
            record[key] = value
    return fields


def shows(shown, field):
    """Whether an indexer's field is the page's: Recoll keeps only the first
    words of a long one."""
    return shown == field or (len(shown) >= 100 and field.startswith(shown))


def heads(work, kind, query):
    with open(os.path.join(work, "heads.tsv"), encoding="utf-8") as f:
        rows = [line.rstrip("\n").split("\t") for line in f]
    run = subprocess.run(query, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    shown = indexed_fields(kind, run.stdout.decode("utf-8", "replace"))
    faults, titles, authors = [], 0, 0
    for name, title, author in rows:
        if not title and not author:
            continue
        got = shown.get(name)
        if got is None:
            faults.append("%s is not in the index's listing" % name)
            continue
        if title:
            titles += 1
            if not shows(got[0], title):
                faults.append("%s: title %r shown, the page's is %r" % (name, got[0], title))
        if author:
            authors += 1
            if not shows(got[1], author):
                faults.append("%s: author %r shown, the page's is %r" % (name, got[1], author))
    print("html: titles of %d notebooks and authors of %d looked for in the index" % (titles, authors))
    for fault in faults:
        print("  " + fault)
    if titles < MIN_TITLED:
        faults.append("only %d notebooks have a title (at least %d wanted)" % (titles, MIN_TITLED))
        print("  " + faults[-1])
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) == 5 and sys.argv[1] == "prepare":
        prepare(*sys.argv[2:])
    elif len(sys.argv) > 4 and sys.argv[1] == "heads" and sys.argv[3] in ("recoll", "omega"):
        sys.exit(heads(sys.argv[2], sys.argv[3], sys.argv[4:]))
    elif len(sys.argv) > 4 and sys.argv[1] == "check" and sys.argv[3] in ("text", "html"):
        sys.exit(check(sys.argv[2], sys.argv[3], sys.argv[4:]))
    else:
        sys.exit(__doc__)
