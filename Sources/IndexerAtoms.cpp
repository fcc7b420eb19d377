//===- IndexerAtoms.cpp - Symbols, strings and numbers as a reader sees them ===//
#include "SearchIndexer.h"
#include "AtomText.h"
#include "IndexerVocabulary.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxExpr.h"
#include "Kx/KxNumber.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

//===--- Scratch text -----------------------------------------------------===//

/// Lends one of the indexer's reusable strings, emptied, for one scope.
class SearchIndexer::Scratch {
public:
  explicit Scratch(SearchIndexer* theIndexer) : indexer_(theIndexer) {
    if (theIndexer->scratchCount_ == 0) {
      // Wide from the start, so that what is written into it can be read
      // through a pointer.
      string_ = adopt(new Zn::MutableString(64));
      string_->widen();
      return;
    }
    string_ = std::move(theIndexer->scratchPool_[--theIndexer->scratchCount_]);
    string_->setLength(0);
  }
  ~Scratch() {
    if (indexer_->scratchCount_ < kScratchPoolSize)
      indexer_->scratchPool_[indexer_->scratchCount_++] = std::move(string_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  Zn::MutableString* operator->() const { return string_.get(); }
  Zn::MutableString* get() const { return string_.get(); }
  const ZnUnichar* units() const { return string_->getWideCharactersPtr(); }

private:
  SearchIndexer* indexer_;
  Zn::Ref<Zn::MutableString> string_;
};

//===--- Atoms ------------------------------------------------------------===//


namespace {
bool HoldsQuoteOrBackslash(const ZnUnichar* theText, ZnIndex theLength) {
  for (ZnIndex i = 0; i < theLength; ++i)
    if (theText[i] == '"' || theText[i] == '\\')
      return true;
  return false;
}
} // namespace

void SearchIndexer::indexString(Expr* theLeaf, const IndexContext& theContext) {
  auto symbol = theLeaf->asSymbol();
  if (symbol && symbol->isEqual(HeadSymbol(Head::Null)))
    return;
  if (symbol) {
    // The context (up to the last backquote) is no part of what a reader sees.
    Zn::WideCharacters name(symbol->getName());
    const ZnUnichar* units = name.data();
    ZnIndex start = name.length();
    while (start > 0 && units[start - 1] != '`')
      --start;
    writeAtomText(units + start, name.length() - start, theContext);
    return;
  }
  Zn::String* text = stringText(theLeaf);
  if (!text) {
    // A number as the file writes it, not through a fixed format.
    auto real = dynamic_cast<const Zn::Kx::MachineReal*>(theLeaf);
    auto value = adopt(real ? real->shortestText() : theLeaf->stringValue());
    Zn::WideCharacters units(value.get());
    writeResolvedText(units.data(), units.length(), theContext);
    return;
  }
  Zn::WideCharacters wide(text);
  const ZnUnichar* units = wide.data();
  ZnIndex length = wide.length();
  // A place in the documentation (a tooltip's "paclet:ref/Name") is no
  // text of the page and no address a reader could follow.
  if (theContext.insideBoxData && !theContext.codeStyle && AtomText::isPacletAddress(units, length))
    return;
  // Outside code the page shows numbers without their precision marks, be
  // the string one number or a run of linear syntax that holds some.
  Scratch unmarked(this);
  if (theContext.insideBoxData && !theContext.codeStyle &&
      AtomText::dropNumberMarks(units, length, unmarked.get())) {
    units = unmarked.units();
    length = unmarked->length();
  }
  // Without a quote or a backslash there is no literal to find and no
  // escape that could make one.
  if (!theContext.showStringCharacters && HoldsQuoteOrBackslash(units, length)) {
    // Where string characters are hidden, string literals lose their quotes
    // and their own escapes resolve: a string that holds one literal,
    // written "\"...\"", or a run of linear syntax in which literals stand
    // with their quotes among other text ("size "2"X").
    Scratch value(this);
    AtomText::resolveEscapes(units, length, value.get());
    if (AtomText::isOneStringLiteral(value.units(), value->length())) {
      writeAtomText(value.units() + 1, value->length() - 2, theContext);
      return;
    }
    if (AtomText::holdsStringLiterals(units, length)) {
      ZnIndex written = 0;
      ZnIndex start = 0;
      ZnIndex end = 0;
      while (AtomText::findStringLiteral(units, length, written, &start, &end)) {
        writeAtomText(units + written, start - written, theContext);
        writeAtomText(units + start + 1, end - start - 2, theContext);
        written = end;
      }
      writeAtomText(units + written, length - written, theContext);
      return;
    }
  }
  writeAtomText(units, length, theContext);
}

void SearchIndexer::writeResolvedText(const ZnUnichar* theCharacters, ZnIndex theLength,
                                      const IndexContext& theContext) {
  if (theLength == 0)
    return;
  // Text that the encoding leaves as it is goes out without a copy.
  if (characterEncoding_->plainLength(theCharacters, theLength) == theLength) {
    theContext.writer->putCharacters(theCharacters, theLength);
    return;
  }
  Scratch out(this);
  characterEncoding_->escapeString(theCharacters, theLength, out.get());
  theContext.writer->putCharacters(out.units(), out->length());
}

void SearchIndexer::writeAtomText(const ZnUnichar* theText, ZnIndex theLength, const IndexContext& theContext) {
  // Without a backslash there is no escape to resolve and no box group.
  ZnIndex backslash = 0;
  while (backslash < theLength && theText[backslash] != '\\')
    ++backslash;
  if (backslash == theLength) {
    writeResolvedText(theText, theLength, theContext);
    return;
  }
  // Box groups can only be found once the escapes around them are resolved:
  // a group inside a string inside a string is written "\\!\\(...\\)".
  Scratch resolved(this);
  AtomText::resolveEscapes(theText, theLength, resolved.get());
  const ZnUnichar* text = resolved.units();
  const ZnIndex length = resolved->length();
  ZnIndex written = 0;
  ZnIndex start = 0;
  ZnIndex end = 0;
  for (ZnIndex from = 0; AtomText::findBoxGroup(text, length, from, &start, &end);) {
    Zn::Ref<Expr> box = adopt(AtomText::parseBoxGroup(text + start, end - start));
    if (!box) {
      from = start + 1;
      continue;
    }
    writeResolvedText(text + written, start - written, theContext);
    indexBox(box.get(), theContext);
    written = from = end;
  }
  writeResolvedText(text + written, length - written, theContext);
}
