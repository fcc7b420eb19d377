#!/usr/bin/env python3
"""Reads an HTML page on standard input and exits 0 when every element that
is opened is closed, in order; otherwise prints where it went wrong and
exits 1. Void elements (br, input, ...) need no end tag."""
import sys
from html.parser import HTMLParser

VOID = {"area", "base", "br", "col", "embed", "hr", "img", "input", "link", "meta", "source", "track", "wbr"}


class Balance(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open = []
        self.errors = []

    def handle_starttag(self, tag, attrs):
        if tag not in VOID:
            self.open.append((tag, self.getpos()))

    def handle_endtag(self, tag):
        if tag in VOID:
            return
        if not self.open or self.open[-1][0] != tag:
            expected = self.open[-1][0] if self.open else "nothing"
            self.errors.append(f"line {self.getpos()[0]}: </{tag}> closes {expected}")
            return
        self.open.pop()


def main():
    checker = Balance()
    checker.feed(sys.stdin.read())
    checker.close()
    for tag, (line, column) in checker.open:
        checker.errors.append(f"<{tag}> opened at line {line}, column {column} is never closed")
    for error in checker.errors[:10]:
        print(error)
    return 1 if checker.errors else 0


if __name__ == "__main__":
    sys.exit(main())
