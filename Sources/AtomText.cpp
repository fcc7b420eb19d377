//===- AtomText.cpp - What the text of an atom says to a reader -----------===//
#include "AtomText.h"
#include "IndexerVocabulary.h"
#include "Kx/KxEscape.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxString.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnReader.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;

namespace {

/// Whether a box group ("\\(" or "\\!\\(") opens at theIndex, a backslash.
bool opensBoxGroup(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theIndex) {
  if (theIndex + 1 < theLength && theText[theIndex + 1] == '(')
    return true;
  return theIndex + 3 < theLength && theText[theIndex + 1] == '!' && theText[theIndex + 2] == '\\' &&
         theText[theIndex + 3] == '(';
}

/// Where the box group that opens at theStart ends: the index just after
/// its closing "\\)", or -1 when it never closes.
ZnIndex boxGroupEnd(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theStart) {
  ZnIndex i = theStart + (theText[theStart + 1] == '!' ? 4 : 2);
  int32_t depth = 1;
  while (i + 1 < theLength) {
    if (theText[i] != '\\') {
      ++i;
      continue;
    }
    if (theText[i + 1] == '(')
      ++depth;
    else if (theText[i + 1] == ')' && --depth == 0)
      return i + 2;
    i += 2;
  }
  return -1;
}

/// +1. theText with one level of string escaping undone: the quotes,
/// backslashes, line ends and tabs of a text that sits inside a string are
/// escaped once.
Zn::MutableString* unescapedOnce(const ZnUnichar* theText, ZnIndex theLength) {
  auto source = adopt(new Zn::MutableString(theLength));
  for (ZnIndex i = 0; i < theLength; ++i) {
    ZnUnichar c = theText[i];
    if (c == '\\' && i + 1 < theLength) {
      const ZnUnichar next = theText[i + 1];
      if (next == '"' || next == '\\' || next == 'n' || next == 't') {
        c = next == 'n' ? ZnUnichar(10) : next == 't' ? ZnUnichar(9) : next;
        ++i;
      }
    }
    source->appendCharacter(c);
  }
  return source.leak();
}

/// +1. theText parsed, without reports; null when it does not parse.
Expr* parseQuietly(const ZnUnichar* theText, ZnIndex theLength, bool theUnescape) {
  auto source = adopt(theUnescape ? unescapedOnce(theText, theLength) : new Zn::String(theText, theLength));
  auto reader = adopt<Zn::Reader>(new Zn::StringReader(source.get()));
  auto parser = adopt(new Zn::Kx::ExprParser(reader.get()));
  parser->setErrorHandler(nullptr);
  auto result = adopt(parser->parse());
  if (result && result->isEqual(Zn::Kx::HeadSymbol(Zn::Kx::Head::SyntaxError)))
    return nullptr;
  return result.leak();
}

/// Appends what the escape whose backslash is at theIndex stands for to
/// theResult; returns the index after it. A backslash that starts no escape,
/// or one that the text cuts short, is text like any other character.
ZnIndex resolveEscape(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theIndex, Zn::MutableString* theResult) {
  using Zn::Kx::Escape;
  const Escape escape = Escape::decode(theText + theIndex + 1, theLength - theIndex - 1, Escape::kAllForms);
  if (escape.kind == Escape::kCharacter)
    theResult->appendCharacter(escape.character);
  if (escape.kind == Escape::kCharacter || escape.kind == Escape::kNothing)
    return theIndex + 1 + escape.length;
  theResult->appendCharacter('\\');
  return theIndex + 1;
}

bool isBoxExpression(const Expr* theExpr) {
  auto head = theExpr && !theExpr->isAtom() ? theExpr->head()->asSymbol() : nullptr;
  if (!head)
    return false;
  const Zn::String* name = head->getName();
  const ZnIndex length = name->length();
  return length > 3 && name->characterAtIndex(length - 3) == 'B' && name->characterAtIndex(length - 2) == 'o' &&
         name->characterAtIndex(length - 1) == 'x';
}
} // namespace

namespace AtomText {

//===--- Escapes ----------------------------------------------------------===//

void resolveEscapes(const ZnUnichar* theText, ZnIndex theLength, Zn::MutableString* theResult) {
  ZnIndex i = 0;
  while (i < theLength) {
    if (theText[i] != '\\' || i + 1 >= theLength) {
      // Text up to the next backslash is copied as it is.
      ZnIndex end = i + 1;
      while (end < theLength && theText[end] != '\\')
        ++end;
      theResult->appendCharacters(theText + i, end - i);
      i = end;
      continue;
    }
    // A box group is kept as written, for writeAtomText to parse.
    ZnIndex end = opensBoxGroup(theText, theLength, i) ? boxGroupEnd(theText, theLength, i) : -1;
    if (end > 0) {
      theResult->appendCharacters(theText + i, end - i);
      i = end;
      continue;
    }
    i = resolveEscape(theText, theLength, i, theResult);
  }
}

bool isOneStringLiteral(const ZnUnichar* theText, ZnIndex theLength) {
  ZnIndex start = 0;
  ZnIndex end = 0;
  return findStringLiteral(theText, theLength, 0, &start, &end) && start == 0 && end == theLength;
}

bool findStringLiteral(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theFrom, ZnIndex* theStart,
                       ZnIndex* theEnd) {
  ZnIndex open = theFrom;
  while (open < theLength && theText[open] != '"')
    open += theText[open] == '\\' ? 2 : 1;
  for (ZnIndex i = open + 1; i < theLength; ++i) {
    if (theText[i] == '\\') {
      ++i;
    } else if (theText[i] == '"') {
      *theStart = open;
      *theEnd = i + 1;
      return true;
    }
  }
  return false;
}

bool holdsStringLiterals(const ZnUnichar* theText, ZnIndex theLength) {
  ZnIndex start = 0;
  ZnIndex end = 0;
  ZnIndex from = 0;
  bool any = false;
  while (findStringLiteral(theText, theLength, from, &start, &end)) {
    any = true;
    from = end;
  }
  // A quote left open after the last literal is a quote of the text.
  for (ZnIndex i = from; i < theLength; i += theText[i] == '\\' ? 2 : 1) {
    if (theText[i] == '"')
      return false;
  }
  return any;
}

//===--- Numbers ----------------------------------------------------------===//

namespace {
bool isDigit(ZnUnichar theCharacter) { return theCharacter >= '0' && theCharacter <= '9'; }

/// The index after the digits and the one optional point from theIndex on;
/// theDigits tells whether any digit was among them.
ZnIndex skipDecimal(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theIndex, bool* theDigits) {
  bool point = false;
  *theDigits = false;
  for (; theIndex < theLength; ++theIndex) {
    if (isDigit(theText[theIndex]))
      *theDigits = true;
    else if (theText[theIndex] == '.' && !point)
      point = true;
    else
      break;
  }
  return theIndex;
}

/// Matches a number with a mark from theIndex on: the mark runs from
/// theStart to theEnd and the number ends at theNumberEnd.
bool matchNumberMark(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theIndex, ZnIndex* theStart,
                     ZnIndex* theEnd, ZnIndex* theNumberEnd) {
  bool digits = false;
  ZnIndex i = skipDecimal(theText, theLength, theIndex, &digits);
  if (!digits || i >= theLength || theText[i] != '`')
    return false;
  const ZnIndex start = i++;
  if (i < theLength && theText[i] == '`')
    ++i;
  i = skipDecimal(theText, theLength, i, &digits);
  const ZnIndex end = i;
  if (i + 1 < theLength && theText[i] == '*' && theText[i + 1] == '^') {
    i += 2;
    if (i < theLength && (theText[i] == '-' || theText[i] == '+'))
      ++i;
    const ZnIndex exponent = i;
    while (i < theLength && isDigit(theText[i]))
      ++i;
    if (i == exponent)
      return false;
  }
  *theStart = start;
  *theEnd = end;
  *theNumberEnd = i;
  return true;
}

/// Whether a character joins the token next to it: a number next to one is
/// part of a name ("x1`", "Package1`") or of something else ("2`x").
bool joinsToken(ZnUnichar theCharacter) {
  return isDigit(theCharacter) || (theCharacter >= 'a' && theCharacter <= 'z') ||
         (theCharacter >= 'A' && theCharacter <= 'Z') || theCharacter == '$' || theCharacter == '`' ||
         theCharacter == '.';
}
} // namespace

bool dropNumberMarks(const ZnUnichar* theText, ZnIndex theLength, Zn::MutableString* theResult) {
  ZnIndex written = 0;
  for (ZnIndex i = 0; i < theLength; ++i) {
    if (i > 0 && joinsToken(theText[i - 1]))
      continue;
    ZnIndex start = 0;
    ZnIndex end = 0;
    ZnIndex numberEnd = 0;
    if (!matchNumberMark(theText, theLength, i, &start, &end, &numberEnd) ||
        (numberEnd < theLength && joinsToken(theText[numberEnd])))
      continue;
    theResult->appendCharacters(theText + written, start - written);
    written = end;
    i = numberEnd - 1;
  }
  if (written == 0)
    return false;
  theResult->appendCharacters(theText + written, theLength - written);
  return true;
}

//===--- Box groups -------------------------------------------------------===//

bool findBoxGroup(const ZnUnichar* theText, ZnIndex theLength, ZnIndex theFrom, ZnIndex* theStart, ZnIndex* theEnd) {
  for (ZnIndex i = theFrom; i + 1 < theLength; ++i) {
    if (theText[i] != '\\' || !opensBoxGroup(theText, theLength, i))
      continue;
    ZnIndex end = boxGroupEnd(theText, theLength, i);
    if (end < 0)
      return false;
    *theStart = i;
    *theEnd = end;
    return true;
  }
  return false;
}

Expr* parseBoxGroup(const ZnUnichar* theText, ZnIndex theLength) {
  // A group that does not parse stays as its text, without a report.
  return parseQuietly(theText, theLength, true);
}

Expr* parseEmbeddedBox(Expr* theText) {
  Zn::String* text = stringText(theText);
  if (!text)
    return nullptr;
  // The element is escaped once for each string around its group: a group
  // in a string literal of code, itself held in a string, is two deep.
  auto source = retained(text);
  for (int level = 0; level < 3; ++level) {
    Zn::WideCharacters units(source.get());
    auto box = adopt(parseQuietly(units.data(), units.length(), false));
    if (isBoxExpression(box.get()))
      return box.leak();
    auto unescaped = adopt(unescapedOnce(units.data(), units.length()));
    if (unescaped->length() == source->length())
      return nullptr;
    source = std::move(unescaped);
  }
  return nullptr;
}

bool isPacletAddress(const ZnUnichar* theText, ZnIndex theLength) {
  static const char kPrefix[] = "paclet:";
  ZnIndex start = 0;
  if (theLength > 0 && theText[0] == '"')
    start = 1;
  else if (theLength > 1 && theText[0] == '\\' && theText[1] == '"')
    start = 2;
  if (theLength < start + 7)
    return false;
  for (ZnIndex i = 0; i < 7; ++i)
    if (theText[start + i] != ZnUnichar(kPrefix[i]))
      return false;
  return true;
}

} // namespace AtomText
