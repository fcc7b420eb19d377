//===- IndexerDispatch.cpp - The dispatcher and the generic walks ---------===//
#include "SearchIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::Kx::Expr;

//===--- The dispatcher ---------------------------------------------------===//

void SearchIndexer::indexBox(Expr* theBox, const IndexContext& theContext) {
  using Vocabulary::BoxKind;
  if (!theBox)
    return;
  if (theBox->isAtom()) {
    indexString(theBox, theContext);
    return;
  }
  Expr* head = theBox->head();
  const BoxKind kind = Vocabulary::boxKindOf(head, head->hash());
  // Only the controls and the text containers change the context; their
  // copies are made in helpers, so that this frame stays small.
  if (theContext.showStringCharacters && Vocabulary::hidesQuotes(kind))
    return indexWithoutQuotes(theBox, theContext);
  switch (kind) {
#define BOX(Name, Walk, Quotes)                                                                                       \
  case BoxKind::Name:                                                                                                \
    return Walk(theBox, theContext);
#include "IndexerVocabulary.def"
  case BoxKind::Other:
    break;
  }
  walkPieces(theBox, theContext);
}

void SearchIndexer::indexWithoutQuotes(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  context.showStringCharacters = false;
  indexBox(theBox, context);
}

//===--- Generic walks ----------------------------------------------------===//

void SearchIndexer::walkArguments(Expr* theBox, ZnIndex theFirst, const IndexContext& theContext) {
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i)
    indexBox(theBox->part(i), theContext);
}

void SearchIndexer::walkPieces(Expr* theBox, ZnIndex theFirst, Zn::Writer::Separator theSeparator,
                               const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  bool wrote = false;
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i) {
    // The separator goes out only if this piece writes something after it.
    if (wrote)
      writer->requestSeparator(theSeparator);
    const uint32_t before = writer->getPutCount();
    indexBox(theBox->part(i), theContext);
    wrote = wrote || writer->getPutCount() != before;
  }
  // One asked for after the last piece that wrote is no longer wanted; one
  // asked for before these pieces stays until something is written.
  if (wrote)
    writer->cancelSeparator();
}

void SearchIndexer::walkPieces(Expr* theBox, const IndexContext& theContext) {
  walkPieces(theBox, 1, Zn::Writer::kSpaceSeparator, theContext);
}

void SearchIndexer::walkFirstArgument(Expr* theBox, const IndexContext& theContext) {
  indexBox(theBox->part(1), theContext);
}

void SearchIndexer::walkSecondArgument(Expr* theBox, const IndexContext& theContext) {
  indexBox(theBox->part(2), theContext);
}

void SearchIndexer::walkNothing(Expr*, const IndexContext&) {}

void SearchIndexer::walkStyleData(Expr*, const IndexContext&) { sawStyleData_ = true; }

void SearchIndexer::walkGraphicsBox(Expr* theBox, const IndexContext& theContext) {
  indexGraphicsBox(theBox, theContext);
  countGraphics();
}

void SearchIndexer::walkGraphicsData(Expr* theBox, const IndexContext& theContext) {
  indexGraphicsData(theBox, theContext);
  countGraphics();
}

void SearchIndexer::walkCellGroup(Expr* theBox, const IndexContext& theContext) {
  // The group's second argument is its open or closed state. Inside a
  // cell's contents a group is no group of cells, only its first argument.
  if (theContext.insideCell)
    return walkFirstArgument(theBox, theContext);
  indexCellList(theBox->part(1), theContext);
}

void SearchIndexer::walkTextContainer(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  const bool boxes = Vocabulary::BoxData.isHeadOf(theBox);
  context.insideBoxData = context.insideBoxData || boxes;
  // Outside code, the boxes show a string as the page does: without its
  // quotes, its escapes resolved.
  if (boxes && !context.codeStyle)
    context.showStringCharacters = false;
  // What follows the contents is a setting (the form of the boxes, such
  // as StandardForm), no text.
  Expr* contents = theBox->part(1);
  if (!isList(contents))
    indexBox(contents, context);
  else if (boxes)
    // The expressions of a cell, each on its own line.
    walkPieces(contents, 1, Zn::Writer::kLineSeparator, context);
  else
    // The runs of one text, written together.
    walkArguments(contents, 1, context);
}

//===--- Boxes into text --------------------------------------------------===//

// A menu's labels are rendered into strings, and a label may hold another
// menu: each level copies all the text of the levels inside it, and the
// menu's indentation makes that text grow with the square of the height. A
// tower of such controls, which no real notebook holds, would take time by
// the cube of its height; below this many levels its labels are empty.
constexpr ZnIndex kMaxNestedLabels = 32;

Zn::String* SearchIndexer::stringForBox(Expr* theBox, const IndexContext& theContext) {
  Zn::Writer::Separator trailing;
  return renderBox(theBox, theContext, trailing);
}

Zn::String* SearchIndexer::renderBox(Expr* theBox, const IndexContext& theContext, Zn::Writer::Separator& theTrailing) {
  theTrailing = Zn::Writer::kNoSeparator;
  auto text = adopt(new Zn::MutableString(32));
  if (labelDepth_ >= kMaxNestedLabels)
    return text.leak();
  struct Nesting {
    ZnIndex& depth;
    ~Nesting() { --depth; }
  } nesting{++labelDepth_};
  IndexContext context = theContext;
  context.writer = adopt(new Zn::StringWriter(text.get()));
  indexBox(theBox, context);
  theTrailing = context.writer->getSeparator();
  return text.leak();
}
