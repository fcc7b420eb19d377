#!/usr/bin/env python3
"""Writes the named-character tables of the expression layer.

Reads the table of named characters (a TSV file with the header "code<TAB>name"
and one row per character: four hexadecimal digits and the name without
brackets) and writes the C++ rows that Sources/Kx/KxNamedCharacterTable.cpp
includes. The rows keep the order of the input, which is the order in which
the lookup tables are loaded.

Beside it, it writes the rows of the names that are only read: the accented
Latin letters of Latin-1 Supplement and Latin Extended-A that the TSV lacks,
named from their Unicode names the way the TSV names its own ("ZHacek" for
LATIN SMALL LETTER Z WITH CARON, "CapitalRHacek" for the capital R), and a
few operators that recent notebooks write by name.

Third, the standard letters of the private-use ones: the double-struck,
script and gothic letters and digits that the TSV places in the private-use
area, each with the code point of the Unicode character of that name
("DoubleStruckCapitalR" is MATHEMATICAL DOUBLE-STRUCK CAPITAL R, which
Unicode has as DOUBLE-STRUCK CAPITAL R, U+211D, in Letterlike Symbols).

Usage: tools/gen-named-characters.py [--check] [TSV [OUTPUT [READ_ONLY_OUTPUT [LETTER_OUTPUT]]]]
  TSV defaults to shared/named-characters.tsv in the folder beside the
  checkout (or the one above it, for a worktree), OUTPUT to
  Sources/Kx/KxNamedCharacterTable.inc, READ_ONLY_OUTPUT to
  Sources/Kx/KxReadOnlyNameTable.inc, LETTER_OUTPUT to
  Sources/Kx/KxStandardLetterTable.inc. With --check nothing is written: the
  exit status is 1 when a committed file differs from what would be written.
"""
import os
import re
import sys
import unicodedata

ROW_COUNT = 882
NAME = re.compile(r"^[A-Za-z][A-Za-z0-9]*$")


def read_rows(path):
    rows = []
    with open(path, encoding="ascii") as f:
        header = f.readline().rstrip("\r\n")
        if header != "code\tname":
            sys.exit(f"{path}: unexpected header {header!r}")
        for number, line in enumerate(f, start=2):
            line = line.rstrip("\r\n")
            if not line:
                continue
            fields = line.split("\t")
            if len(fields) != 2 or not re.fullmatch(r"[0-9A-Fa-f]{4}", fields[0]) or not NAME.match(fields[1]):
                sys.exit(f"{path}:{number}: malformed row {line!r}")
            rows.append((int(fields[0], 16), fields[1]))
    return rows


def check(rows, path):
    if len(rows) != ROW_COUNT:
        sys.exit(f"{path}: {len(rows)} rows, expected {ROW_COUNT}")
    for what, keys in (("code", [c for c, _ in rows]), ("name", [n for _, n in rows])):
        seen = set()
        for key in keys:
            if key in seen:
                sys.exit(f"{path}: duplicate {what} {key!r}")
            seen.add(key)


# The marks of the accented letters and the words that name them.
MARKS = {
    "GRAVE": "Grave",
    "ACUTE": "Acute",
    "CIRCUMFLEX": "Hat",
    "TILDE": "Tilde",
    "DIAERESIS": "DoubleDot",
    "RING ABOVE": "Ring",
    "CEDILLA": "Cedilla",
    "MACRON": "Bar",
    "BREVE": "Cup",
    "CARON": "Hacek",
    "DOUBLE ACUTE": "DoubleAcute",
}
LETTER = re.compile(r"^LATIN (SMALL|CAPITAL) LETTER ([A-Z]) WITH (.+)$")

# Operators read by name; the private-use ones are written as ASCII stand-ins
# (the encoding's replacement rows), the others as themselves.
OPERATORS = [
    (0xF113, "LeftAssociation"),
    (0xF114, "RightAssociation"),
    (0xF120, "TwoWayRule"),
    (0xF3D4, "UndirectedEdge"),
    (0xF3D5, "DirectedEdge"),
    (0xF4A1, "Function"),
    (0x2297, "TensorProduct"),
    (0x29E6, "Equivalent"),
    (0x2212, "Minus"),
    (0xF438, "Limit"),
    (0xF439, "MaxLimit"),
    (0xF43A, "MinLimit"),
]

# The families of private-use letters and the Unicode names of their
# standard counterparts: the mathematical alphanumeric one first, then the
# letterlike symbol that stands in its place where that block has a hole.
FAMILIES = {
    "DoubleStruck": ("MATHEMATICAL DOUBLE-STRUCK {case} {letter}", "DOUBLE-STRUCK {case} {letter}"),
    "Script": ("MATHEMATICAL SCRIPT {case} {letter}", "SCRIPT {case} {letter}"),
    "Gothic": ("MATHEMATICAL FRAKTUR {case} {letter}", "BLACK-LETTER {case} {letter}"),
}
DIGITS = ["Zero", "One", "Two", "Three", "Four", "Five", "Six", "Seven", "Eight", "Nine"]
FAMILY_NAME = re.compile(r"^(DoubleStruck|Script|Gothic)(Capital)?([A-Z]|Zero|One|Two|Three|Four|Five|Six|Seven|Eight|Nine)$")


def standard_letters(rows):
    """{private code, standard code} for the private-use letters of the families."""
    result = []
    for code, name in rows:
        match = FAMILY_NAME.match(name)
        if not match or not 0xE000 <= code < 0xF900:
            continue
        family, capital, letter = match.groups()
        if letter in DIGITS:
            names = [FAMILIES[family][0].replace("{case} {letter}", "DIGIT " + letter.upper())]
        else:
            case = "CAPITAL" if capital else "SMALL"
            names = [pattern.format(case=case, letter=letter) for pattern in FAMILIES[family]]
        for candidate in names:
            try:
                result.append((code, ord(unicodedata.lookup(candidate))))
                break
            except KeyError:
                continue
    return sorted(result)


def accented_letters():
    """Names of the accented letters from U+00C0 to U+017F, in code order."""
    rows = []
    for code in range(0x00C0, 0x0180):
        match = LETTER.match(unicodedata.name(chr(code), ""))
        if match and match.group(3) in MARKS:
            case, letter, mark = match.groups()
            rows.append((code, ("Capital" if case == "CAPITAL" else "") + letter + MARKS[mark]))
    return rows


def read_only_rows(rows):
    known = {name for _, name in rows}
    extra = [row for row in OPERATORS + accented_letters() if row[1] not in known]
    names = [name for _, name in extra]
    if len(set(names)) != len(names):
        sys.exit("duplicate read-only name")
    return extra


def table_text(rows, what, columns="code point, name"):
    lines = ["// Generated by tools/gen-named-characters.py from named-characters.tsv.\n",
             "// Do not edit: change the TSV or the generator and run it again.\n",
             f"// {len(rows)} rows {what}: {{{columns}}}.\n"]
    for code, value in rows:
        value = f'"{value}"' if isinstance(value, str) else f"0x{value:04X}"
        lines.append(f"{{0x{code:04X}, {value}}},\n")
    return "".join(lines)


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    arguments = sys.argv[1:]
    checking = arguments[:1] == ["--check"]
    if checking:
        arguments = arguments[1:]
    if arguments:
        source = arguments[0]
    else:
        candidates = [os.path.join(root, *up, "shared", "named-characters.tsv") for up in (("..",), ("..", ".."))]
        source = next((c for c in candidates if os.path.exists(c)), candidates[0])
    sources = os.path.join(root, "Sources", "Kx")
    defaults = ["KxNamedCharacterTable.inc", "KxReadOnlyNameTable.inc", "KxStandardLetterTable.inc"]
    targets = [arguments[1 + i] if len(arguments) > 1 + i else os.path.join(sources, name)
               for i, name in enumerate(defaults)]
    rows = read_rows(source)
    check(rows, source)
    texts = [table_text(rows, "in loading order"),
             table_text(read_only_rows(rows), "of names that are read, never written"),
             table_text(standard_letters(rows), "of private-use letters in code order",
                        "private-use code point, standard code point")]
    stale = []
    for target, text in zip(targets, texts):
        if checking:
            with open(target, encoding="ascii", newline="") as committed:
                if committed.read() != text:
                    stale.append(target)
        else:
            with open(target, "w", encoding="ascii", newline="\n") as out:
                out.write(text)
    for target in stale:
        print(f"{target} is not what the generator writes; run tools/gen-named-characters.py", file=sys.stderr)
    sys.exit(1 if stale else 0)


if __name__ == "__main__":
    main()
