//===- IndexerVocabulary.h - Heads and option names the walk recognises ---===//
#pragma once
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnRef.h"

namespace Zn {
class String;
} // namespace Zn

/// The symbols against which the notebook walk compares box heads, cell
/// styles and option names (always with isEqual), all listed in
/// IndexerVocabulary.def. They are made before main runs, in the order of
/// that list, and released at exit in the reverse order.
namespace Vocabulary {

/// One symbol of the vocabulary, held by an owning reference, with its hash
/// kept so that a comparison can rule out most heads by an integer compare
/// before it asks isEqual (equal objects hash alike).
class Word {
public:
  explicit Word(const char* theName);
  Word(const Word&) = delete;
  Word& operator=(const Word&) = delete;

  /// Borrowed.
  Zn::Kx::Symbol* get() const { return symbol_.get(); }
  uint32_t getHash() const { return hash_; }
  const char* getName() const { return name_; }

  /// Whether theExpr (which may be null) is this symbol.
  bool matches(const Zn::Kx::Expr* theExpr) const;
  /// The same, for an expression whose hash the caller already has.
  bool matches(const Zn::Kx::Expr* theExpr, uint32_t theHash) const {
    return theHash == hash_ && theExpr->isEqual(symbol_.get());
  }
  /// Whether theExpr (which may be null) is a compound whose head is this symbol.
  bool isHeadOf(const Zn::Kx::Expr* theExpr) const;
  /// Whether theText (which may be null) spells this symbol's name (cell
  /// styles are strings); without theCaseSensitive A-Z fold to a-z.
  bool isNameOf(const Zn::String* theText, bool theCaseSensitive = true) const;
  /// The same for an expression: a string atom holding the name.
  bool isNameOf(const Zn::Kx::Expr* theExpr) const;

private:
  Zn::Ref<Zn::Kx::Symbol> symbol_;
  const char* name_;
  uint32_t hash_;
};

using Constant = const Word;

#define BOX(Name, Walk, Quotes) extern Constant Name;
#define WORD(Name) extern Constant Name;
#include "IndexerVocabulary.def"

/// The kinds of box the dispatcher tells apart: one per BOX line, and
/// Other for any head that is not listed.
enum class BoxKind : uint8_t {
  Other,
#define BOX(Name, Walk, Quotes) Name,
#include "IndexerVocabulary.def"
};

/// The kind of box whose head is theHead, hashed as theHash.
BoxKind boxKindOf(const Zn::Kx::Expr* theHead, uint32_t theHash);
/// Whether boxes of theKind show their string labels without quotes.
bool hidesQuotes(BoxKind theKind);

} // namespace Vocabulary

/// Whether theExpr (which may be null) is a compound whose head is the
/// built-in symbol theHead.
inline bool isHead(const Zn::Kx::Expr* theExpr, Zn::Kx::Head theHead) {
  return theExpr && !theExpr->isAtom() && theExpr->head()->isEqual(Zn::Kx::HeadSymbol(theHead));
}

/// Whether theExpr (which may be null) is a List[...].
inline bool isList(const Zn::Kx::Expr* theExpr) { return isHead(theExpr, Zn::Kx::Head::List); }

/// Rule[a, b] or RuleDelayed[a, b] with exactly two parts.
inline bool isRule(const Zn::Kx::Expr* theExpr) {
  return (isHead(theExpr, Zn::Kx::Head::Rule) || isHead(theExpr, Zn::Kx::Head::RuleDelayed)) &&
         theExpr->length() == 2;
}

/// The text of a string atom, or null for anything else (theExpr may be
/// null). Borrowed.
inline Zn::String* stringText(const Zn::Kx::Expr* theExpr) {
  auto string = theExpr ? theExpr->asCharacterString() : nullptr;
  return string ? string->getValue() : nullptr;
}

/// Whether theText (which may be null) is an address a reader can follow:
/// it holds "://" or is a mail address.
bool isWebAddress(const Zn::String* theText);

/// The value of the option theName among the arguments of theBox from
/// theFirst on: the right side of the first Rule or RuleDelayed whose left
/// side is that symbol. Borrowed; null when absent (or theBox is null).
Zn::Kx::Expr* optionValue(const Zn::Kx::Expr* theBox, ZnIndex theFirst, Vocabulary::Constant& theName);
