//===- KxLexer.cpp - Tokens of notebook expressions ------------------------===//
#include "Kx/KxLexer.h"
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>
#include "Kx/KxEscape.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxFunction.h"
#include "Kx/KxNamedCharacterTable.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "KxExprGrammar.hpp"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/IO/ZnReader.h"

namespace Zn::Kx {

namespace {

bool IsSpace(ZnUnichar c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsDigit(ZnUnichar c) { return c >= '0' && c <= '9'; }
bool IsLetter(ZnUnichar c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
/// Characters that may start a name: letters, "$", the context mark "`" and
/// everything beyond ASCII.
bool IsNameStart(ZnUnichar c) { return IsLetter(c) || c == '$' || c == '`' || c > 127; }

/// The second characters of the box operators ("\(", "\^", ...).
bool IsBoxOperatorCharacter(ZnUnichar c) {
  switch (c) {
  case '(': case ')': case '!': case '%': case '/': case '^': case '_':
  case '&': case '+': case '@': case '`': case '*':
    return true;
  default:
    return false;
  }
}

/// Box operators after which the notation may leave out an operand.
bool IsBoxOperator(int32_t theToken) {
  switch (theToken) {
  case KxRowBoxBegin: case KxFractionBox: case KxSuperscriptBox: case KxSubscriptBox:
  case KxOverscriptBox: case KxUnderscriptBox: case KxBothBox: case KxSqrtBox: case KxFormBox:
    return true;
  default:
    return false;
  }
}

/// Tokens that end an operand: a "+" or "-" after them is binary. KxFunction
/// is deliberately missing, so a sign after "#1" or "x_" is unary.
bool EndsOperand(int32_t theToken) {
  switch (theToken) {
  case '}': case ')': case ']': case '.': case '%': case '&': case '\'': case '!': case '#':
  case KxFactorial2: case KxMachineInteger: case KxBigInteger: case KxMachineReal: case KxBigReal:
  case KxString: case KxSymbol: case KxDecrement: case KxIncrement: case KxRepeated:
  case KxRepeatedNull: case KxRowBoxEnd:
    return true;
  default:
    return false;
  }
}

/// +1. A string holding the units of theText.
String* CopyText(const MutableString* theText) { return String::createWithString(theText); }

ParseValue Atom(Expr* theExpr) { return {theExpr, 0}; }

/// Texts of a string this long give their buffer to the string made of them.
/// A shorter one is copied: its string is carved from the tree's heap, whose
/// pages are zeroed ahead, and the buffer keeps its grown block for the next
/// text instead of growing a fresh one through pages the parse must fault in.
constexpr ZnIndex kTakenTextLength = ZnIndex(ObjectHeap::kLargest - sizeof(String));

/// 10 to the powers that a double holds exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
} // namespace

//===--- The lexer --------------------------------------------------------------===//

Lexer::Lexer(ExprParser* theParser, Reader* theReader, int32_t theNesting)
    : parser_(theParser), reader_(theReader), nesting_(theNesting) {
  text_ = adopt(new MutableString(256));
  group_ = adopt(new MutableString(64));
}

Lexer::~Lexer() = default;

//===--- Characters and positions -------------------------------------------===//

bool Lexer::get(ZnUnichar* theCharacter) { return reader_->readCharacter(theCharacter); }

template <class Stop> ZnIndex Lexer::takeRun(MutableString* theText, Stop theStop, bool theRunsAreLong) {
  ZnIndex available;
  const ZnUnichar* run = reader_->getBufferedCharacters(&available);
  ZnIndex count = 0;
  // Text runs are long: sixteen at a time while none of them ends the run,
  // a loop of a known count without an early exit, which the compiler
  // vectorizes. For the short runs of names and blanks that costs more
  // than it saves.
  constexpr ZnIndex kAtOnce = 16;
  while (theRunsAreLong && available - count >= kAtOnce) {
    uint16_t stops = 0;
    for (ZnIndex k = 0; k < kAtOnce; ++k)
      stops |= uint16_t(theStop(run[count + k]));
    if (stops)
      break;
    count += kAtOnce;
  }
  while (count < available && !theStop(run[count]))
    ++count;
  if (count > 0) {
    if (theText)
      theText->appendCharacters(run, count);
    reader_->skipBufferedCharacters(count);
  }
  return count;
}

void Lexer::unget(ZnUnichar theCharacter) { reader_->unreadCharacter(theCharacter); }

bool Lexer::skip(ZnUnichar theCharacter) {
  ZnUnichar c;
  if (!get(&c))
    return false;
  if (c == theCharacter)
    return true;
  unget(c);
  return false;
}

void Lexer::markTokenStart(ZnIndex theConsumed) {
  reader_->markPosition();
  tokenConsumed_ = theConsumed;
  tokenBreaks_ = 0;
}

void Lexer::getTokenRange(SourceRange* theRange) const {
  theRange->endLine = reader_->getLine();
  theRange->endColumn = reader_->getColumn();
  theRange->startLine = theRange->endLine - tokenBreaks_;
  theRange->startColumn = reader_->getMarkedColumn() - tokenConsumed_;
}

int32_t Lexer::refuse(const char* theMessage) {
  parser_->refuse(theMessage);
  return KxUnknown;
}

int32_t Lexer::open(int32_t theToken) {
  if (++nesting_ > kMaxNestingDepth)
    return refuse("expression nested too deeply");
  return theToken;
}

int32_t Lexer::close(int32_t theToken) {
  if (nesting_ > 0)
    --nesting_;
  return theToken;
}

int32_t Lexer::nextToken(ParseValue* theValue) {
  theValue->expr = nullptr;
  theValue->depth = 0;
  int32_t token;
  if (pendingToken_ != 0)
    token = open(std::exchange(pendingToken_, 0));
  else
    token = boxDepth_ > 0 ? scanBox(theValue) : scanLinear(theValue);
  lastToken_ = token;
  return token;
}

//===--- The linear syntax --------------------------------------------------===//

int32_t Lexer::scanLinear(ParseValue* theValue) {
  ZnUnichar c;
  for (;;) {
    takeRun(nullptr, [](ZnUnichar theCharacter) { return !IsSpace(theCharacter); });
    if (!get(&c)) {
      markTokenStart(0);
      return 0;
    }
    if (IsSpace(c) || c == '~') // the tilde is deliberately skipped like white space
      continue;
    markTokenStart(1);
    switch (c) {
    case '!':
      if (skip('!'))
        return KxFactorial2;
      return skip('=') ? int32_t(KxUnequal) : '!';
    case '"':
      return scanString(theValue);
    case '#':
      return scanSlot(theValue);
    case '%':
      return scanOut(theValue);
    case '&':
      return skip('&') ? int32_t(KxAnd) : '&';
    case '\'': case ',': case ';': case '?':
      return c;
    case '(':
      if (skip('*')) {
        if (!skipComment())
          return refuse("unterminated comment");
        continue;
      }
      return open('(');
    case '[': case '{':
      return open(c);
    case ')': case ']': case '}':
      return close(c);
    case '*':
      if (skip('*'))
        return KxNonCommutativeMultiply;
      return skip('=') ? int32_t(KxTimesBy) : '*';
    case '+':
      if (skip('+'))
        return KxIncrement;
      if (skip('='))
        return KxIncrementBy;
      return scanSign('+');
    case '-':
      if (skip('-'))
        return KxDecrement;
      if (skip('='))
        return KxDecrementBy;
      if (skip('>'))
        return KxRule;
      return scanSign('-');
    case '.': {
      if (skip('.'))
        return skip('.') ? KxRepeatedNull : KxRepeated;
      ZnUnichar next;
      if (get(&next)) {
        unget(next);
        if (IsDigit(next))
          return scanNumber(c, theValue);
      }
      return '.';
    }
    case '/':
      if (skip('@'))
        return KxMap;
      if (skip('='))
        return KxDivideBy;
      if (skip('.'))
        return KxReplaceAll;
      if (skip(';'))
        return KxCondition;
      if (skip(':'))
        return KxTag;
      if (skip('/')) {
        if (skip('@'))
          return KxMapAll;
        return skip('.') ? KxReplaceRepeated : KxSlashSlash;
      }
      return '/';
    case ':':
      if (skip('='))
        return KxSetDelayed;
      return skip('>') ? int32_t(KxRuleDelayed) : ':';
    case '<':
      if (skip('|')) {
        // An association <| ... |> reads as Association[ ... ].
        theValue->expr = new Symbol("Association");
        pendingToken_ = '[';
        return KxSymbol;
      }
      if (skip('<'))
        return KxGet;
      if (skip('='))
        return KxLessEqual;
      return skip('>') ? int32_t(KxStringJoin) : '<';
    case '=':
      if (skip('='))
        return skip('=') ? KxSameQ : KxEqual;
      if (skip('!')) {
        if (skip('='))
          return KxUnsameQ;
        unget('!');
      }
      return '=';
    case '>':
      if (skip('>')) {
        int32_t token = skip('>') ? KxPutAppend : KxPut;
        skipFileName();
        return token;
      }
      return skip('=') ? int32_t(KxGreaterEqual) : '>';
    case '@':
      if (skip('@'))
        return skip('@') ? KxApply1 : KxApply;
      return '@';
    case '^':
      if (skip('='))
        return KxUpSet;
      if (skip(':')) {
        if (skip('='))
          return KxUpSetDelayed;
        unget(':');
      }
      return '^';
    case '_':
      return scanBlank(nullptr, theValue);
    case '|':
      if (skip('>'))
        return close(']');
      return skip('|') ? int32_t(KxOr) : '|';
    case '\\': {
      ZnUnichar next;
      if (!get(&next))
        return KxUnknown;
      if (next == '\n')
        continue; // a line continuation
      if (next == '\r') {
        skip('\n');
        continue;
      }
      if (next == '(') {
        boxDepth_ = 1;
        return open(KxRowBoxBegin);
      }
      if (next == ')')
        return KxRowBoxEnd; // without a group to close: a syntax error
      if (next == '!') {
        ZnUnichar second;
        if (get(&second)) {
          if (second == '\\') {
            if (skip('(')) {
              unget('(');
              unget('\\');
              return KxRowBoxEval;
            }
          }
          unget(second);
        }
      }
      unget(next);
      return scanSymbol(c, theValue);
    }
    default:
      if (IsDigit(c))
        return scanNumber(c, theValue);
      if (IsNameStart(c))
        return scanSymbol(c, theValue);
      return KxUnknown;
    }
  }
}

int32_t Lexer::scanSign(ZnUnichar theSign) {
  if (EndsOperand(lastToken_))
    return theSign;
  return theSign == '+' ? KxUnaryPlus : KxUnaryMinus;
}

bool Lexer::skipComment() {
  // "(*" has been read; comments nest.
  int32_t depth = 1;
  ZnUnichar c;
  while (get(&c)) {
    if (c == '(' && skip('*')) {
      ++depth;
    } else if (c == '*' && skip(')')) {
      if (--depth == 0)
        return true;
    }
  }
  return false;
}

void Lexer::skipFileName() {
  // The file name after ">>" or ">>>" is not kept.
  ZnUnichar c;
  do {
    if (!get(&c))
      return;
  } while (c == ' ' || c == '\t');
  if (c == '"') {
    text_->removeAll();
    scanQuoted(text_.get(), false);
    return;
  }
  while (!IsSpace(c) && c != ',' && c != ';' && c != ')' && c != ']' && c != '}' && c != '&' && c != '"') {
    if (!get(&c))
      return;
  }
  unget(c);
}

//===--- Names, blanks, slots and output references ---------------------------===//

bool Lexer::readEscapedCharacter(ZnUnichar* theCharacter) {
  // Mostly the escape lies whole among the characters that the reader holds
  // ready, and is decoded there.
  ZnIndex available;
  const ZnUnichar* ready = reader_->getBufferedCharacters(&available);
  // A backslash in a string mostly stands before a quote or a backslash,
  // which starts no character escape: that needs no call.
  if (available > 0 && ready[0] != '[' && ready[0] != '.' && ready[0] != ':')
    return false;
  Escape escape = Escape::decode(ready, available, Escape::kCharacterForms);
  if (escape.kind == Escape::kCharacter) {
    reader_->skipBufferedCharacters(escape.length);
    *theCharacter = escape.character;
    return true;
  }
  if (escape.kind == Escape::kNone)
    return false;
  // It runs past them (escape is incomplete): read it a character at a
  // time, and give back what was read when it is no escape after all.
  ZnUnichar read[NamedCharacterTable::kMaximumNameLength + 2];
  ZnIndex count = 0;
  while (escape.kind == Escape::kIncomplete && count < ZnIndex(sizeof read / sizeof read[0]) && get(&read[count]))
    escape = Escape::decode(read, ++count, Escape::kCharacterForms);
  if (escape.kind == Escape::kCharacter) {
    *theCharacter = escape.character;
    return true;
  }
  while (count > 0)
    unget(read[--count]);
  return false;
}

bool Lexer::scanName(ZnUnichar theFirst) {
  text_->removeAll();
  ZnUnichar c = theFirst;
  for (;;) {
    if (IsNameStart(c) || (IsDigit(c) && text_->length() > 0)) {
      text_->appendCharacter(c);
      takeRun(text_.get(), [](ZnUnichar theCharacter) { return !IsNameStart(theCharacter) && !IsDigit(theCharacter); });
    } else if (c == '\\') {
      // A named character or a hexadecimal escape belongs to the name as
      // the character it stands for.
      ZnUnichar escaped;
      if (!readEscapedCharacter(&escaped))
        break;
      text_->appendCharacter(escaped);
    } else {
      break;
    }
    if (!get(&c))
      return text_->length() > 0;
  }
  if (c != '\\' || text_->length() > 0)
    unget(c);
  return text_->length() > 0;
}

int32_t Lexer::scanSymbol(ZnUnichar theFirst, ParseValue* theValue) {
  if (!scanName(theFirst))
    return KxUnknown;
  auto symbol = adopt(parser_->getAtoms()->symbol(text_.get()));
  if (skip('_'))
    return scanBlank(symbol.get(), theValue);
  theValue->expr = symbol.leak();
  return KxSymbol;
}

int32_t Lexer::scanBlank(Expr* thePatternName, ParseValue* theValue) {
  // One "_" has been read: "_", "__" and "___", each with an optional head.
  Head kind = Head::Blank;
  if (skip('_'))
    kind = skip('_') ? Head::BlankNullSequence : Head::BlankSequence;
  Ref<Function> blank;
  ZnUnichar c;
  if (get(&c)) {
    if (IsNameStart(c) && scanName(c)) {
      auto head = adopt(parser_->getAtoms()->symbol(text_.get()));
      blank = adopt(Function::create(HeadSymbol(kind), head.get()));
    } else {
      unget(c);
    }
  }
  if (!blank)
    blank = adopt(Function::create(HeadSymbol(kind)));
  if (thePatternName == nullptr) {
    *theValue = {blank.leak(), 1};
    return KxFunction;
  }
  *theValue = {Function::create(HeadSymbol(Head::Pattern), thePatternName, blank.get()), 2};
  return KxFunction;
}

Expr* Lexer::scanIndex() {
  // Digits (wrapping at 32 bits like every integer) or nothing, which means 1.
  ZnUnichar c;
  if (!get(&c))
    return retained<Expr>(SharedOne()).leak();
  if (!IsDigit(c)) {
    unget(c);
    return retained<Expr>(SharedOne()).leak();
  }
  uint32_t value = 0;
  for (;;) {
    value = value * 10 + uint32_t(c - '0');
    if (!get(&c))
      break;
    if (!IsDigit(c)) {
      unget(c);
      break;
    }
  }
  return new MachineInteger(int32_t(value));
}

int32_t Lexer::scanSlot(ParseValue* theValue) {
  Head kind = skip('#') ? Head::SlotSequence : Head::Slot;
  auto number = adopt(scanIndex());
  *theValue = {Function::create(HeadSymbol(kind), number.get()), 1};
  return KxFunction;
}

int32_t Lexer::scanOut(ParseValue* theValue) {
  // %% is Out[-2], %%% Out[-3], ...
  int32_t count = 1;
  while (skip('%'))
    ++count;
  auto number = adopt(count > 1 ? new MachineInteger(-count) : scanIndex());
  *theValue = {Function::create(HeadSymbol(Head::Out), number.get()), 1};
  return KxFunction;
}

//===--- Numbers --------------------------------------------------------------===//

namespace {

/// A literal's digits as they are read: the value as a 32-bit integer that
/// wraps silently and, for reals, what a float conversion needs.
struct NumberDigits {
  int32_t base = 10;
  uint32_t integer = 0;
  /// Whether the digits say more than a signed 32-bit integer holds.
  bool tooLarge = false;
  /// Base 10: up to 19 significant digits, and the power of ten to apply.
  uint64_t mantissa = 0;
  int32_t mantissaDigits = 0;
  int32_t exponent = 0;
  bool inexact = false;
  /// Other bases: the value accumulated as a float.
  double value = 0.0;
  double fractionScale = 1.0;
  bool sawPoint = false;

  void add(int32_t theDigit) {
    // In 64 bits the next value cannot wrap: no division a digit.
    tooLarge = tooLarge || uint64_t(integer) * uint32_t(base) + uint32_t(theDigit) > uint64_t(INT32_MAX);
    integer = integer * uint32_t(base) + uint32_t(theDigit);
    if (base != 10) {
      if (sawPoint) {
        fractionScale /= base;
        value += theDigit * fractionScale;
      } else {
        value = value * base + theDigit;
      }
      return;
    }
    if (mantissaDigits == 0 && theDigit == 0) {
      // Leading zeros carry no information, but after the point they scale.
      if (sawPoint)
        --exponent;
      return;
    }
    if (mantissaDigits < 19) {
      mantissa = mantissa * 10 + uint64_t(theDigit);
      ++mantissaDigits;
      if (sawPoint)
        --exponent;
      return;
    }
    inexact = inexact || theDigit != 0;
    if (!sawPoint)
      ++exponent;
  }
};

/// The float value of the digits times 10^theExponent. Short mantissas with
/// small exponents are converted exactly by one multiplication or division;
/// anything else goes through the library's correctly rounded conversion of
/// the kept text (theText: digits and one point, in base 10).
double RealValue(const NumberDigits& theDigits, int32_t theExponent, const MutableString* theText) {
  if (theDigits.base != 10)
    return theDigits.value * std::pow(10.0, theExponent);
  int64_t power = int64_t(theDigits.exponent) + theExponent;
  if (!theDigits.inexact && theDigits.mantissa <= (uint64_t(1) << 53) && power >= -22 && power <= 22) {
    double m = double(theDigits.mantissa);
    return power >= 0 ? m * kExactPowers[power] : m / kExactPowers[-power];
  }
  // The digits, "e" and the exponent; most fit the buffer on the stack.
  constexpr Sys::size_t kExponentRoom = 16;
  char local[64];
  ZnIndex length = theText->length();
  char* buffer = Sys::size_t(length) + kExponentRoom <= sizeof local
                     ? local
                     : static_cast<char*>(Allocate(Sys::size_t(length) + kExponentRoom));
  for (ZnIndex i = 0; i < length; ++i)
    buffer[i] = char(theText->unitAt(i));
  buffer[length] = 'e';
  char* end = std::to_chars(buffer + length + 1, buffer + length + kExponentRoom, theExponent).ptr;
  double result = 0.0;
  std::from_chars(buffer, end, result);
  if (buffer != local)
    Free(buffer);
  return result;
}
} // namespace

int32_t Lexer::scanNumber(ZnUnichar theFirst, ParseValue* theValue) {
  NumberDigits digits;
  text_->removeAll();
  ZnUnichar c = theFirst;
  bool more = true;
  // The digits of the current base, with at most one point among them; a
  // backslash and a line end inside the number are skipped.
  auto readDigits = [&]() {
    for (; more; more = get(&c)) {
      int32_t digit = DigitValue(c);
      if (digit < digits.base) {
        digits.add(digit);
        text_->appendCharacter(c);
        continue;
      }
      if (c == '.' && !digits.sawPoint) {
        // "1.." is 1 followed by "..", not the real 1.0 and a ".".
        if (skip('.')) {
          unget('.');
          break;
        }
        digits.sawPoint = true;
        text_->appendCharacter(c);
        continue;
      }
      if (c == '\\') {
        ZnUnichar next;
        if (get(&next)) {
          if (next == '\n')
            continue;
          if (next == '\r') {
            skip('\n');
            continue;
          }
          unget(next);
        }
      }
      break;
    }
  };
  readDigits();
  if (more && c == '^' && !digits.sawPoint) {
    if (skip('^')) {
      // base^^digits: the base is clamped to 2-36.
      int32_t base = int32_t(digits.integer);
      digits = NumberDigits();
      digits.base = base < 2 ? 2 : base > 36 ? 36 : base;
      text_->removeAll();
      more = get(&c);
      readDigits();
    }
  }
  bool isReal = digits.sawPoint;
  if (more && c == '`') {
    // A precision mark: "`" or "``" and its digits, which leave the value alone.
    isReal = true;
    more = get(&c);
    if (more && c == '`')
      more = get(&c);
    bool point = false;
    while (more && (IsDigit(c) || (c == '.' && !point))) {
      point = point || c == '.';
      more = get(&c);
    }
  }
  int32_t exponent = 0;
  if (more && c == '*') {
    // "*^" and a signed exponent; anything else after "*" is given back.
    ZnUnichar read[3];
    ZnIndex count = 0;
    bool negative = false;
    ZnUnichar next;
    bool haveNext = get(&next);
    if (haveNext && next == '^') {
      read[count++] = next;
      haveNext = get(&next);
      if (haveNext && (next == '-' || next == '+')) {
        read[count++] = next;
        negative = next == '-';
        haveNext = get(&next);
      }
    }
    if (count > 0 && haveNext && IsDigit(next)) {
      isReal = true;
      int32_t value = 0;
      do {
        if (value < 100000)
          value = value * 10 + (next - '0');
      } while ((haveNext = get(&next)) && IsDigit(next));
      exponent = negative ? -value : value;
      more = haveNext;
      c = next;
    } else {
      if (haveNext)
        unget(next);
      while (count > 0)
        unget(read[--count]);
    }
  }
  if (more)
    unget(c);
  if (isReal) {
    theValue->expr = parser_->getAtoms()->real(RealValue(digits, exponent, text_.get()));
    return KxMachineReal;
  }
  if (digits.tooLarge) {
    // Kept as written: a machine integer would wrap around.
    auto written = adopt(new MutableString(text_->length() + 4));
    if (digits.base != 10)
      written->appendFormat("%d^^", int(digits.base));
    written->appendString(text_.get());
    auto frozen = adopt(String::createWithString(written.get()));
    theValue->expr = new BigInteger(frozen.get(), RealValue(digits, 0, text_.get()));
    return KxMachineInteger;
  }
  theValue->expr = parser_->getAtoms()->integer(int32_t(digits.integer));
  return KxMachineInteger;
}

//===--- Strings ----------------------------------------------------------------===//

bool Lexer::scanQuoted(MutableString* theText, bool theParseGroups) {
  ZnUnichar c;
  for (;;) {
    takeRun(
        theText,
        [](ZnUnichar theCharacter) {
          return theCharacter == '"' || theCharacter == '\\' || theCharacter == '\n' || theCharacter == '\r';
        },
        true);
    if (!get(&c))
      return false;
    if (c == '"')
      return true;
    if (c == '\n' || c == '\r') {
      // A line end inside a string is a line break of its text, kept as one
      // line feed whether the file ends its lines with LF or CR LF; only a
      // backslash before it joins the lines (below).
      ++tokenBreaks_;
      theText->appendCharacter(c == '\r' && !skip('\n') ? c : ZnUnichar('\n'));
      continue;
    }
    if (c != '\\') {
      theText->appendCharacter(c);
      continue;
    }
    ZnUnichar escaped;
    if (readEscapedCharacter(&escaped)) {
      theText->appendCharacter(escaped);
      continue;
    }
    if (!get(&c))
      return false;
    switch (c) {
    case '\n':
      ++tokenBreaks_;
      break;
    case '\r':
      ++tokenBreaks_;
      skip('\n');
      break;
    case '[': case '.': case ':':
      // No character escape: the backslash is text, and so is what follows.
      unget(c);
      theText->appendCharacter('\\');
      break;
    case '(':
      if (!scanGroup("\\(", theText, theParseGroups))
        return false;
      break;
    case '!': {
      ZnUnichar next;
      if (get(&next)) {
        if (next == '\\' && skip('(')) {
          if (!scanGroup("\\!\\(", theText, theParseGroups))
            return false;
          break;
        }
        unget(next);
      }
      theText->appendCString("\\!");
      break;
    }
    default:
      // "\"" and "\\" keep their backslash, like every escape not decoded here.
      theText->appendCharacter('\\');
      theText->appendCharacter(c);
      break;
    }
  }
}

bool Lexer::scanGroup(const char* theOpening, MutableString* theText, bool theParse) {
  SourceRange range;
  range.startLine = reader_->getLine();
  range.startColumn = reader_->getColumn() - int64_t(StringLength(theOpening));
  group_->removeAll();
  group_->appendCString(theOpening);
  int32_t depth = 1;
  ZnUnichar c;
  while (depth > 0) {
    if (!get(&c))
      return false;
    if (c == '"') {
      // The string ends inside the group, which therefore stays text.
      unget(c);
      theText->appendString(group_.get());
      return true;
    }
    if (c == '\n' || c == '\r') {
      // Line ends are dropped, after a backslash too; CR LF counts once.
      ++tokenBreaks_;
      if (c == '\r')
        skip('\n');
      continue;
    }
    if (c != '\\') {
      group_->appendCharacter(c);
      continue;
    }
    if (!get(&c))
      return false;
    if (c == '\n' || c == '\r') {
      ++tokenBreaks_;
      if (c == '\r')
        skip('\n');
      continue;
    }
    group_->appendCharacter('\\');
    group_->appendCharacter(c);
    if (c == '(')
      ++depth;
    else if (c == ')')
      --depth;
  }
  if (!theParse) {
    theText->appendString(group_.get());
    return true;
  }
  range.endLine = reader_->getLine();
  range.endColumn = reader_->getColumn();
  auto text = adopt(CopyText(group_.get()));
  ParseValue box;
  if (!parser_->parseSubExpression(text.get(), range, true, &box)) {
    parser_->discard(box);
    theText->appendString(text.get());
    return true;
  }
  flushPiece(theText);
  if (!pieces_)
    pieces_ = adopt(new MutableFunction(2, HeadSymbol(Head::List)));
  pieces_->appendArgument(box.expr, false);
  if (box.depth > piecesDepth_)
    piecesDepth_ = box.depth;
  return true;
}

void Lexer::flushPiece(MutableString* theText) {
  if (theText->length() == 0)
    return;
  if (!pieces_)
    pieces_ = adopt(new MutableFunction(2, HeadSymbol(Head::List)));
  pieces_->appendArgument(new CharacterString(CopyText(theText), false), false);
  theText->removeAll();
}

int32_t Lexer::scanString(ParseValue* theValue) {
  text_->removeAll();
  pieces_ = nullptr;
  piecesDepth_ = 0;
  if (!scanQuoted(text_.get(), true)) {
    pieces_ = nullptr;
    return refuse("unterminated string");
  }
  if (!pieces_) {
    if (text_->length() >= kTakenTextLength) {
      // A long text (a compressed picture, a packed array) keeps the block
      // it was gathered in rather than being copied out of it.
      *theValue = Atom(new CharacterString(text_->createStringTakingCharacters(), false));
      text_->ensureCapacity(256);
      return KxString;
    }
    *theValue = Atom(parser_->getAtoms()->string(text_.get()));
    return KxString;
  }
  // Text with parsed box groups: the pieces in a row, or the one box alone.
  flushPiece(text_.get());
  Ref<MutableFunction> pieces = std::move(pieces_);
  if (pieces->length() == 1) {
    *theValue = {retained(pieces->part(1)).leak(), piecesDepth_};
    return KxString;
  }
  *theValue = {Function::create(HeadSymbol(Head::RowBox), pieces.get()), piecesDepth_ + 2};
  return KxString;
}

//===--- Box mode -----------------------------------------------------------------===//

int32_t Lexer::scanBox(ParseValue* theValue) {
  if (readElement_) {
    readElement_ = false;
    return scanElement(theValue);
  }
  ZnUnichar c;
  for (;;) {
    if (!get(&c)) {
      markTokenStart(0);
      return 0;
    }
    if (IsSpace(c))
      continue;
    markTokenStart(1);
    if (c != '\\')
      return scanRun(c, theValue);
    ZnUnichar op;
    if (!get(&op))
      return scanRun(c, theValue);
    switch (op) {
    case '\n':
      continue;
    case '\r':
      skip('\n');
      continue;
    case '(':
      ++boxDepth_;
      return open(KxRowBoxBegin);
    case ')': case '%': case '/': case '^': case '_': case '&': case '+':
      if (IsBoxOperator(lastToken_)) {
        // An operand left out of the notation: an empty string stands for it.
        unget(op);
        unget('\\');
        text_->removeAll();
        *theValue = Atom(parser_->getAtoms()->string(text_.get()));
        return KxString;
      }
      switch (op) {
      case ')':
        --boxDepth_;
        return close(KxRowBoxEnd);
      case '%':
        return KxBothBox;
      case '/':
        return KxFractionBox;
      case '^':
        return KxSuperscriptBox;
      case '_':
        return KxSubscriptBox;
      case '&':
        return KxOverscriptBox;
      default:
        return KxUnderscriptBox;
      }
    case '@':
      return KxSqrtBox;
    case '`':
      return KxFormBox;
    case '!':
      return KxRowBoxEval;
    case '*':
      readElement_ = true;
      return KxInterpretBox;
    default:
      unget(op);
      return scanRun(c, theValue);
    }
  }
}

int32_t Lexer::scanRun(ZnUnichar theFirst, ParseValue* theValue) {
  text_->removeAll();
  ZnUnichar c = theFirst;
  for (;;) {
    if (IsSpace(c))
      break;
    if (c == '"') {
      text_->appendCharacter(c);
      if (!scanQuoted(text_.get(), false))
        return refuse("unterminated string");
      text_->appendCharacter(c);
    } else if (c != '\\') {
      text_->appendCharacter(c);
      takeRun(text_.get(), [](ZnUnichar theCharacter) {
        return IsSpace(theCharacter) || theCharacter == '"' || theCharacter == '\\';
      });
    } else if (ZnUnichar escaped; readEscapedCharacter(&escaped)) {
      text_->appendCharacter(escaped);
    } else {
      ZnUnichar next;
      if (!get(&next)) {
        text_->appendCharacter(c);
        break;
      }
      if (IsBoxOperatorCharacter(next)) {
        unget(next);
        unget(c);
        break;
      }
      switch (next) {
      case '\n':
        break;
      case '\r':
        skip('\n');
        break;
      case '[': case '.': case ':':
        // No character escape: the backslash is text, and so is what follows.
        unget(next);
        text_->appendCharacter(c);
        break;
      case '"': case '\\': case ' ':
        text_->appendCharacter(next);
        break;
      case 'n':
        text_->appendCharacter('\n');
        break;
      case 't':
        text_->appendCharacter('\t');
        break;
      default:
        text_->appendCharacter(c);
        text_->appendCharacter(next);
        break;
      }
    }
    if (!get(&c))
      break;
  }
  *theValue = Atom(parser_->getAtoms()->string(text_.get()));
  return KxString;
}

int32_t Lexer::scanElement(ParseValue* theValue) {
  // The element after "\*", kept as text: it runs to white space or a box
  // operator outside brackets, quotes and groups, or to the "\)" that closes
  // the enclosing group. Inside a group brackets are text ("\(]\)" is a
  // row holding "]"), and the brackets of "\[Name]" are no brackets at all.
  text_->removeAll();
  ZnUnichar c;
  do {
    if (!get(&c)) {
      *theValue = Atom(new CharacterString(CopyText(text_.get()), false));
      return KxString;
    }
  } while (IsSpace(c));
  markTokenStart(1);
  int32_t brackets = 0;
  int32_t groups = 0;
  bool quoted = false;
  bool escapedQuoted = false;
  for (bool more = true; more; more = get(&c)) {
    if (quoted) {
      text_->appendCharacter(c);
      if (c == '"')
        quoted = false;
      else if (c == '\\' && get(&c))
        text_->appendCharacter(c);
      continue;
    }
    if (c == '\\') {
      ZnUnichar next;
      if (!get(&next)) {
        text_->appendCharacter(c);
        break;
      }
      bool outside = brackets == 0 && groups == 0 && !escapedQuoted;
      if ((next == ')' && groups == 0) || (outside && next != '(' && IsBoxOperatorCharacter(next))) {
        unget(next);
        unget(c);
        break;
      }
      if (next == '\n' || next == '\r')
        continue;
      if (next == '[') {
        text_->appendCharacter(c);
        text_->appendCharacter(next);
        while (get(&c)) {
          if (!IsLetter(c) && !IsDigit(c)) {
            if (c == ']')
              text_->appendCharacter(c);
            else
              unget(c);
            break;
          }
          text_->appendCharacter(c);
        }
        continue;
      }
      if (next == '(')
        ++groups;
      else if (next == ')')
        --groups;
      else if (next == '"')
        escapedQuoted = !escapedQuoted;
      text_->appendCharacter(c);
      text_->appendCharacter(next);
      continue;
    }
    if (c == '\n' || c == '\r')
      continue;
    if (!escapedQuoted) {
      if (c == '"') {
        quoted = true;
      } else if (groups == 0) {
        if (c == '[' || c == '(' || c == '{')
          ++brackets;
        else if ((c == ']' || c == ')' || c == '}') && brackets > 0)
          --brackets;
        else if (brackets == 0 && IsSpace(c))
          break;
      }
    }
    text_->appendCharacter(c);
  }
  *theValue = Atom(new CharacterString(CopyText(text_.get()), false));
  return KxString;
}
} // namespace Zn::Kx
