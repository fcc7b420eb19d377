//===- IndexerVocabulary.cpp - Heads and option names the walk recognises -===//
#include "IndexerVocabulary.h"
#include "Kx/KxString.h"
#include "Zn/Base/ZnString.h"

namespace Vocabulary {

Word::Word(const char* theName)
    : symbol_(Zn::adopt(new Zn::Kx::Symbol(theName))), name_(theName), hash_(symbol_->hash()) {}

bool Word::matches(const Zn::Kx::Expr* theExpr) const { return theExpr && theExpr->isEqual(symbol_.get()); }

bool Word::isHeadOf(const Zn::Kx::Expr* theExpr) const {
  return theExpr && !theExpr->isAtom() && theExpr->head()->isEqual(symbol_.get());
}

bool Word::isNameOf(const Zn::String* theText, bool theCaseSensitive) const {
  if (!theText)
    return false;
  return theCaseSensitive ? theText->isEqual(symbol_->getName()) : theText->compareToCString(name_, false) == 0;
}

bool Word::isNameOf(const Zn::Kx::Expr* theExpr) const { return isNameOf(stringText(theExpr)); }

// One translation unit, so the constants are built in the order of the list
// and torn down in the reverse one; the table below is built after them.
#define BOX(Name, Walk, Quotes) Constant Name(#Name);
#define WORD(Name) Constant Name(#Name);
#include "IndexerVocabulary.def"

namespace {

enum Quoting : bool { KeepsQuotes = false, HidesQuotes = true };

struct BoxEntry {
  const Word* word;
  BoxKind kind;
  bool hidesQuotes;
};

const BoxEntry kBoxes[] = {
#define BOX(Name, Walk, Quotes) {&Name, BoxKind::Name, Quotes},
#include "IndexerVocabulary.def"
};
constexpr size_t kBoxCount = sizeof kBoxes / sizeof kBoxes[0];

/// The box heads by hash, open addressing: the dispatcher asks once per box
/// of the notebook, so the answer must not cost a comparison per listed head.
class BoxTable {
public:
  BoxTable() {
    for (size_t i = 0; i < kBoxCount; ++i) {
      uint32_t slot = kBoxes[i].word->getHash() & kMask;
      while (slots_[slot])
        slot = (slot + 1) & kMask;
      slots_[slot] = &kBoxes[i];
    }
  }
  BoxKind find(const Zn::Kx::Expr* theHead, uint32_t theHash) const {
    for (uint32_t slot = theHash & kMask; slots_[slot]; slot = (slot + 1) & kMask)
      if (slots_[slot]->word->matches(theHead, theHash))
        return slots_[slot]->kind;
    return BoxKind::Other;
  }

private:
  static constexpr uint32_t kSize = 256;
  static constexpr uint32_t kMask = kSize - 1;
  static_assert(kBoxCount * 2 <= kSize, "the box table stays at most half full");
  const BoxEntry* slots_[kSize] = {};
};

const BoxTable sBoxTable;

} // namespace

BoxKind boxKindOf(const Zn::Kx::Expr* theHead, uint32_t theHash) { return sBoxTable.find(theHead, theHash); }

bool hidesQuotes(BoxKind theKind) {
  // The kinds are numbered in list order after Other.
  const size_t index = size_t(theKind);
  return index >= 1 && index <= kBoxCount && kBoxes[index - 1].hidesQuotes;
}

} // namespace Vocabulary

bool isWebAddress(const Zn::String* theText) {
  return theText &&
         (theText->indexOfCString("mailto:", true, 0) == 0 || theText->indexOfCString("://", true, 0) >= 0);
}

Zn::Kx::Expr* optionValue(const Zn::Kx::Expr* theBox, ZnIndex theFirst, Vocabulary::Constant& theName) {
  if (!theBox)
    return nullptr;
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i) {
    Zn::Kx::Expr* option = theBox->part(i);
    if (isRule(option) && theName.matches(option->part(1)))
      return option->part(2);
  }
  return nullptr;
}
