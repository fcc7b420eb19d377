//===- KxExpr.h - Root of the immutable expression tree --------------------===//
#pragma once
#include <cstddef>
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnObject.h"

namespace Zn {
class String;
class Writer;
} // namespace Zn

namespace Zn::Kx {
class CharacterString;
class Function;
class Symbol;

/// How an expression prints in input form. Passed by address; the default
/// record is the one that description() and stringValue() use.
struct FormatContext {
  /// Precedence of the surrounding operator: an operator that binds less
  /// tightly than this is parenthesised.
  int32_t precedence = 0;
  /// Symbols print without their context prefix (up to the last backquote).
  uint8_t stripContexts = 0;
  /// Character strings print between double quotes.
  uint8_t quoteStrings = 1;
};

/// A node of a parsed notebook: a compound Function, or an atom (symbol,
/// string, number). Expressions never change once built; accessors return
/// borrowed pointers that stay valid while the expression lives.
class Expr : public Object {
public:
  /// Writes the input form: operators infix, prefix or postfix.
  virtual void writeInputForm(Writer* theWriter, const FormatContext* theContext) const;
  /// Writes the full form: every compound node as head[arguments].
  virtual void writeFullForm(Writer* theWriter) const = 0;

  /// Number of arguments; 0 for atoms.
  virtual ZnIndex length() const;
  /// Borrowed. Part 0 is the head, parts 1 to length() the arguments; any
  /// other part is not there and answers null, as does every part of an
  /// atom beyond 0.
  virtual Expr* part(ZnIndex thePart) const;
  /// Borrowed. Never null: atoms answer the symbol naming their type.
  virtual Expr* head() const = 0;
  virtual bool isAtom() const;
  /// Same answers as isAtom().
  virtual bool isAtomic() const;
  /// The expression as a Function, or null for atoms.
  virtual const Function* asFunction() const;
  /// The expression as a symbol or a string atom, or null: the walk asks
  /// this of every atom and head, and one call is cheaper than a cast.
  virtual const Symbol* asSymbol() const;
  virtual const CharacterString* asCharacterString() const;

  /// +1. The full form as text.
  virtual String* fullFormString() const;
  /// +1. The input form as text.
  virtual String* inputFormString(const FormatContext* theContext) const;
  /// +1. The text an indexer shows: a character string's own text, otherwise
  /// the input form with the default context.
  virtual String* stringValue() const;
  virtual int32_t integerValue() const;
  virtual double doubleValue() const;
  /// +1. Minus[this]; numbers change their sign instead.
  virtual Expr* negated() const;

  // Conveniences for walking a tree whose shape is not known: a part that
  // is not there reads as null, an empty string or 0.
  /// Borrowed.
  Expr* partOfPart(ZnIndex thePart, ZnIndex theSubpart) const {
    Expr* e = part(thePart);
    return e ? e->part(theSubpart) : nullptr;
  }
  ZnIndex lengthOfPart(ZnIndex thePart) const {
    Expr* e = part(thePart);
    return e ? e->length() : 0;
  }
  /// +1.
  String* stringValueOfPart(ZnIndex thePart) const;
  double doubleValueOfPart(ZnIndex thePart) const {
    Expr* e = part(thePart);
    return e ? e->doubleValue() : 0;
  }

  /// The input form with the default context.
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Expr() override = default;
};

/// Writes 8-bit text as it stands, one character per byte (no line-end
/// translation: printed expressions keep their text verbatim).
void WriteASCII(Writer* theWriter, const char* theText);
} // namespace Zn::Kx
