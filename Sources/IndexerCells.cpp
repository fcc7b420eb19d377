//===- IndexerCells.cpp - The cells of a notebook -------------------------===//
#include "SearchIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;

void SearchIndexer::indexCellList(Expr* theCells, const IndexContext& theContext) {
  IndexContext cells = theContext;
  cells.inCellList = true;
  if (!isList(theCells))
    return indexBox(theCells, Vocabulary::Cell.isHeadOf(theCells) ? cells : theContext);
  for (ZnIndex i = 1; i <= theCells->length(); ++i) {
    Expr* element = theCells->part(i);
    indexBox(element, Vocabulary::Cell.isHeadOf(element) ? cells : theContext);
  }
}

void SearchIndexer::indexCell(Expr* theCell, const IndexContext& theContext) {
  using namespace Vocabulary;
  // A cell inside another cell's contents is part of that cell's text: only
  // its contents show, where it stands.
  if (!theContext.inCellList) {
    // One that writes nothing (a picture) still stands between two words.
    const uint32_t before = theContext.writer->getPutCount();
    indexBox(theCell->part(1), theContext);
    if (theContext.writer->getPutCount() == before)
      theContext.writer->requestSeparator(Zn::Writer::kSpaceSeparator);
    return;
  }
  Expr* contents = theCell->part(1);
  // A cell group writes no cell of its own, whatever else it carries: its
  // cells are cells of the notebook in their turn.
  if (CellGroupData.isHeadOf(contents))
    return walkCellGroup(contents, theContext);
  IndexContext context = theContext;
  context.inCellList = false;
  context.insideCell = true;
  // Every cell starts flush left, whatever brackets earlier cells left open.
  Zn::Writer* writer = theContext.writer.get();
  writer->setIndentLevel(0);
  if (theCell->length() < 2) {
    indexBox(contents, context);
    writer->setIndentLevel(0);
    return;
  }
  // Whatever stands second and is not a string (an option, say) leaves the
  // cell without a style name; it is a cell of the notebook all the same.
  Zn::String* styleName = stringText(theCell->part(2));
  context.cellStyle = styleName ? retained(styleName) : adopt(new Zn::String());
  Zn::String* style = context.cellStyle.get();
  context.codeStyle = Input.isNameOf(style) || Code.isNameOf(style) || InputOnly.isNameOf(style);

  namedCounters_.countCell(style);

  beginCell(theCell, context);
  if (Input.isNameOf(style))
    countInputCell();
  else if (Output.isNameOf(style))
    countOutputCell();
  if (Title.isNameOf(style)) {
    countTitleCell();
    setTitle(contents, context);
  } else if (Subtitle.isNameOf(style) || Section.isNameOf(style) || Subsection.isNameOf(style)) {
    noteCellText(contents, context);
  }
  readCellOptions(theCell);

  indexBox(contents, context);
  // The separator's line ends are indented like any: the next cell's first
  // line must not inherit this cell's open brackets.
  writer->setIndentLevel(0);
  endCell(theCell, context);
  writeCellSeparator(context);
}

void SearchIndexer::readCellOptions(Expr* theCell) {
  using namespace Vocabulary;
  for (ZnIndex i = 3; i <= theCell->length(); ++i) {
    Expr* option = theCell->part(i);
    if (!isRule(option))
      continue;
    Expr* name = option->part(1);
    Expr* value = option->part(2);
    if (Evaluator.matches(name)) {
      setEvaluator(adopt(value->stringValue()).get());
    } else if (CellTags.matches(name) || InitializationCell.matches(name) || Author.matches(name)) {
      countCellOption();
      if (stringText(value))
        noteCellOption(stringText(value));
    }
  }
}
