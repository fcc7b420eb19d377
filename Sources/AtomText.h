//===- AtomText.h - What the text of an atom says to a reader -------------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class MutableString;
namespace Kx {
class Expr;
} // namespace Kx
} // namespace Zn

/// The text of string and symbol atoms as a reader sees it. A string of a
/// notebook keeps the notation's escapes ("\\n", "\\\"", "\\[Name]", "\\.xx",
/// "\\:xxxx", the string markers "\\<" and "\\>") and may hold box groups
/// ("\\(...\\)" or "\\!\\(...\\)") that stand for typeset boxes; these
/// functions resolve the one and find and parse the other. None of them
/// writes anything.
namespace AtomText {

/// Appends theText with one level of escapes resolved; box groups are kept
/// as written.
void resolveEscapes(const ZnUnichar* theText, ZnIndex theLength, Zn::MutableString* theResult);

/// Whether theText is a place in the documentation, "paclet:...", bare or as
/// a literal (the text keeps its escapes: \"paclet:...\").
bool isPacletAddress(const ZnUnichar* theText, ZnIndex theLength);

/// Whether theText is one quoted string literal: quotes first and last, and
/// none between them that a backslash does not escape ("a" is one, "a" <> "b"
/// is not).
bool isOneStringLiteral(const ZnUnichar* theText, ZnIndex theLength);

/// Finds the first quoted string literal from theFrom on: [theStart, theEnd)
/// spans it with its quotes. A quote after a backslash neither opens nor
/// closes one. False when no quote opens a literal that a later one closes.
bool findStringLiteral(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theFrom, ZnIndex* theStart,
                       ZnIndex* theEnd);

/// Whether theText holds quoted string literals and no quote outside them:
/// "a" is one literal, "a" <> "b" two, and "size "2"X" two with text
/// between; a"b holds a quote that no literal closes, and a \"b\" none.
bool holdsStringLiterals(const ZnUnichar* theText, ZnIndex theLength);

/// Appends theText to theResult without the marks of the numbers in it, as
/// they stand in a run of linear syntax ("{1.5`, x}" gives "{1.5, x}"); a
/// number must not touch a letter, digit, "$", "." or backquote on either
/// side. False, appending nothing, when theText has no such number.
bool dropNumberMarks(const ZnUnichar* theText, ZnIndex theLength, Zn::MutableString* theResult);

/// Finds the first box group that opens at or after theFrom: its first
/// index (the backslash) and the index just after its closing "\\)". False
/// when none opens there, or when the first one never closes.
bool findBoxGroup(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theFrom, ZnIndex* theStart, ZnIndex* theEnd);
/// +1. The box that a group found in a string stands for; null when it does
/// not parse (the group then stays text, without a report).
Zn::Kx::Expr* parseBoxGroup(const ZnUnichar* theText, ZnIndex theLength);
/// +1. The box whose text a string atom holds (such as "FormBox[...]",
/// the "\\*" element of a box group); null for any other text.
Zn::Kx::Expr* parseEmbeddedBox(Zn::Kx::Expr* theText);

} // namespace AtomText
